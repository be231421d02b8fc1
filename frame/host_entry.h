// One service of the host, found by name on first use.
#pragma once

#include "frame/host_interface.h"

// Asks the host for an entry point, uncached: its address, or null when the host does not offer that name.
void* HCallResolver(const char* name);

// A cached entry point with its C signature. Calling it answers zero, null or nothing while the host does not
// offer the name (a null answer is not remembered: the next call asks again). Two threads that race on a
// first call store the same address. Constant-initialised, so a function-local static needs no guard.
template <typename Signature>
class HostEntry;

template <typename Result, typename... Arguments>
class HostEntry<Result(Arguments...)> {
 public:
  using Function = Result(Arguments...);

  constexpr explicit HostEntry(const char* name) : name_(name) {}

  // Whether the host offers it; asks the resolver as a call would.
  bool offered() {
    if (!address_) address_ = HCallResolver(name_);
    return address_ != nullptr;
  }

  Result operator()(Arguments... arguments) {
    if (!offered()) return Result();
    return reinterpret_cast<Result (*)(Arguments...)>(address_)(arguments...);
  }

 private:
  const char* name_;
  void* address_ = nullptr;
};
