include(CMakePackageConfigHelpers)

set(KIV_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/KivToolsRePack)
install(TARGETS KivToolsRePack KivToolsRePackStatic kiv_loader EXPORT KivToolsRePackTargets)
install(DIRECTORY include/kivtools DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT KivToolsRePackTargets NAMESPACE KivToolsRePack:: DESTINATION ${KIV_CMAKE_DIR})
configure_package_config_file(cmake/KivToolsRePackConfig.cmake.in KivToolsRePackConfig.cmake
  INSTALL_DESTINATION ${KIV_CMAKE_DIR})
write_basic_package_version_file(KivToolsRePackConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/KivToolsRePackConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/KivToolsRePackConfigVersion.cmake DESTINATION ${KIV_CMAKE_DIR})
# The way from the file's own folder to the prefix, so that an installed tree may be moved.
file(RELATIVE_PATH KIV_PREFIX_FROM_PC ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(cmake/kivtoolsrepack.pc.in kivtoolsrepack.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/kivtoolsrepack.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
