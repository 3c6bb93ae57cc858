# The subsystems and the layers each may use are declared once, in src/layers.txt: CMake links
# from it and the include check (tools/check_layers.py) enforces it.
file(STRINGS ${CMAKE_SOURCE_DIR}/src/layers.txt _layer_lines REGEX "^[A-Za-z]")
set(LEDGEON_LAYERS "")
foreach(line IN LISTS _layer_lines)
  string(REGEX REPLACE ":.*$" "" name "${line}")
  string(STRIP "${name}" name)
  set(deps "")
  if(line MATCHES ":")
    string(REGEX REPLACE "^[^:]*:" "" deps "${line}")
    string(STRIP "${deps}" deps)
    string(REGEX REPLACE "[ \t]+" ";" deps "${deps}")
  endif()
  list(APPEND LEDGEON_LAYERS ${name})
  set(LEDGEON_LAYER_DEPS_${name} ${deps})
endforeach()

# The libraries standing for the given layers: a layer with no folder yet is replaced by the
# layers below it.
function(_ledgeon_existing_layers out)
  set(result "")
  foreach(dep IN LISTS ARGN)
    if(TARGET ledgeon_${dep})
      list(APPEND result ${dep})
    else()
      _ledgeon_existing_layers(below ${LEDGEON_LAYER_DEPS_${dep}})
      list(APPEND result ${below})
    endif()
  endforeach()
  list(REMOVE_DUPLICATES result)
  set(${out} ${result} PARENT_SCOPE)
endfunction()

# ledgeon_add_layer(<Folder> [LIBRARIES <third-party targets>...])
# Builds every .cpp under src/<Folder> into the static library ledgeon::<Folder>, linked to the
# layers that folder is allowed to use.
function(ledgeon_add_layer name)
  cmake_parse_arguments(ARG "" "" "LIBRARIES" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  add_library(ledgeon_${name} STATIC ${sources})
  add_library(ledgeon::${name} ALIAS ledgeon_${name})
  target_include_directories(ledgeon_${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
  ledgeon_target_warnings(ledgeon_${name})
  _ledgeon_existing_layers(links ${LEDGEON_LAYER_DEPS_${name}})
  foreach(dep IN LISTS links)
    target_link_libraries(ledgeon_${name} PUBLIC ledgeon::${dep})
  endforeach()
  target_link_libraries(ledgeon_${name} PUBLIC ${ARG_LIBRARIES})
  target_compile_definitions(ledgeon_${name} PUBLIC
    LEDGEON_RESOURCES_DIR="${LEDGEON_RESOURCES_DIR}"
    LEDGEON_VERSION="${PROJECT_VERSION}")
endfunction()
