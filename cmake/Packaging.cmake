# Installs the libraries, their headers, the tool, and the files for find_package(rasterkit) (COMPONENTS pdf, dialogs)
# and pkg-config (rasterkit, rasterkit-pdf, rasterkit-dialogs). Hosts need none of the library's dependencies; the
# headers of the dialogs need Qt.
include(CMakePackageConfigHelpers)

set(umbrellas bitmaptools graphics jpegexif pictures raster rasterkit runtime startup strings tifftobmp)
if(RASTERKIT_DIALOGS)
  list(APPEND umbrellas dialogs qt)
endif()
foreach(umbrella IN LISTS umbrellas)
  install(FILES ${PROJECT_SOURCE_DIR}/rasterkit/${umbrella}.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/rasterkit)
endforeach()
target_compile_features(rasterkit INTERFACE cxx_std_20)
file(RELATIVE_PATH library_from_tool /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
# Programs and libraries are built with the paths that they have when installed. CMake would add an empty element to the
# path of the build tree, for which the loader searches the current folder.
set_target_properties(rasterkit_tool PROPERTIES INSTALL_RPATH "$ORIGIN/${library_from_tool}" BUILD_WITH_INSTALL_RPATH ON)
# In the build tree the libraries are in its root.
cmake_path(SET libraries_of_build NORMALIZE ${PROJECT_BINARY_DIR}/tool/${library_from_tool})
if(NOT EXISTS ${libraries_of_build})
  cmake_path(GET libraries_of_build PARENT_PATH folder)
  file(MAKE_DIRECTORY ${folder} ${PROJECT_BINARY_DIR}/tool)
  file(CREATE_LINK ${PROJECT_BINARY_DIR} ${libraries_of_build} SYMBOLIC)
endif()

file(RELATIVE_PATH library_from_worker /${CMAKE_INSTALL_LIBEXECDIR}/rasterkit /${CMAKE_INSTALL_LIBDIR})
# In the build tree it is beside the library.
set_target_properties(rasterkit_worker PROPERTIES INSTALL_RPATH "$ORIGIN/${library_from_worker};$ORIGIN"
                                                  BUILD_WITH_INSTALL_RPATH ON)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/rasterkit)
install(TARGETS rasterkit EXPORT rasterkit_targets)
install(TARGETS rasterkit_tool)
install(TARGETS rasterkit_worker DESTINATION ${CMAKE_INSTALL_LIBEXECDIR}/rasterkit)
install(EXPORT rasterkit_targets FILE rasterkitTargets.cmake NAMESPACE rasterkit:: DESTINATION ${package_folder})

if(RASTERKIT_PDF)
  target_compile_features(rasterkit_pdf INTERFACE cxx_std_20)
  set_target_properties(rasterkit_pdf PROPERTIES INSTALL_RPATH "$ORIGIN" BUILD_WITH_INSTALL_RPATH ON)
  # A separate export, so that the library alone does not require Qt.
  install(TARGETS rasterkit_pdf EXPORT rasterkit_pdf_targets)
  install(EXPORT rasterkit_pdf_targets FILE rasterkitPdfTargets.cmake NAMESPACE rasterkit::
          DESTINATION ${package_folder})
endif()

if(RASTERKIT_DIALOGS)
  target_compile_features(rasterkit_dialogs INTERFACE cxx_std_20)
  set_target_properties(rasterkit_dialogs PROPERTIES INSTALL_RPATH "$ORIGIN" BUILD_WITH_INSTALL_RPATH ON)
  install(TARGETS rasterkit_dialogs EXPORT rasterkit_dialogs_targets)
  install(EXPORT rasterkit_dialogs_targets FILE rasterkitDialogsTargets.cmake NAMESPACE rasterkit::
          DESTINATION ${package_folder})
  # The desktop's entry for the editor and its icon.
  install(FILES ${PROJECT_SOURCE_DIR}/packaging/desktop/rasterkit.desktop
          DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  install(FILES ${PROJECT_SOURCE_DIR}/packaging/desktop/rasterkit.svg
          DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
endif()

# Builds everything that `cmake --install` copies, without tests and samples.
add_custom_target(installed_files DEPENDS rasterkit rasterkit_tool rasterkit_worker)
if(RASTERKIT_PDF)
  add_dependencies(installed_files rasterkit_pdf)
endif()
if(RASTERKIT_DIALOGS)
  add_dependencies(installed_files rasterkit_dialogs)
endif()

configure_package_config_file(${PROJECT_SOURCE_DIR}/packaging/rasterkitConfig.cmake.in
                              ${PROJECT_BINARY_DIR}/rasterkitConfig.cmake INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/rasterkitConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/rasterkitConfig.cmake ${PROJECT_BINARY_DIR}/rasterkitConfigVersion.cmake
        DESTINATION ${package_folder})

file(RELATIVE_PATH headers_from_pkgconfig /${CMAKE_INSTALL_LIBDIR}/pkgconfig /${CMAKE_INSTALL_INCLUDEDIR})
set(packages rasterkit)
if(RASTERKIT_PDF)
  list(APPEND packages rasterkit-pdf)
endif()
if(RASTERKIT_DIALOGS)
  list(APPEND packages rasterkit-dialogs)
endif()
foreach(package IN LISTS packages)
  configure_file(${PROJECT_SOURCE_DIR}/packaging/${package}.pc.in ${PROJECT_BINARY_DIR}/${package}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${package}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR})
