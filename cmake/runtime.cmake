# function(zvr_runtime_libraries variable program [folder...]) lists the libraries that a program needs beyond those of every
# i386 system, also searching these folders. Called during installation and packaging.
function(zvr_runtime_libraries variable program)
  file(GET_RUNTIME_DEPENDENCIES EXECUTABLES "${program}" DIRECTORIES ${ARGN} RESOLVED_DEPENDENCIES_VAR found
    PRE_EXCLUDE_REGEXES "^lib(c|m|dl|pthread|rt|gcc_s|stdc\\+\\+)\\.so" "^ld-linux")
  set(${variable} ${found} PARENT_SCOPE)
endfunction()
