# Checks of the repository itself, run by ctest beside the tests.
add_test(NAME check.PluginIncludes
  COMMAND "${CMAKE_COMMAND}" "-DROOT=${CMAKE_SOURCE_DIR}" -P "${CMAKE_SOURCE_DIR}/cmake/checks/Includes.cmake")
add_test(NAME check.HostSdk
  COMMAND "${CMAKE_COMMAND}" "-DROOT=${CMAKE_SOURCE_DIR}" "-DBUILD=${CMAKE_BINARY_DIR}" "-DTYPE=${CMAKE_BUILD_TYPE}"
          "-DSANITIZE=${MIRK_SANITIZE}" "-DCXX=${CMAKE_CXX_COMPILER}" -P "${CMAKE_SOURCE_DIR}/cmake/checks/Sdk.cmake")
set_tests_properties(check.HostSdk PROPERTIES TIMEOUT 900)
add_test(NAME check.NodeTable
  COMMAND "${CMAKE_COMMAND}" "-DMIRK=$<TARGET_FILE:mirk>" "-DLIST=${CMAKE_SOURCE_DIR}/tests/plugin/nodes.tsv"
          -P "${CMAKE_SOURCE_DIR}/cmake/checks/NodeTable.cmake")
add_test(NAME plugin.Attributes COMMAND mirk run "${CMAKE_SOURCE_DIR}/tests/plugin/attributes_test.py")

# random scenes against slow models in Python; MIRK_SEEDS=0-9999 in the environment runs these many
foreach(node boundingObject attributeTransfer multiAttributeTransfer componentGroup converters
             cocoon copier scatter shell)
  add_test(NAME reference.${node} COMMAND mirk run "${CMAKE_SOURCE_DIR}/tests/reference/${node}_test.py")
endforeach()

# examples: each tells by its exit status whether its network gave what it should
foreach(example arrays_arithmetic arrays_converters arrays_uvs)
  add_test(NAME example.${example} COMMAND mirk run "${CMAKE_SOURCE_DIR}/examples/${example}.py")
endforeach()
if(EXISTS /usr/share/glmark2/models/bunny.obj)
  add_test(NAME example.arrays_bunny COMMAND mirk run "${CMAKE_SOURCE_DIR}/examples/arrays_bunny.py")
  add_test(NAME example.components COMMAND mirk run "${CMAKE_SOURCE_DIR}/examples/components.py")
  add_test(NAME example.wave COMMAND mirk run "${CMAKE_SOURCE_DIR}/examples/wave.py" --frames 1-2
           --render "${CMAKE_BINARY_DIR}/wave.##.png" --width 160 --height 90)
  add_test(NAME example.path COMMAND mirk run "${CMAKE_SOURCE_DIR}/examples/path.py")
  set_tests_properties(example.path PROPERTIES ENVIRONMENT "MIRK_PATHS=12")
  add_test(NAME example.shatter_bunny COMMAND mirk run "${CMAKE_SOURCE_DIR}/examples/shatter_bunny.py")
  set_tests_properties(example.shatter_bunny PROPERTIES ENVIRONMENT "MIRK_SHARDS=12")
  add_test(NAME example.scatter COMMAND mirk run "${CMAKE_SOURCE_DIR}/examples/scatter.py")
  set_tests_properties(example.scatter PROPERTIES ENVIRONMENT "MIRK_THROWS=20000")
  add_test(NAME example.cocoon COMMAND mirk run "${CMAKE_SOURCE_DIR}/examples/cocoon.py"
           --render "${CMAKE_BINARY_DIR}/cocoon.png" --width 160 --height 90)
  set_tests_properties(example.cocoon PROPERTIES ENVIRONMENT "MIRK_POINTS=1500")
endif()

add_test(NAME example.copies COMMAND mirk run "${CMAKE_SOURCE_DIR}/examples/copies.py")
set_tests_properties(example.copies PROPERTIES ENVIRONMENT "MIRK_BUNNY=none;MIRK_COPIES=400")   # on a sphere
add_test(NAME example.shatter COMMAND mirk run "${CMAKE_SOURCE_DIR}/examples/shatter.py"
         --render "${CMAKE_BINARY_DIR}/shatter.png" --width 160 --height 90)
add_test(NAME example.instances COMMAND mirk run "${CMAKE_SOURCE_DIR}/examples/instances.py"
         --render "${CMAKE_BINARY_DIR}/instances.png" --width 160 --height 90)
add_test(NAME example.volumes COMMAND mirk run "${CMAKE_SOURCE_DIR}/examples/volumes.py" --frames 11-13)
set_tests_properties(example.volumes PROPERTIES ENVIRONMENT "MIRK_BUNNY=none")   # on its small sphere

# loading seen from inside a session, in both modes; each has an empty tools' directory of its own
foreach(mode batch interactive)
  set(directory "${CMAKE_BINARY_DIR}/tools-${mode}")
  file(REMOVE_RECURSE "${directory}")
  file(MAKE_DIRECTORY "${directory}")
  set(flag "")
  if(mode STREQUAL "interactive")
    set(flag --interactive)
  endif()
  add_test(NAME plugin.Load.${mode} COMMAND mirk run ${flag} "${CMAKE_SOURCE_DIR}/tests/plugin/load_test.py")
  set_tests_properties(plugin.Load.${mode} PROPERTIES ENVIRONMENT "MIRK_SCRIPT_PATH=${directory}")
endforeach()
