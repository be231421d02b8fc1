# Compiles 32-bit x86 programs on a 64-bit machine. Third-party libraries come from the private i386 tree that
# `./dev setup` creates; ZVR_I386_TREE (cache or environment) holds its path.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_FLAGS_INIT "-m32")
set(CMAKE_CXX_FLAGS_INIT "-m32")

set(ZVR_I386_TREE "$ENV{ZVR_I386_TREE}" CACHE PATH "Private tree of i386 libraries; empty: the system's own")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ZVR_I386_TREE)

# 32-bit machines need no tree.
if(ZVR_I386_TREE)
  set(CMAKE_FIND_ROOT_PATH "${ZVR_I386_TREE}")
  set(CMAKE_LIBRARY_ARCHITECTURE i386-linux-gnu)
  set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
  set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
  set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
  set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
  set(ENV{PKG_CONFIG_SYSROOT_DIR} "${ZVR_I386_TREE}")
  set(ENV{PKG_CONFIG_LIBDIR} "${ZVR_I386_TREE}/usr/lib/i386-linux-gnu/pkgconfig:${ZVR_I386_TREE}/usr/share/pkgconfig")
endif()
