// Element access in three stages: the host's procedure for the operation, the accessor that this procedure
// answers for the element type of the array, the element.
#pragma once

#include "frame/host_entry.h"

namespace frame {

// Each wrapper looks its procedure up by itself.
class ElementAccess {
 protected:
  constexpr explicit ElementAccess(const char* procedure) : procedure_(procedure) {}
  // Null when the host lacks the procedure, and when that answers null.
  template <typename Accessor>
  Accessor* accessorFor(REALarrayStruct* array) {
    return reinterpret_cast<Accessor*>(procedure_(array));
  }

 private:
  HostEntry<void*(REALarrayStruct* array)> procedure_;
};

}  // namespace frame

// Answers the element, and stores it through `value` when that is not null. Zero, and nothing stored, without
// an accessor.
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
  // The host takes the value before the index here, unlike everywhere else.
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
