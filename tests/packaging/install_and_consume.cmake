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

# By CMake; the example looks for photo.jpg where it runs.
run(${CMAKE_COMMAND} -S ${SOURCE}/examples -B ${consumer}/build -G Ninja -DCMAKE_PREFIX_PATH=${prefix}
    -DCMAKE_CXX_COMPILER=${COMPILER})
run(${CMAKE_COMMAND} --build ${consumer}/build)
file(COPY_FILE ${SOURCE}/samples/orientation-6.jpg ${consumer}/photo.jpg)
run(${consumer}/build/upright)
if(NOT EXISTS ${consumer}/upright.png)
  message(FATAL_ERROR "the example wrote nothing")
endif()

# By pkg-config.
set(ENV{PKG_CONFIG_PATH} ${prefix}/${LIBDIR}/pkgconfig)
execute_process(COMMAND pkg-config --cflags --libs rasterkit
                OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND "${flags}")
run(${COMPILER} -std=c++20 ${SOURCE}/examples/upright.cpp -o ${consumer}/by-pkg-config ${flags})

# The installed tool finds the installed library, and the dialogs beside that.
run(${prefix}/${BINDIR}/rasterkit info upright.png)
if(DIALOGS)
  execute_process(COMMAND ${CMAKE_COMMAND} -E env --unset=DISPLAY --unset=WAYLAND_DISPLAY --unset=QT_QPA_PLATFORM
                          ${prefix}/${BINDIR}/rasterkit resize --dialog upright.png small.png
                  WORKING_DIRECTORY ${consumer} RESULT_VARIABLE code ERROR_VARIABLE text)
  if(NOT code EQUAL 4 OR NOT text MATCHES "DISPLAY is not set")
    message(FATAL_ERROR "the installed tool did not find the installed dialogs: ${code} ${text}")
  endif()
endif()

# A host that draws PDF pages and knows nothing of Qt, both ways; and the installed tool finds the library.
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
endif()

# What desktops show the editor by.
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

# A host on Qt, both ways again.
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
