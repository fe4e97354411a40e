# The source tree is the include tree: `#include <rasterkit/runtime/errors.h>` is rasterkit/runtime/errors.h, in a
# checkout and after installation alike.
#
# An installed header is either PROMISED or INSTALLED. A promised header stays compatible; it is in the umbrella header of
# its room (rasterkit/ROOM.h) and in docs/library.md. The others are installed because promised headers include them, or
# for programs that follow the library closely; they may change in any version.

# rasterkit_room(PROMISED a.h ... INSTALLED b.h ... SOURCES a.cpp ...): adds a room to the library.
function(rasterkit_room)
  cmake_parse_arguments(ROOM "" "" "PROMISED;INSTALLED;SOURCES" ${ARGN})
  list(TRANSFORM ROOM_SOURCES PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  target_sources(rasterkit_objects PRIVATE ${ROOM_SOURCES})
  rasterkit_headers(PROMISED ${ROOM_PROMISED} INSTALLED ${ROOM_INSTALLED})
endfunction()

# rasterkit_headers(PROMISED a.h ... INSTALLED b.h ...): headers of the calling folder that are installed.
function(rasterkit_headers)
  cmake_parse_arguments(ROOM "" "" "PROMISED;INSTALLED" ${ARGN})
  file(RELATIVE_PATH place ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
  install(FILES ${ROOM_PROMISED} ${ROOM_INSTALLED} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${place})
endfunction()
