// Element access through the accessors that the host hands out for an array's element type.

#include "frame/entry_points.h"

namespace {

// The procedure that, given an array, answers the accessor for its element type. Each wrapper has its own.
using AccessorSource = HostEntry<void*(REALarrayStruct*)>;

template <typename T>
T getElement(AccessorSource& source, REALarrayStruct* array, int32_t index, T* value) {
  void* accessor = source(array);
  if (!accessor) return T();
  const T element = reinterpret_cast<T (*)(REALarrayStruct*, int32_t)>(accessor)(array, index);
  if (value) *value = element;
  return element;
}

template <typename T>
void setElement(AccessorSource& source, REALarrayStruct* array, int32_t index, T value) {
  // The host takes the value before the index here, unlike everywhere else.
  if (void* accessor = source(array))
    reinterpret_cast<void (*)(REALarrayStruct*, T, int32_t)>(accessor)(array, value, index);
}

template <typename T>
void insertElement(AccessorSource& source, REALarrayStruct* array, int32_t index, T value) {
  if (void* accessor = source(array))
    reinterpret_cast<void (*)(REALarrayStruct*, int32_t, T)>(accessor)(array, index, value);
}

}  // namespace

REALarrayStruct* REALCreateArray(int32_t elementType, int32_t upperBound) {
  static HostEntry<REALarrayStruct*(int32_t, int32_t)> entry{"RuntimeArrayCreateSingleDimBoundedArray"};
  return entry(elementType, upperBound);
}

int32_t REALGetArrayUBound(REALarrayStruct* array) {
  static HostEntry<int32_t(REALarrayStruct*)> entry{"RuntimeUBound"};
  return entry(array);
}

int64_t REALGetArrayValueInt64(REALarrayStruct* array, int32_t index, int64_t* value) {
  static AccessorSource source{"RuntimeArrayDirectGetGetProc"};
  return getElement(source, array, index, value);
}

int32_t REALGetArrayValueInt32(REALarrayStruct* array, int32_t index, int32_t* value) {
  static AccessorSource source{"RuntimeArrayDirectGetGetProc"};
  return getElement(source, array, index, value);
}

uint64_t REALGetArrayValueUInt64(REALarrayStruct* array, int32_t index, uint64_t* value) {
  static AccessorSource source{"RuntimeArrayDirectGetGetProc"};
  return getElement(source, array, index, value);
}

uint32_t REALGetArrayValueUInt32(REALarrayStruct* array, int32_t index, uint32_t* value) {
  static AccessorSource source{"RuntimeArrayDirectGetGetProc"};
  return getElement(source, array, index, value);
}

uint16_t REALGetArrayValueUInt16(REALarrayStruct* array, int32_t index, uint16_t* value) {
  static AccessorSource source{"RuntimeArrayDirectGetGetProc"};
  return getElement(source, array, index, value);
}

uint8_t REALGetArrayValueUInt8(REALarrayStruct* array, int32_t index, uint8_t* value) {
  static AccessorSource source{"RuntimeArrayDirectGetGetProc"};
  return getElement(source, array, index, value);
}

float REALGetArrayValueSingle(REALarrayStruct* array, int32_t index, float* value) {
  static AccessorSource source{"RuntimeArrayDirectGetGetProc"};
  return getElement(source, array, index, value);
}

double REALGetArrayValueDouble(REALarrayStruct* array, int32_t index, double* value) {
  static AccessorSource source{"RuntimeArrayDirectGetGetProc"};
  return getElement(source, array, index, value);
}

REALstringStruct* REALGetArrayValueString(REALarrayStruct* array, int32_t index, REALstringStruct** value) {
  static AccessorSource source{"RuntimeArrayDirectGetGetProc"};
  return getElement(source, array, index, value);
}

REALobjectStruct* REALGetArrayValueObject(REALarrayStruct* array, int32_t index, REALobjectStruct** value) {
  static AccessorSource source{"RuntimeArrayDirectGetGetProc"};
  return getElement(source, array, index, value);
}

void REALSetArrayValueInt64(REALarrayStruct* array, int32_t index, int64_t value) {
  static AccessorSource source{"RuntimeArrayDirectGetSetProc"};
  setElement(source, array, index, value);
}

void REALSetArrayValueInt32(REALarrayStruct* array, int32_t index, int32_t value) {
  static AccessorSource source{"RuntimeArrayDirectGetSetProc"};
  setElement(source, array, index, value);
}

void REALSetArrayValueInt16(REALarrayStruct* array, int32_t index, int16_t value) {
  static AccessorSource source{"RuntimeArrayDirectGetSetProc"};
  setElement(source, array, index, value);
}

void REALSetArrayValueInt8(REALarrayStruct* array, int32_t index, int8_t value) {
  static AccessorSource source{"RuntimeArrayDirectGetSetProc"};
  setElement(source, array, index, value);
}

void REALSetArrayValueUInt64(REALarrayStruct* array, int32_t index, uint64_t value) {
  static AccessorSource source{"RuntimeArrayDirectGetSetProc"};
  setElement(source, array, index, value);
}

void REALSetArrayValueUInt32(REALarrayStruct* array, int32_t index, uint32_t value) {
  static AccessorSource source{"RuntimeArrayDirectGetSetProc"};
  setElement(source, array, index, value);
}

void REALSetArrayValueUInt16(REALarrayStruct* array, int32_t index, uint16_t value) {
  static AccessorSource source{"RuntimeArrayDirectGetSetProc"};
  setElement(source, array, index, value);
}

void REALSetArrayValueUInt8(REALarrayStruct* array, int32_t index, uint8_t value) {
  static AccessorSource source{"RuntimeArrayDirectGetSetProc"};
  setElement(source, array, index, value);
}

void REALSetArrayValueSingle(REALarrayStruct* array, int32_t index, float value) {
  static AccessorSource source{"RuntimeArrayDirectGetSetProc"};
  setElement(source, array, index, value);
}

void REALSetArrayValueDouble(REALarrayStruct* array, int32_t index, double value) {
  static AccessorSource source{"RuntimeArrayDirectGetSetProc"};
  setElement(source, array, index, value);
}

void REALSetArrayValueString(REALarrayStruct* array, int32_t index, REALstringStruct* value) {
  static AccessorSource source{"RuntimeArrayDirectGetSetProc"};
  setElement(source, array, index, value);
}

void REALSetArrayValueObject(REALarrayStruct* array, int32_t index, REALobjectStruct* value) {
  static AccessorSource source{"RuntimeArrayDirectGetSetProc"};
  setElement(source, array, index, value);
}

void REALInsertArrayValueInt64(REALarrayStruct* array, int32_t index, int64_t value) {
  static AccessorSource source{"RuntimeArrayDirectGetInsertProc"};
  insertElement(source, array, index, value);
}

void REALInsertArrayValueInt32(REALarrayStruct* array, int32_t index, int32_t value) {
  static AccessorSource source{"RuntimeArrayDirectGetInsertProc"};
  insertElement(source, array, index, value);
}

void REALInsertArrayValueUInt64(REALarrayStruct* array, int32_t index, uint64_t value) {
  static AccessorSource source{"RuntimeArrayDirectGetInsertProc"};
  insertElement(source, array, index, value);
}

void REALInsertArrayValueUInt32(REALarrayStruct* array, int32_t index, uint32_t value) {
  static AccessorSource source{"RuntimeArrayDirectGetInsertProc"};
  insertElement(source, array, index, value);
}

void REALInsertArrayValueUInt16(REALarrayStruct* array, int32_t index, uint16_t value) {
  static AccessorSource source{"RuntimeArrayDirectGetInsertProc"};
  insertElement(source, array, index, value);
}

void REALInsertArrayValueSingle(REALarrayStruct* array, int32_t index, float value) {
  static AccessorSource source{"RuntimeArrayDirectGetInsertProc"};
  insertElement(source, array, index, value);
}

void REALInsertArrayValueDouble(REALarrayStruct* array, int32_t index, double value) {
  static AccessorSource source{"RuntimeArrayDirectGetInsertProc"};
  insertElement(source, array, index, value);
}

void REALInsertArrayValueString(REALarrayStruct* array, int32_t index, REALstringStruct* value) {
  static AccessorSource source{"RuntimeArrayDirectGetInsertProc"};
  insertElement(source, array, index, value);
}

void REALInsertArrayValueObject(REALarrayStruct* array, int32_t index, REALobjectStruct* value) {
  static AccessorSource source{"RuntimeArrayDirectGetInsertProc"};
  insertElement(source, array, index, value);
}
