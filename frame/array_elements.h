// Element access in three stages: the host's procedure for the operation returns an accessor for the array's
// element type, and the accessor reads or writes the element.
#pragma once

#include "frame/host_entry.h"

namespace frame {

// Each wrapper looks up its own procedure.
class ElementAccess {
 protected:
  constexpr explicit ElementAccess(const char* procedure) : procedure_(procedure) {}
  // Null if the host lacks the procedure, or the procedure returns null.
  template <typename Accessor>
  Accessor* accessorFor(REALarrayStruct* array) {
    return reinterpret_cast<Accessor*>(procedure_(array));
  }

 private:
  HostEntry<void*(REALarrayStruct* array)> procedure_;
};

}  // namespace frame

// Returns the element and stores it through `value` unless that is null. Without an accessor returns zero and
// stores nothing.
template <typename T>
class ElementGetter : frame::ElementAccess {
 public:
  constexpr ElementGetter() : ElementAccess("RuntimeArrayDirectGetGetProc") {}
  T operator()(REALarrayStruct* array, int32_t index, T* value) {
    auto* accessor = accessorFor<T(REALarrayStruct*, int32_t)>(array);
    if (!accessor) return T();
    const T element = accessor(array, index);
    if (value) *value = element;
    return element;
  }
};

template <typename T>
class ElementSetter : frame::ElementAccess {
 public:
  constexpr ElementSetter() : ElementAccess("RuntimeArrayDirectGetSetProc") {}
  // Here the host takes the value before the index, unlike everywhere else.
  void operator()(REALarrayStruct* array, int32_t index, T value) {
    if (auto* accessor = accessorFor<void(REALarrayStruct*, T, int32_t)>(array))
      accessor(array, value, index);
  }
};

template <typename T>
class ElementInserter : frame::ElementAccess {
 public:
  constexpr ElementInserter() : ElementAccess("RuntimeArrayDirectGetInsertProc") {}
  void operator()(REALarrayStruct* array, int32_t index, T value) {
    if (auto* accessor = accessorFor<void(REALarrayStruct*, int32_t, T)>(array))
      accessor(array, index, value);
  }
};
