# Link options for libraries that depend only on the C library, and on an old one. See README.md in this folder.
set(ZVR_OLD_C_LIBRARY -static-libgcc -static-libstdc++ -Wl,--hash-style=both
  -Wl,--push-state,--no-as-needed -l:libdl.so.2 -Wl,--pop-state
  -Wl,--wrap=pthread_once -Wl,--wrap=__pthread_key_create)
