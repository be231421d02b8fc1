#include "old_c_library/dynamic_loader.h"

#include <dlfcn.h>

// Both old and new C libraries have these versions.
asm(".symver dlopen, dlopen@GLIBC_2.1");
asm(".symver dlsym, dlsym@GLIBC_2.0");

void* openLibrary(const char* name) { return dlopen(name, RTLD_NOW); }
void* findSymbol(void* library, const char* symbol) { return dlsym(library, symbol); }
