# The source tree is the include tree: `#include <rasterkit/host/runtime/errors.h>` is host/runtime/errors.h, in a
# checkout and after installation alike.
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/include/rasterkit)
foreach(room host jpegexif tifftobmp bitmaptools package)
  file(CREATE_LINK ${PROJECT_SOURCE_DIR}/${room} ${PROJECT_BINARY_DIR}/include/rasterkit/${room} SYMBOLIC)
endforeach()

# rasterkit_room(PUBLIC_HEADERS a.h ... SOURCES a.cpp ...): adds a room to the library; the headers are installed.
function(rasterkit_room)
  cmake_parse_arguments(ROOM "" "" "PUBLIC_HEADERS;SOURCES" ${ARGN})
  list(TRANSFORM ROOM_SOURCES PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  target_sources(rasterkit_objects PRIVATE ${ROOM_SOURCES})
  file(RELATIVE_PATH place ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
  list(TRANSFORM ROOM_PUBLIC_HEADERS PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  install(FILES ${ROOM_PUBLIC_HEADERS} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/rasterkit/${place})
endfunction()
