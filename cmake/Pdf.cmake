# librasterkit-pdf: draws pages of PDF files with Qt PDF (rasterkit/qt/pdf). It is a separate library, so that neither
# librasterkit nor the tool needs Qt; the tool opens it for a PDF file.
add_library(rasterkit_pdf_objects OBJECT)
rasterkit_settings(rasterkit_pdf_objects)
rasterkit_count_lines(rasterkit_pdf_objects)
target_link_libraries(rasterkit_pdf_objects PUBLIC Qt6::Gui Qt6::Pdf fmt::fmt)
target_compile_definitions(rasterkit_pdf_objects PRIVATE RASTERKIT_BUILDING QT_NO_KEYWORDS
                                                         QT_DISABLE_DEPRECATED_BEFORE=0x060400)

add_library(rasterkit_pdf SHARED $<TARGET_OBJECTS:rasterkit_pdf_objects>)
add_library(rasterkit::pdf ALIAS rasterkit_pdf)
rasterkit_settings(rasterkit_pdf)
target_link_libraries(rasterkit_pdf PUBLIC rasterkit PRIVATE Qt6::Gui Qt6::Pdf fmt::fmt)
set_target_properties(rasterkit_pdf PROPERTIES OUTPUT_NAME rasterkit-pdf EXPORT_NAME pdf
                                               VERSION ${PROJECT_VERSION} SOVERSION 0)
if(NOT RASTERKIT_SANITIZE)
  target_link_options(rasterkit_pdf PRIVATE -Wl,--no-undefined)
endif()

# The same objects as a static library, for its tests and those of the dialogs.
add_library(rasterkit_pdf_for_tests STATIC EXCLUDE_FROM_ALL $<TARGET_OBJECTS:rasterkit_pdf_objects>)
rasterkit_settings(rasterkit_pdf_for_tests)
target_link_libraries(rasterkit_pdf_for_tests PUBLIC rasterkit_for_tests Qt6::Gui Qt6::Pdf fmt::fmt)
