include(CMakePackageConfigHelpers)

set(KIV_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/KivToolsRePack)
set(KIV_INSTALLED)
foreach(target KivToolsRePack KivToolsRePackStatic kiv_loader kivtools KivToolsRePackQtHost)
  if(TARGET ${target})
    list(APPEND KIV_INSTALLED ${target})
  endif()
endforeach()
# ./run builds this, so that what it leaves can be installed.
add_custom_target(kiv_installed DEPENDS ${KIV_INSTALLED})

# All files are there, or nothing is copied.
set(files)
foreach(target ${KIV_INSTALLED})
  list(APPEND files $<TARGET_FILE:${target}>)
endforeach()
install(CODE "foreach(file ${files})
  if(NOT EXISTS \${file})
    message(FATAL_ERROR \"nothing is installed: \${file} is not built; build first: cmake --build ${CMAKE_BINARY_DIR}\")
  endif()
endforeach()" ALL_COMPONENTS)
# Symbol tables are for whoever has the build tree, unless the build is for debugging.
install(CODE "if(NOT CMAKE_INSTALL_CONFIG_NAME MATCHES \"Deb\")
  set(CMAKE_INSTALL_DO_STRIP TRUE)
endif()" ALL_COMPONENTS)

# Runtime is what a host's user needs, Development what its author needs beside that.
set(libraries ${KIV_INSTALLED})
list(REMOVE_ITEM libraries kivtools KivToolsRePackQtHost)
install(TARGETS ${libraries} EXPORT KivToolsRePackTargets
  RUNTIME COMPONENT Runtime
  LIBRARY COMPONENT Runtime NAMELINK_COMPONENT Development
  ARCHIVE COMPONENT Development)
if(TARGET kivtools)
  install(TARGETS kivtools RUNTIME COMPONENT Runtime)
endif()
install(DIRECTORY include/kivtools DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT Development)
install(EXPORT KivToolsRePackTargets NAMESPACE KivToolsRePack:: DESTINATION ${KIV_CMAKE_DIR} COMPONENT Development)
configure_package_config_file(cmake/KivToolsRePackConfig.cmake.in KivToolsRePackConfig.cmake
  INSTALL_DESTINATION ${KIV_CMAKE_DIR})
write_basic_package_version_file(KivToolsRePackConfigVersion.cmake COMPATIBILITY ${KIV_COMPATIBILITY})
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/KivToolsRePackConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/KivToolsRePackConfigVersion.cmake DESTINATION ${KIV_CMAKE_DIR} COMPONENT Development)
# The way from the file's own folder to the prefix, so that an installed tree may be moved.
file(RELATIVE_PATH KIV_PREFIX_FROM_PC ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
if(KIV_SHARED)
  configure_file(cmake/kivtoolsrepack.pc.in kivtoolsrepack.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/kivtoolsrepack.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT Development)
endif()

# The host for Qt applications, for who writes one.
if(TARGET KivToolsRePackQtHost)
  install(TARGETS KivToolsRePackQtHost EXPORT KivToolsRePackQtHostTargets ARCHIVE COMPONENT QtHost)
  install(DIRECTORY host/qt/include/kivtools DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT QtHost)
  install(EXPORT KivToolsRePackQtHostTargets NAMESPACE KivToolsRePack:: DESTINATION ${KIV_CMAKE_DIR} COMPONENT QtHost)
endif()
