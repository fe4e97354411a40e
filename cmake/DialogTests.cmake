# Test programs for rasterkit/qt and rasterkit/dialogs.
find_package(Qt6 6.4 REQUIRED COMPONENTS Test)

# Tests run without the user's display, settings and language. Memory that fontconfig never frees is not a leak.
set(RASTERKIT_FORM_ENVIRONMENT
    QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8 LANGUAGE=
    LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/forms/lsan.supp:print_suppressions=0)

# Settings of both kinds of tests. The whole archive is linked: no code calls the registration of resources.
function(rasterkit_dialogs_program name)
  add_executable(${name} ${ARGN})
  rasterkit_settings(${name})
  set_target_properties(${name} PROPERTIES AUTOMOC ON)
  set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/${name}_autogen/mocs_compilation.cpp
                              PROPERTIES COMPILE_OPTIONS -w)
  target_compile_definitions(${name} PRIVATE QT_NO_KEYWORDS RASTERKIT_SOURCE_TREE="${PROJECT_SOURCE_DIR}")
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE $<LINK_LIBRARY:WHOLE_ARCHIVE,rasterkit_dialogs_for_tests> rasterkit_test_support)
endfunction()

# rasterkit_dialogs_test(NAME file.cpp ...): tests of widgets. The program has a QApplication (tests/support/forms).
function(rasterkit_dialogs_test name)
  rasterkit_dialogs_program(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE rasterkit_form_test_support GTest::gmock)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 1200
                       ENVIRONMENT "${RASTERKIT_FORM_ENVIRONMENT}")
endfunction()

# rasterkit_dialogs_model_test(NAME file.cpp ...): tests of models, without widgets and QApplication.
function(rasterkit_dialogs_model_test name)
  rasterkit_dialogs_program(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE GTest::gmock GTest::gtest_main)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 1200
                       ENVIRONMENT "${RASTERKIT_FORM_ENVIRONMENT}")
endfunction()

# rasterkit_xvfb_test(PROGRAM FILTER): cases of a rasterkit_dialogs_test program on an X server.
function(rasterkit_xvfb_test program filter)
  add_test(NAME Xvfb.${program} COMMAND ${PROJECT_SOURCE_DIR}/tests/support/forms/under_xvfb.sh
                                        $<TARGET_FILE:${program}> --gtest_filter=${filter})
  set_tests_properties(Xvfb.${program} PROPERTIES ENVIRONMENT "${RASTERKIT_FORM_ENVIRONMENT}" SKIP_RETURN_CODE 77
                                                  TIMEOUT 1200)
endfunction()
