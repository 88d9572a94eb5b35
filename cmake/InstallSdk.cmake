# `cmake --install` lays the host out as its users expect an SDK: include/maya, and in lib/ one library name for each
# module of the interface. Here all of these names are the one library of the host.
install(DIRECTORY "${CMAKE_SOURCE_DIR}/host/include/maya" DESTINATION include)
install(TARGETS mirkhost mirkdraw mirkquery mirkimage LIBRARY DESTINATION lib)
foreach(module Foundation OpenMaya OpenMayaAnim OpenMayaFX OpenMayaUI OpenMayaRender)
  install(CODE "file(CREATE_LINK libmirkhost.so
    \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/lib/lib${module}.so\" SYMBOLIC)")
endforeach()
if(TARGET mirk)
  set_target_properties(mirk PROPERTIES INSTALL_RPATH "\$ORIGIN/../lib")
  install(TARGETS mirk RUNTIME DESTINATION bin)
endif()
