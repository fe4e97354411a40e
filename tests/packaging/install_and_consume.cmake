set(prefix ${BUILD}/tests/packaging/prefix)
set(consumer ${BUILD}/tests/packaging/consumer)
file(REMOVE_RECURSE ${prefix} ${consumer})
file(MAKE_DIRECTORY ${consumer})

function(run)
  execute_process(COMMAND ${ARGN} WORKING_DIRECTORY ${consumer} RESULT_VARIABLE code)
  if(NOT code EQUAL 0)
    message(FATAL_ERROR "failed: ${ARGN}")
  endif()
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix})

# Every program of examples/ by CMake.
run(${CMAKE_COMMAND} -S ${SOURCE}/examples -B ${consumer}/build -G Ninja -DCMAKE_PREFIX_PATH=${prefix}
    -DCMAKE_CXX_COMPILER=${COMPILER})
run(${CMAKE_COMMAND} --build ${consumer}/build)
set(tool ${prefix}/${BINDIR}/rasterkit)
set(samples ${SOURCE}/samples)

# expect(CODE COMMAND...): the command ends with the exit code; its output is in `text`.
function(expect expected)
  execute_process(COMMAND ${ARGN} WORKING_DIRECTORY ${consumer} RESULT_VARIABLE code OUTPUT_VARIABLE output
                  ERROR_VARIABLE output)
  if(NOT code EQUAL expected)
    message(FATAL_ERROR "exit code ${code}, not ${expected}: ${ARGN}\n${output}")
  endif()
  set(text "${output}" PARENT_SCOPE)
endfunction()

# expect_text(PATTERN): in what the last command printed.
function(expect_text pattern)
  if(NOT text MATCHES "${pattern}")
    message(FATAL_ERROR "'${text}' does not contain ${pattern}")
  endif()
endfunction()

# expect_info(FILE PATTERN): in what the tool says about the file.
function(expect_info file pattern)
  expect(0 ${tool} info ${file})
  expect_text("${pattern}")
endfunction()

# The README's example, without the photograph and with each orientation. The samples are compressed strongly, so that
# an upright picture differs from the drawing by up to 111 levels, one that lies otherwise by 246.
expect(1 ${consumer}/build/upright)
expect_text("photo.jpg: cannot be opened")
foreach(orientation RANGE 1 8)
  set(photo ${samples}/orientation-${orientation}.jpg)
  file(COPY_FILE ${photo} ${consumer}/photo.jpg)
  run(${consumer}/build/upright)
  expect(0 ${tool} compare --tolerance 128 ${samples}/upright.png upright.png)
  run(${consumer}/build/upright_all ${photo} upright-all.png)
  expect(0 ${tool} compare --tolerance 128 ${samples}/upright.png upright-all.png)
endforeach()

# The other programs of docs/library.md.
expect(0 ${consumer}/build/open_picture ${samples}/plan.png)
expect_text("640 x 480 pixels, 1 bits per pixel")
expect(2 ${consumer}/build/open_picture missing.png)
expect_text("missing.png: cannot be opened")
expect(1 ${consumer}/build/open_picture ${samples}/plan.pgw)
run(${consumer}/build/convert_picture ${samples}/plan.png converted.jpg)
expect_info(converted.jpg "jpeg, 640 x 480 pixels, 24 bits, 300 x 300 dpi")
run(${consumer}/build/rotate_picture ${samples}/plan.png 30 rotated.png)
expect_info(rotated.png "png, 794 x 736 pixels, 24 bits")
run(${consumer}/build/crop_picture ${samples}/plan-colored.bmp cropped.png)
run(${consumer}/build/whole_picture ${samples}/orientation-6.jpg whole.jpg)
run(${tool} pages ${samples}/orientation-6.jpg ${samples}/plan-colored.bmp pages.tif)
run(${consumer}/build/document_pages pages.tif turned-pages.tif)
expect_info(turned-pages.tif "tiff, 200 x 150 pixels")
run(${consumer}/build/edit_metadata whole.jpg)
file(WRITE ${consumer}/half.json [[{"schema": 1, "steps": [
  {"step": "turn", "revision": 1, "quarters": 1},
  {"step": "resize", "revision": 1, "unit": "percent", "width": 50}]}]])
run(${consumer}/build/replay_recipe ${consumer}/half.json whole.jpg half.jpg)
run(${tool} crop ${samples}/plan-colored.bmp cropped-by-tool.png --rect 50,37,100,75)
expect(0 ${tool} compare cropped.png cropped-by-tool.png)
run(${consumer}/build/gray_and_mono ${samples}/plan-colored.bmp gray.png mono.tif)
expect_info(gray.png "png, 200 x 150 pixels, 8 bits")
expect_info(mono.tif "tiff, 200 x 150 pixels, 1 bit,")
expect(0 ${consumer}/build/photo_facts ${samples}/orientation-6.jpg with-exif.jpg)
expect_text("turn by 270 degrees")
expect_text("latitude 48.1372, longitude 11.5755")
expect_info(with-exif.jpg "orientation 6.*GPS 48.137200, 11.575500")
expect(0 ${consumer}/build/geotiff_files ${samples}/terrain.tif ${samples}/plan.png placed.tif)
expect_text("height at the upper left corner: 558.4")
expect_info(placed.tif "4468000.025,5333999.975")
run(${consumer}/build/draw_metafile ${SOURCE}/fuzz/seeds/emf/text.emf drawing.png)
expect_info(drawing.png "png, 188 x 152 pixels, 24 bits")
expect(0 ${consumer}/build/fill_ports)
expect_text("messages of the library arrive here")
expect(0 ${consumer}/build/threads_and_progress ${samples}/plan.png large.png)
expect_text("100 %")
expect_info(large.png "png, 2000 x 1500 pixels, 24 bits")
expect(0 ${consumer}/build/memory_limit ${samples}/plan.png)
expect_text("needs 38400 bytes, the limit is 1000 bytes")
expect(0 ${consumer}/build/untrusted_file ${samples}/plan.png small-plan.png)
expect_info(small-plan.png "png, 100 x 75 pixels")
expect(1 ${consumer}/build/untrusted_file ${samples}/plan.pgw small-plan.png)
expect_text("plan.pgw: ")

# By pkg-config.
set(ENV{PKG_CONFIG_PATH} ${prefix}/${LIBDIR}/pkgconfig)
execute_process(COMMAND pkg-config --cflags --libs rasterkit
                OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND "${flags}")
run(${COMPILER} -std=c++20 ${SOURCE}/examples/upright.cpp -o ${consumer}/by-pkg-config ${flags})

# The installed tool finds the installed library and the dialogs.
run(${prefix}/${BINDIR}/rasterkit info upright.png)
# And the installed worker program.
expect(0 ${tool} --version -v)
expect_text("worker: ${prefix}/.*/rasterkit-worker\nLandlock")
if(DIALOGS)
  execute_process(COMMAND ${CMAKE_COMMAND} -E env --unset=DISPLAY --unset=WAYLAND_DISPLAY --unset=QT_QPA_PLATFORM
                          ${prefix}/${BINDIR}/rasterkit resize --dialog upright.png small.png
                  WORKING_DIRECTORY ${consumer} RESULT_VARIABLE code ERROR_VARIABLE text)
  if(NOT code EQUAL 4 OR NOT text MATCHES "DISPLAY is not set")
    message(FATAL_ERROR "the installed tool did not find the installed dialogs: ${code} ${text}")
  endif()
endif()

# A host without Qt that draws PDF pages, by CMake and by pkg-config. The installed tool finds the library.
if(PDF)
  file(WRITE ${consumer}/page.pdf "%PDF-1.4
1 0 obj << /Type /Catalog /Pages 2 0 R >> endobj
2 0 obj << /Type /Pages /Kids [3 0 R] /Count 1 >> endobj
3 0 obj << /Type /Page /Parent 2 0 R /MediaBox [0 0 72 72] >> endobj
trailer << /Size 4 /Root 1 0 R >>
")
  run(${CMAKE_COMMAND} -S ${SOURCE}/tests/packaging/pdf_consumer -B ${consumer}/pdf -G Ninja
      -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_CXX_COMPILER=${COMPILER})
  run(${CMAKE_COMMAND} --build ${consumer}/pdf)
  run(${consumer}/pdf/consumer page.pdf)
  execute_process(COMMAND pkg-config --cflags --libs rasterkit-pdf
                  OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  run(${COMPILER} -std=c++20 ${SOURCE}/tests/packaging/pdf_consumer/consumer.cpp -o ${consumer}/pdf-by-pkg-config
      ${flags})
  run(${prefix}/${BINDIR}/rasterkit pdf page.pdf page.png)
  run(${consumer}/build/pdf_page page.pdf page-at-150.png)
  expect_info(page-at-150.png "png, 150 x 150 pixels, 24 bits, 150 x 150 dpi")
endif()

# The desktop's entry for the editor and its icon.
if(DIALOGS)
  set(entry ${prefix}/share/applications/rasterkit.desktop)
  foreach(file IN ITEMS ${entry} ${prefix}/share/icons/hicolor/scalable/apps/rasterkit.svg)
    if(NOT EXISTS ${file})
      message(FATAL_ERROR "not installed: ${file}")
    endif()
  endforeach()
  find_program(validator desktop-file-validate)
  if(validator)
    run(${validator} ${entry})
  endif()
endif()

# A host on Qt, by CMake and by pkg-config.
if(DIALOGS)
  set(ENV{QT_QPA_PLATFORM} offscreen)
  run(${CMAKE_COMMAND} -S ${SOURCE}/tests/packaging/dialogs_consumer -B ${consumer}/dialogs -G Ninja
      -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_CXX_COMPILER=${COMPILER})
  run(${CMAKE_COMMAND} --build ${consumer}/dialogs)
  run(${consumer}/dialogs/consumer)
  run(${CMAKE_COMMAND} -S ${SOURCE}/examples/qt-host -B ${consumer}/qt-host -G Ninja -DCMAKE_PREFIX_PATH=${prefix}
      -DCMAKE_CXX_COMPILER=${COMPILER})
  run(${CMAKE_COMMAND} --build ${consumer}/qt-host)
  execute_process(COMMAND pkg-config --cflags --libs rasterkit-dialogs
                  OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  run(${COMPILER} -std=c++20 -fPIC ${SOURCE}/tests/packaging/dialogs_consumer/consumer.cpp
      -o ${consumer}/dialogs-by-pkg-config ${flags})
endif()
