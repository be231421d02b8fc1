// Scoped references on host objects and strings.
#pragma once

#include "frame/entry_points.h"

// Calls a function at the end of its scope, also during a host exception.
template <typename Function>
class AtExit {
 public:
  explicit AtExit(const Function& function) : function_(function) {}
  ~AtExit() noexcept(false) { function_(); }
  AtExit(const AtExit&) = delete;
  AtExit& operator=(const AtExit&) = delete;

 private:
  const Function function_;
};

// Owns one host reference. Releasing it lets a host exception propagate instead of terminating the process.
// On a host that lacks the service to add references, a shared one isn't released either: the plug-in must
// not destroy objects that it only borrows.
template <typename T>
class Held {
 public:
  // Takes ownership of the caller's reference; null for none.
  explicit Held(T* object = nullptr) : object_(object), isCounted_(object != nullptr) {}
  Held(Held&& other) noexcept : object_(other.object_), isCounted_(other.isCounted_) { other.forget(); }
  Held& operator=(Held&& other) {
    if (this == &other) return *this;
    T* const old = isCounted_ ? object_ : nullptr;
    object_ = other.object_;
    isCounted_ = other.isCounted_;
    other.forget();
    if (old) unlock(old);
    return *this;
  }
  ~Held() noexcept(false) {
    if (isCounted_) unlock(object_);
  }

  // Adds a reference to an object that others hold too.
  static Held share(T* object) {
    Held shared;
    shared.object_ = object;
    shared.isCounted_ = object && lock(object);
    return shared;
  }

  T* get() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }
  // Whether there is a reference to release; false for an object borrowed on a host without counting.
  bool isCounted() const { return isCounted_; }

  // Transfers the reference to the caller.
  T* release() {
    T* object = object_;
    forget();
    return object;
  }
  // Forgets the object without releasing it.
  void forget() {
    object_ = nullptr;
    isCounted_ = false;
  }

 private:
  template <typename Service, typename Counted>
  static bool countUp(Service& service, Counted* object) {
    if (!service.offered()) return false;
    service(object);
    return true;
  }
  static bool lock(REALobjectStruct* object) { return countUp(REALLockObject, object); }
  static bool lock(REALstringStruct* string) { return countUp(REALLockString, string); }
  static void unlock(REALobjectStruct* object) { REALUnlockObject(object); }
  static void unlock(REALstringStruct* string) { REALUnlockString(string); }

  T* object_;
  bool isCounted_;
};
