# function(zvr_embed target name file...) gives the target a text that stands in files:
# extern const char* const NAME, where NAME is qualified by its namespace (zvr::kManual). Files follow one another.
function(zvr_embed target name)
  string(REGEX REPLACE "::[^:]*$" "" space "${name}")
  string(REGEX REPLACE "^.*::" "" variable "${name}")
  set(text "")
  foreach(file IN LISTS ARGN)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${file}")
    file(READ "${file}" content)
    # A literal for each file: compilers limit the length of one.
    string(APPEND text "\n    R\"embedded(${content})embedded\"")
  endforeach()
  file(CONFIGURE OUTPUT "${variable}.cpp" @ONLY CONTENT
    "namespace @space@ {\nextern const char* const @variable@;\nconst char* const @variable@ =@text@;\n}\n")
  target_sources(${target} PRIVATE "${CMAKE_CURRENT_BINARY_DIR}/${variable}.cpp")
endfunction()
