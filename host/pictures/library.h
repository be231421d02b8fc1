// A library that the host opens while it runs, so that no host needs the toolkits of another.
#pragma once

#include <dlfcn.h>

#include <string>

#include "host/host.h"

namespace host {

class Library {
 public:
  // Throws MissingLibrary with the loader's words. The library stays open as long as the process lives.
  explicit Library(const char* name) : handle_(dlopen(name, RTLD_NOW | RTLD_LOCAL)) {
    if (!handle_) throw MissingLibrary(std::string("this host needs a library: ") + dlerror());
  }
  template <typename Function>
  void find(const char* name, Function& function) const {
    function = reinterpret_cast<Function>(dlsym(handle_, name));
    if (!function) throw MissingLibrary(std::string("this host needs a function: ") + dlerror());
  }

 private:
  void* handle_;
};

}  // namespace host
