// How a shim calls the library that it replaces.
#pragma once

#include <dlfcn.h>

#define SHIM_EXPORT extern "C" __attribute__((visibility("default")))

// The function of this name in the real library, which the shim is linked to and which therefore is loaded.
template <typename Function>
Function* realFunction(const char* library, const char* name) {
  return reinterpret_cast<Function*>(dlsym(dlopen(library, RTLD_NOW | RTLD_NOLOAD), name));
}
