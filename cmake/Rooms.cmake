# The source tree is the include tree: `#include <rasterkit/host/runtime/errors.h>` is host/runtime/errors.h, in a
# checkout and after installation alike.
set(RASTERKIT_TOP_ROOMS host jpegexif tifftobmp bitmaptools package)
if(RASTERKIT_PDF OR RASTERKIT_DIALOGS)
  list(APPEND RASTERKIT_TOP_ROOMS qt)
endif()
if(RASTERKIT_DIALOGS)
  list(APPEND RASTERKIT_TOP_ROOMS dialogs)
endif()
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/include/rasterkit)
# The tool knows what the dialogs are opened by, even where they are not built.
foreach(room IN LISTS RASTERKIT_TOP_ROOMS ITEMS dialogs)
  file(CREATE_LINK ${PROJECT_SOURCE_DIR}/${room} ${PROJECT_BINARY_DIR}/include/rasterkit/${room} SYMBOLIC)
endforeach()

# rasterkit_room(PUBLIC_HEADERS a.h ... SOURCES a.cpp ...): adds a room to the library; the headers are installed.
function(rasterkit_room)
  cmake_parse_arguments(ROOM "" "" "PUBLIC_HEADERS;SOURCES" ${ARGN})
  list(TRANSFORM ROOM_SOURCES PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  target_sources(rasterkit_objects PRIVATE ${ROOM_SOURCES})
  rasterkit_public_headers(${ROOM_PUBLIC_HEADERS})
endfunction()

# rasterkit_public_headers(a.h ...): headers of the calling folder that are installed and in the umbrella.
function(rasterkit_public_headers)
  file(RELATIVE_PATH place ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
  foreach(header IN LISTS ARGN)
    set_property(GLOBAL APPEND PROPERTY RASTERKIT_PUBLIC_HEADERS ${place}/${header})
    install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/rasterkit/${place})
  endforeach()
endfunction()

# After all rooms: <rasterkit/bitmaptools.h> and its like, each with every public header of its room, made from the
# lists above so that none is forgotten.
function(rasterkit_umbrella_headers)
  get_property(headers GLOBAL PROPERTY RASTERKIT_PUBLIC_HEADERS)
  list(SORT headers)
  foreach(room IN LISTS RASTERKIT_TOP_ROOMS)
    set(lines "#pragma once\n\n/// Every public header of this room.\n")
    set(of_room ${headers})
    list(FILTER of_room INCLUDE REGEX "^${room}/")
    foreach(header IN LISTS of_room)
      string(APPEND lines "#include <rasterkit/${header}>\n")
    endforeach()
    set(umbrella ${PROJECT_BINARY_DIR}/include/rasterkit/${room}.h)
    file(CONFIGURE OUTPUT ${umbrella} CONTENT "${lines}" @ONLY)
    install(FILES ${umbrella} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/rasterkit)
  endforeach()
endfunction()
