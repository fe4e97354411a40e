# A new language is a file rasterkit_LANGUAGE.ts in rasterkit/strings/languages and its name here.
set(RASTERKIT_LANGUAGES de)

# librasterkit-dialogs: the rooms rasterkit/qt and rasterkit/dialogs. It uses only what librasterkit exports.
add_library(rasterkit_dialogs_objects OBJECT)
rasterkit_settings(rasterkit_dialogs_objects)
target_link_libraries(rasterkit_dialogs_objects PUBLIC Qt6::Widgets Qt6::Svg fmt::fmt)
target_compile_definitions(rasterkit_dialogs_objects
  PRIVATE RASTERKIT_BUILDING
  # Hosts may compile without Qt's keywords, so the headers must not need them. Nothing deprecated in Qt 6.4 is used.
          QT_NO_KEYWORDS QT_DISABLE_DEPRECATED_BEFORE=0x060400)
set_target_properties(rasterkit_dialogs_objects PROPERTIES AUTOMOC ON AUTOUIC ON AUTORCC ON)
# Silence warnings in moc output.
set_source_files_properties(${PROJECT_BINARY_DIR}/rasterkit_dialogs_objects_autogen/mocs_compilation.cpp
                            PROPERTIES COMPILE_OPTIONS -w)

# Qt's lrelease compiles each catalogue of rasterkit/strings/languages; all are embedded in the library.
set(languages_folder ${PROJECT_BINARY_DIR}/languages)
set(catalogues "")
set(catalogue_entries "")
foreach(language IN LISTS RASTERKIT_LANGUAGES)
  set(source ${PROJECT_SOURCE_DIR}/rasterkit/strings/languages/rasterkit_${language}.ts)
  add_custom_command(OUTPUT ${languages_folder}/rasterkit_${language}.qm
                     COMMAND ${RASTERKIT_LRELEASE} -silent ${source} -qm ${languages_folder}/rasterkit_${language}.qm
                     DEPENDS ${source} VERBATIM)
  list(APPEND catalogues ${languages_folder}/rasterkit_${language}.qm)
  string(APPEND catalogue_entries "    <file>rasterkit_${language}.qm</file>\n")
endforeach()
file(CONFIGURE OUTPUT ${languages_folder}/languages.qrc CONTENT
"<RCC>
  <qresource prefix=\"/rasterkit/languages\">
@catalogue_entries@  </qresource>
</RCC>
" @ONLY)
add_custom_command(OUTPUT ${languages_folder}/languages.cpp
                   COMMAND Qt6::rcc --name rasterkit_languages --output ${languages_folder}/languages.cpp
                           ${languages_folder}/languages.qrc
                   DEPENDS ${languages_folder}/languages.qrc ${catalogues} VERBATIM)
target_sources(rasterkit_dialogs_objects PRIVATE ${languages_folder}/languages.cpp)
set_source_files_properties(${languages_folder}/languages.cpp PROPERTIES COMPILE_OPTIONS -w SKIP_AUTOGEN ON)

add_library(rasterkit_dialogs SHARED $<TARGET_OBJECTS:rasterkit_dialogs_objects>)
add_library(rasterkit::dialogs ALIAS rasterkit_dialogs)
rasterkit_settings(rasterkit_dialogs)
target_link_libraries(rasterkit_dialogs PUBLIC rasterkit Qt6::Widgets PRIVATE Qt6::Svg fmt::fmt)
# Opened at run time, by the worker program.
add_dependencies(rasterkit_dialogs rasterkit_pdf rasterkit_worker)
set_target_properties(rasterkit_dialogs PROPERTIES OUTPUT_NAME rasterkit-dialogs EXPORT_NAME dialogs
                                                   VERSION ${PROJECT_VERSION} SOVERSION 0)
if(NOT RASTERKIT_SANITIZE)
  # Report a symbol that librasterkit does not export when linking, not at run time.
  target_link_options(rasterkit_dialogs PRIVATE -Wl,--no-undefined)
endif()

# The same objects as a static library, for tests; see rasterkit_dialogs_test.
add_library(rasterkit_dialogs_for_tests STATIC EXCLUDE_FROM_ALL $<TARGET_OBJECTS:rasterkit_dialogs_objects>)
rasterkit_settings(rasterkit_dialogs_for_tests)
target_link_libraries(rasterkit_dialogs_for_tests PUBLIC rasterkit_pdf_for_tests Qt6::Widgets Qt6::Svg fmt::fmt)

# rasterkit_dialogs_room(PROMISED a.h ... INSTALLED b.h ... HEADERS c.h ... SOURCES a.cpp ... UI a.ui ... RESOURCES a.qrc ...): adds
# a room. Forms are included as "ui_a.h". Headers with Q_OBJECT must be listed in one of the three lists of headers.
function(rasterkit_dialogs_room)
  cmake_parse_arguments(ROOM "" "" "PROMISED;INSTALLED;HEADERS;SOURCES;UI;RESOURCES" ${ARGN})
  rasterkit_headers(PROMISED ${ROOM_PROMISED} INSTALLED ${ROOM_INSTALLED})
  set(files ${ROOM_PROMISED} ${ROOM_INSTALLED} ${ROOM_HEADERS} ${ROOM_SOURCES} ${ROOM_UI} ${ROOM_RESOURCES})
  list(TRANSFORM files PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  target_sources(rasterkit_dialogs_objects PRIVATE ${files})
endfunction()
