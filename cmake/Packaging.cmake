# What `cmake --install` puts where: the library, its headers, the tool, and what other builds find it by
# (find_package(rasterkit) and pkg-config rasterkit). Dependencies of the library stay inside it.
include(CMakePackageConfigHelpers)

rasterkit_umbrella_headers()
target_compile_features(rasterkit INTERFACE cxx_std_20)
file(RELATIVE_PATH library_from_tool /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
set_target_properties(rasterkit_tool PROPERTIES INSTALL_RPATH "$ORIGIN/${library_from_tool}")

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/rasterkit)
install(TARGETS rasterkit EXPORT rasterkit_targets)
install(TARGETS rasterkit_tool)
install(EXPORT rasterkit_targets FILE rasterkitTargets.cmake NAMESPACE rasterkit:: DESTINATION ${package_folder})

configure_package_config_file(${PROJECT_SOURCE_DIR}/packaging/rasterkitConfig.cmake.in
                              ${PROJECT_BINARY_DIR}/rasterkitConfig.cmake INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/rasterkitConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/rasterkitConfig.cmake ${PROJECT_BINARY_DIR}/rasterkitConfigVersion.cmake
        DESTINATION ${package_folder})

file(RELATIVE_PATH headers_from_pkgconfig /${CMAKE_INSTALL_LIBDIR}/pkgconfig /${CMAKE_INSTALL_INCLUDEDIR})
configure_file(${PROJECT_SOURCE_DIR}/packaging/rasterkit.pc.in ${PROJECT_BINARY_DIR}/rasterkit.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/rasterkit.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
