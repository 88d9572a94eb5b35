# The plug-in against an installed host: install to a fresh folder in the layout of an SDK, build plugin/ alone from
# there, and let the installed host list the nodes of that plug-in.
# Called with -DROOT=<repository> -DBUILD=<build folder> -DSANITIZE=<ON|OFF> -DTYPE=<build type>
# -DCXX=<compiler>.
set(work "${BUILD}/sdk-check")
file(REMOVE_RECURSE "${work}/sdk")

function(run what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${what} failed (${status}):\n${out}\n${err}")
  endif()
  set(output "${out}" PARENT_SCOPE)
endfunction()

run("install" "${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${work}/sdk")
file(REMOVE "${work}/sdk/lib/mirk.so")

# each header stands alone
file(GLOB headers "${work}/sdk/include/maya/*.h")
file(WRITE "${work}/alone.cpp" "")
foreach(header IN LISTS headers)
  get_filename_component(name "${header}" NAME)
  run("maya/${name} alone" "${CXX}" -std=c++17 -fsyntax-only "-I${work}/sdk/include" -include "maya/${name}"
      "${work}/alone.cpp")
endforeach()

run("configure" "${CMAKE_COMMAND}" -S "${ROOT}" -B "${work}/build" -G Ninja "-DMIRK_HOST_SDK=${work}/sdk"
    "-DCMAKE_BUILD_TYPE=${TYPE}" "-DMIRK_SANITIZE=${SANITIZE}" "-DCMAKE_INSTALL_PREFIX=${work}/sdk")
run("build" "${CMAKE_COMMAND}" --build "${work}/build")
run("install of the plug-in" "${CMAKE_COMMAND}" --install "${work}/build")
run("mirk nodes" "${work}/sdk/bin/mirk" nodes)

string(REGEX MATCHALL "[^\n]+\n" rows "${output}")
list(LENGTH rows count)
if(NOT count EQUAL 100)
  message(FATAL_ERROR "The installed host lists ${count} nodes, not 100:\n${output}")
endif()
message(STATUS "The plug-in built against the installed host loads there, ${count} nodes")
