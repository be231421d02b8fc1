// A host service, looked up by name on first use.
#pragma once

#include "frame/host_interface.h"

// Looks up an entry point, uncached. Null if the host does not offer that name.
void* HCallResolver(const char* name);

// A cached entry point with its C signature. While the host does not offer the name, a call returns zero,
// null or nothing, and the next call looks it up again. Two threads that race on a first call store the same
// address. Constant-initialised, so a function-local static needs no guard.
template <typename Signature>
class HostEntry;

template <typename Result, typename... Arguments>
class HostEntry<Result(Arguments...)> {
 public:
  using Function = Result(Arguments...);

  constexpr explicit HostEntry(const char* name) : name_(name) {}

  // Whether the host offers the service; looks it up as a call would.
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
