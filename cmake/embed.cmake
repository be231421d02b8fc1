# function(zvr_embed target name file...) embeds the concatenated text of the files in the target as
# extern const char* const NAME; NAME includes its namespace (zvr::kManual).
function(zvr_embed target name)
  string(REGEX REPLACE "::[^:]*$" "" space "${name}")
  string(REGEX REPLACE "^.*::" "" variable "${name}")
  set(text "")
  foreach(file IN LISTS ARGN)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${file}")
    file(READ "${file}" content)
    # One literal per file, because compilers limit the length of a literal.
    string(APPEND text "\n    R\"embedded(${content})embedded\"")
  endforeach()
  file(CONFIGURE OUTPUT "${variable}.cpp" @ONLY CONTENT
    "namespace @space@ {\nextern const char* const @variable@;\nconst char* const @variable@ =@text@;\n}\n")
  target_sources(${target} PRIVATE "${CMAKE_CURRENT_BINARY_DIR}/${variable}.cpp")
  # The literals of all files make one string, longer than every compiler must support; GCC and Clang do.
  set_source_files_properties("${CMAKE_CURRENT_BINARY_DIR}/${variable}.cpp" PROPERTIES COMPILE_OPTIONS -Wno-overlength-strings)
endfunction()
