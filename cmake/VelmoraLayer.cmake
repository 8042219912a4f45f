# velmora_layer(NAME [DEPENDS lib...]): one static library per layer folder, its sources
# picked up by pattern so a new unit needs no edit of the build files.
function(velmora_layer name)
  cmake_parse_arguments(ARG "" "" "DEPENDS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  add_library(velmora_${name} STATIC ${sources})
  target_include_directories(velmora_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  if(ARG_DEPENDS)
    target_link_libraries(velmora_${name} PUBLIC ${ARG_DEPENDS})
  endif()
endfunction()
