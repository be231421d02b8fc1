# The plug-in. Its objects are also linked directly into the tests of its inner layers.
file(GLOB ZVR_PLUGIN_SOURCES CONFIGURE_DEPENDS
  "${CMAKE_SOURCE_DIR}/plugin/*.cpp" "${CMAKE_SOURCE_DIR}/operations/*.cpp" "${CMAKE_SOURCE_DIR}/classes/*.cpp"
  "${CMAKE_SOURCE_DIR}/picture/*.cpp" "${CMAKE_SOURCE_DIR}/frame/*.cpp" "${CMAKE_SOURCE_DIR}/old_c_library/*.cpp")
add_library(picturezvr_objects OBJECT ${ZVR_PLUGIN_SOURCES})
target_link_libraries(picturezvr_objects PUBLIC zvr_options zvr_kernels)
# One section per function, so that the linker drops unused services of frame/.
target_compile_options(picturezvr_objects PRIVATE -ffunction-sections -fdata-sections ${ZVR_QUICKER_IF_SANITIZED})
# The library is optimised as a whole: calls on small pictures take a third fewer instructions. Tests take the objects as they
# are.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_BUILD_TYPE STREQUAL "Release")
  target_compile_options(picturezvr_objects PRIVATE -flto -ffat-lto-objects)
  # Its versioned symbols are lines of assembly, which are lost among functions of other files.
  file(GLOB ZVR_OLD_C_LIBRARY_SOURCES "${CMAKE_SOURCE_DIR}/old_c_library/*.cpp")
  set_source_files_properties(${ZVR_OLD_C_LIBRARY_SOURCES} PROPERTIES COMPILE_OPTIONS -fno-lto)
  set(ZVR_AS_A_WHOLE -flto=auto -march=pentium4 -mfpmath=sse)
  target_link_options(picturezvr_objects INTERFACE
    "$<IF:$<STREQUAL:$<TARGET_PROPERTY:NAME>,picturezvr>,${ZVR_AS_A_WHOLE},-fno-lto>")
endif()

# Where an installed zvr finds it. Programs only open it while they run: it is no public library.
cmake_path(SET ZVR_PLUGIN_FOLDER NORMALIZE "lib/${CMAKE_LIBRARY_ARCHITECTURE}/picturezvr")
add_library(picturezvr SHARED "${CMAKE_SOURCE_DIR}/cmake/exports.map")
set_target_properties(picturezvr PROPERTIES LINKER_LANGUAGE CXX
  LINK_DEPENDS "${CMAKE_SOURCE_DIR}/cmake/exports.map")
target_link_libraries(picturezvr PRIVATE picturezvr_objects ${CMAKE_DL_LIBS})
target_link_options(picturezvr PRIVATE
  -Wl,--version-script=${CMAKE_SOURCE_DIR}/cmake/exports.map
  -Wl,--no-undefined -Wl,-z,relro -Wl,-z,now -Wl,-z,text -Wl,--gc-sections)
if(NOT ZVR_SANITIZE)
  target_link_options(picturezvr PRIVATE ${ZVR_C_RUNTIME_ONLY})
else()
  # The program that loads the library provides the sanitizer runtime.
  target_link_options(picturezvr PRIVATE -Wl,-z,undefs)
endif()
if(CMAKE_OBJDUMP)
  add_custom_command(TARGET picturezvr POST_BUILD VERBATIM COMMAND "${CMAKE_COMMAND}"
    "-DOBJDUMP=${CMAKE_OBJDUMP}" "-DLIBRARY=$<TARGET_FILE:picturezvr>" -P "${CMAKE_SOURCE_DIR}/old_c_library/needed_version.cmake")
endif()
