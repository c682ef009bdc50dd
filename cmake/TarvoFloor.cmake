# tarvo_floor(NAME SOURCES file... [ON floor...] [LIBRARIES library...])
#
# One static library, tarvo_NAME, for the folder NAME. Its headers are included as
# "NAME/header.h", and only by the targets that link it: each floor has an include root of its own
# that holds nothing but a link to its folder, so an include from a floor above, or from one beside
# it, does not build. (The floors below those named in ON come along; tools/check holds the rest.)
function(tarvo_floor name)
  cmake_parse_arguments(FLOOR "" "" "SOURCES;ON;LIBRARIES" ${ARGN})
  set(root ${CMAKE_BINARY_DIR}/floors/${name})
  file(MAKE_DIRECTORY ${root})
  file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR} ${root}/${name} SYMBOLIC)

  add_library(tarvo_${name} STATIC ${FLOOR_SOURCES})
  target_include_directories(tarvo_${name} PUBLIC ${root})
  target_link_libraries(tarvo_${name} PRIVATE tarvo_compile PUBLIC ${FLOOR_LIBRARIES})
  foreach(lower ${FLOOR_ON})
    target_link_libraries(tarvo_${name} PUBLIC tarvo_${lower})
  endforeach()
endfunction()
