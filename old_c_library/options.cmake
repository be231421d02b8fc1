# Link options of libraries that need the C runtime only, and an old one; README.md beside this file says why.
set(ZVR_C_RUNTIME_ONLY -static-libgcc -static-libstdc++ -Wl,--hash-style=both
  -Wl,--push-state,--no-as-needed -l:libdl.so.2 -Wl,--pop-state
  -Wl,--wrap=pthread_once -Wl,--wrap=__pthread_key_create)
