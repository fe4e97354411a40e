install(TARGETS rasterkit rasterkit_tool)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/rasterkit DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
