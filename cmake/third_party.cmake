# Libraries that our host and the tests use. The plug-in itself uses none of them.
find_package(PkgConfig REQUIRED)
find_package(CLI11 REQUIRED)
pkg_check_modules(PNG REQUIRED IMPORTED_TARGET libpng)
pkg_check_modules(FFI REQUIRED IMPORTED_TARGET libffi)
pkg_check_modules(SNDFILE REQUIRED IMPORTED_TARGET sndfile)
find_package(nlohmann_json REQUIRED)
find_path(MUSTACHE_INCLUDE_DIR kainjow/mustache.hpp REQUIRED)
pkg_check_modules(OCIO REQUIRED IMPORTED_TARGET OpenColorIO)
pkg_check_modules(CMARK REQUIRED IMPORTED_TARGET libcmark-gfm)
find_library(CMARK_EXTENSIONS_LIBRARY cmark-gfm-extensions REQUIRED)
find_path(GRAPHICSMAGICK_INCLUDE_DIR magick/api.h PATH_SUFFIXES GraphicsMagick REQUIRED)
find_library(GRAPHICSMAGICK_LIBRARY GraphicsMagick REQUIRED)
add_library(graphicsmagick INTERFACE)
target_include_directories(graphicsmagick SYSTEM INTERFACE "${GRAPHICSMAGICK_INCLUDE_DIR}")
target_link_libraries(graphicsmagick INTERFACE "${GRAPHICSMAGICK_LIBRARY}")
# Only the declarations of GTK 2 and cairo: our host opens both at run time, as the plug-in does.
pkg_check_modules(GTK2 REQUIRED gtk+-2.0)
pkg_check_modules(CAIRO REQUIRED cairo)
find_package(GTest REQUIRED)
pkg_check_modules(BENCHMARK REQUIRED IMPORTED_TARGET benchmark)

if(ZVR_I386_TREE)
  set(ZVR_I386_LIBRARY_DIRS "${ZVR_I386_TREE}/usr/lib/i386-linux-gnu;${ZVR_I386_TREE}/lib/i386-linux-gnu;${ZVR_I386_TREE}/usr/lib")
  foreach(directory IN LISTS ZVR_I386_LIBRARY_DIRS)
    add_link_options("-L${directory}" "-Wl,-rpath-link,${directory}")
  endforeach()
endif()
# function(zvr_run_path target [folder...]) sets a program's run path; the given folders come first. An old-style run path
# (DT_RPATH) also applies to libraries that the plug-in opens at run time and to their dependencies. Set as if for
# installation: CMake ends one that it is to edit while it installs with an empty element, the current folder.
function(zvr_run_path target)
  target_link_options(${target} PRIVATE -Wl,--disable-new-dtags)
  set(folders ${ARGN} ${ZVR_I386_LIBRARY_DIRS})
  set_target_properties(${target} PROPERTIES
    BUILD_WITH_INSTALL_RPATH ON INSTALL_RPATH "${folders}" INSTALL_RPATH_USE_LINK_PATH ON)
endfunction()
