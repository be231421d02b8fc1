# Compile options of every file.
add_library(zvr_options INTERFACE)
target_compile_options(zvr_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wnon-virtual-dtor -Werror
  # double arithmetic with SSE2: each operation rounds to double
  -march=pentium4 -mtune=generic -mfpmath=sse -ffp-contract=off
  # hosts may call with a stack aligned to only 4 bytes
  -mstackrealign
  -fvisibility=hidden -fvisibility-inlines-hidden)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(zvr_options INTERFACE -Wduplicated-cond -Wlogical-op)
else()
  # A deduced template argument loses the alignment of kernels::Pixel; nothing is read through it.
  target_compile_options(zvr_options INTERFACE -Wno-align-mismatch)
endif()
if(ZVR_SANITIZE)
  add_compile_options(-fsanitize=${ZVR_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # Plug-in and host declare each other's functions with their own types; a const may differ.
    add_compile_options(-fno-sanitize=function)
  endif()
  add_link_options(-fsanitize=${ZVR_SANITIZE})
  # For the code that dominates the tests' run time. The tests themselves compile faster without it.
  set(ZVR_QUICKER_IF_SANITIZED "$<$<CONFIG:Debug>:-O1>")
endif()
