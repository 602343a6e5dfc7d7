# The house in build rules: every folder of src/ is a room, a room is one or two targets, and a target
# links only what stands below it. Code that needs Qt without linking it does not compile.

add_library(sorvane_flags INTERFACE)
target_compile_options(sorvane_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
if(SORVANE_WARNINGS_AS_ERRORS)
  target_compile_options(sorvane_flags INTERFACE -Werror)
endif()
if(SORVANE_SANITIZE)
  target_compile_options(sorvane_flags INTERFACE -fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=all)
  # Drivers load libodbcinst and unload it again, which loses the odbc.ini entries it keeps: it stays loaded instead.
  target_link_options(sorvane_flags INTERFACE -fsanitize=address,undefined LINKER:--no-as-needed -lodbcinst LINKER:--as-needed)
endif()

# sorvane_room(NAME SOURCES file... LINKS target...): a room without windows; builds without Qt.
# A room whose sources come later is declared with its links alone, so that the order of the house is fixed.
function(sorvane_room name)
  cmake_parse_arguments(arg "" "" "SOURCES;LINKS" ${ARGN})
  if(arg_SOURCES)
    add_library(${name} STATIC ${arg_SOURCES})
    target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
    target_link_libraries(${name} PUBLIC ${arg_LINKS} PRIVATE sorvane_flags)
  else()
    add_library(${name} INTERFACE)
    target_link_libraries(${name} INTERFACE ${arg_LINKS})
  endif()
endfunction()

# sorvane_window_room(NAME SOURCES file... LINKS target...): a room of Qt forms, .ui files beside their class.
function(sorvane_window_room name)
  sorvane_room(${name} ${ARGN})
  get_target_property(kind ${name} TYPE)
  if(kind STREQUAL "STATIC_LIBRARY")
    set_target_properties(${name} PROPERTIES AUTOMOC ON AUTOUIC ON AUTORCC ON)
    target_link_libraries(${name} PUBLIC Qt6::Widgets)
  endif()
endfunction()
