# cmake -DSOURCE_DIR=DIR -P CheckLayers.cmake: fails when a file under DIR/src/LAYER includes
# a header of a layer LAYER may not use. Run by ctest on the tree, and on a small tree with
# one bad include to show the check still catches one.
#
# Each layer lists the layers it uses directly, as the layer table of the design notes has
# them; a layer may include its own headers and those of every layer reachable from its
# list. Layers not written yet are here too, so the first file of a new layer is checked
# from the start. `all` stands for every layer below in this list.
cmake_minimum_required(VERSION 3.25)
if(NOT SOURCE_DIR)
  message(FATAL_ERROR "usage: cmake -DSOURCE_DIR=DIR -P CheckLayers.cmake")
endif()

set(layers support model parsing settings projects codegen ide addin views hosts/headless
           hosts/qt hosts/lsp)
set(uses_support "")
set(uses_model support)
set(uses_parsing model)
set(uses_settings model)
set(uses_projects support)
set(uses_codegen parsing settings)
set(uses_ide support)
set(uses_addin support model parsing settings projects codegen ide)
set(uses_views addin)
set(uses_hosts/headless ide projects)
set(uses_hosts/qt ide views)
set(uses_hosts/lsp ide views codegen)

# allowed_LAYER: the layer itself and everything it reaches through the lists above.
foreach(layer IN LISTS layers)
  set(reach ${layer})
  set(todo ${uses_${layer}})
  while(todo)
    list(POP_FRONT todo next)
    if(NOT next IN_LIST reach)
      list(APPEND reach ${next})
      list(APPEND todo ${uses_${next}})
    endif()
  endwhile()
  set(allowed_${layer} ${reach})
endforeach()

# The layer an include path names: the longest layer folder it starts with, so that
# "hosts/lsp/x.h" is hosts/lsp; empty for a path of no layer (a sibling, a library).
function(layer_of path out)
  set(found "")
  foreach(layer IN LISTS layers)
    string(LENGTH "${layer}/" n)
    string(SUBSTRING "${path}" 0 ${n} head)
    string(LENGTH "${found}" have)
    if(head STREQUAL "${layer}/" AND n GREATER have)
      set(found ${layer})
    endif()
  endforeach()
  set(${out} "${found}" PARENT_SCOPE)
endfunction()

set(faults 0)
set(checked 0)
foreach(layer IN LISTS layers)
  file(GLOB_RECURSE files LIST_DIRECTORIES false "${SOURCE_DIR}/src/${layer}/*")
  foreach(file IN LISTS files)
    if(NOT file MATCHES "\\.(h|hpp|cpp|cc|cxx|def|inc)$")
      continue()
    endif()
    # A file of hosts/lsp is also under hosts/: skip it there, it is checked as its own.
    file(RELATIVE_PATH rel "${SOURCE_DIR}/src" "${file}")
    layer_of("${rel}" home)
    if(NOT home STREQUAL layer)
      continue()
    endif()
    math(EXPR checked "${checked} + 1")
    file(STRINGS "${file}" includes REGEX "^[ \t]*#[ \t]*include[ \t]*[\"<]")
    foreach(line IN LISTS includes)
      string(REGEX REPLACE "^[ \t]*#[ \t]*include[ \t]*[\"<]([^\">]*)[\">].*" "\\1" path "${line}")
      layer_of("${path}" target)
      if(target AND NOT target IN_LIST allowed_${layer})
        string(REPLACE ";" ", " may "${allowed_${layer}}")
        message("src/${rel}: includes \"${path}\" of layer ${target}, which layer ${layer} "
                "may not use (it may use: ${may})")
        math(EXPR faults "${faults} + 1")
      endif()
    endforeach()
  endforeach()
endforeach()

if(faults GREATER 0)
  message(FATAL_ERROR "${faults} include(s) reach a layer above or beside their own")
endif()
message(STATUS "layer includes: ${checked} files checked, none reaches a layer it may not use")
