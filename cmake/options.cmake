# Options for every file.
add_library(zvr_options INTERFACE)
target_compile_options(zvr_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wnon-virtual-dtor -Werror
  # double arithmetic in SSE2, each operation rounded to double
  -march=pentium4 -mtune=generic -mfpmath=sse -ffp-contract=off
  # hosts may call with a stack that is aligned to 4 bytes only
  -mstackrealign
  -fvisibility=hidden -fvisibility-inlines-hidden)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(zvr_options INTERFACE -Wduplicated-cond -Wlogical-op)
else()
  # A deduced template argument drops the alignment from kernels::Pixel; nothing is read through it.
  target_compile_options(zvr_options INTERFACE -Wno-align-mismatch)
endif()
if(ZVR_SANITIZE)
  add_compile_options(-fsanitize=${ZVR_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # Plug-in and host each have their own types for what they call in the other; a const may differ.
    add_compile_options(-fno-sanitize=function)
  endif()
  add_link_options(-fsanitize=${ZVR_SANITIZE})
  add_compile_definitions(ZVR_SANITIZED)
  # For code that the tests then spend their time in. They themselves compile faster without.
  set(ZVR_QUICKER_IF_SANITIZED "$<$<CONFIG:Debug>:-O1>")
endif()
