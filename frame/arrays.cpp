// Typed access to the host's arrays.

#include "frame/arrays.h"

#include "frame/host_state.h"

namespace {

// The host's element type codes. Dictionaries, variants and folder items are objects.
enum ElementType : int32_t {
  kInteger = 0,
  kSingle = 1,
  kDouble = 2,
  kString = 3,
  kObject = 4,
  kUInt16 = 7,
  kUInt32 = 9,
  kUInt64 = 10,
  kInt64 = 11,
};

// The last host version that allows direct access to the element storage.
constexpr double kLastDirectVersion = 2013.9;

// The array's element storage, its third word; null if elements must go through the host.
template <typename T>
T* storageOf(REALarrayStruct* array) {
  if (rbversion_rbversion > kLastDirectVersion) return nullptr;
  return static_cast<T*>(reinterpret_cast<void**>(array)[2]);
}

template <typename T>
T counted(T value) {
  return value;
}
REALstringStruct* counted(REALstringStruct* value) {
  if (value) REALLockString(value);
  return value;
}
REALobjectStruct* counted(REALobjectStruct* value) {
  if (value) REALLockObject(value);
  return value;
}

template <typename T>
void drop(T) {}
void drop(REALstringStruct* value) {
  if (value) REALUnlockString(value);
}
void drop(REALobjectStruct* value) {
  if (value) REALUnlockObject(value);
}

template <typename T>
void getValue(REALarrayStruct* array, int32_t index, T* value, ElementGetter<T>& ask) {
  if (!array) return;
  if (T* storage = storageOf<T>(array)) {
    *value = counted(storage[index]);
  } else {
    ask(array, index, value);
  }
}

template <typename T>
void setValue(REALarrayStruct* array, int32_t index, T value, ElementSetter<T>& ask) {
  if (!array) return;
  if (T* storage = storageOf<T>(array)) {
    const T old = storage[index];
    storage[index] = counted(value);
    drop(old);
  } else {
    ask(array, index, value);
  }
}

template <typename T>
T getOld(REALarrayStruct* array, int32_t index, HostEntry<T(REALarrayStruct*, int32_t)>& ask) {
  if (!array) return T();
  if (T* storage = storageOf<T>(array)) return counted(storage[index]);
  return ask(array, index);
}

}  // namespace

REALarrayStruct* REALCreateArrayInteger(int32_t upperBound) { return REALCreateArray(kInteger, upperBound); }
REALarrayStruct* REALCreateArraySingle(int32_t upperBound) { return REALCreateArray(kSingle, upperBound); }
REALarrayStruct* REALCreateArrayDouble(int32_t upperBound) { return REALCreateArray(kDouble, upperBound); }
REALarrayStruct* REALCreateArrayString(int32_t upperBound) { return REALCreateArray(kString, upperBound); }
REALarrayStruct* REALCreateArrayObject(int32_t upperBound) { return REALCreateArray(kObject, upperBound); }
REALarrayStruct* REALCreateArrayDictionary(int32_t upperBound) {
  return REALCreateArray(kObject, upperBound);
}
REALarrayStruct* REALCreateArrayVariant(int32_t upperBound) { return REALCreateArray(kObject, upperBound); }
REALarrayStruct* REALCreateArrayFolderItem(int32_t upperBound) {
  return REALCreateArray(kObject, upperBound);
}
REALarrayStruct* REALCreateArrayUInt16(int32_t upperBound) { return REALCreateArray(kUInt16, upperBound); }
REALarrayStruct* REALCreateArrayUInt32(int32_t upperBound) { return REALCreateArray(kUInt32, upperBound); }
REALarrayStruct* REALCreateArrayUInt64(int32_t upperBound) { return REALCreateArray(kUInt64, upperBound); }
REALarrayStruct* REALCreateArrayInt64(int32_t upperBound) { return REALCreateArray(kInt64, upperBound); }

void REALGetArrayValue(REALarrayStruct* array, int32_t index, int32_t* value) {
  getValue(array, index, value, REALGetArrayValueInt32);
}
void REALGetArrayValue(REALarrayStruct* array, int32_t index, uint32_t* value) {
  getValue(array, index, value, REALGetArrayValueUInt32);
}
void REALGetArrayValue(REALarrayStruct* array, int32_t index, uint16_t* value) {
  getValue(array, index, value, REALGetArrayValueUInt16);
}
void REALGetArrayValue(REALarrayStruct* array, int32_t index, uint8_t* value) {
  getValue(array, index, value, REALGetArrayValueUInt8);
}
void REALGetArrayValue(REALarrayStruct* array, int32_t index, int64_t* value) {
  getValue(array, index, value, REALGetArrayValueInt64);
}
void REALGetArrayValue(REALarrayStruct* array, int32_t index, uint64_t* value) {
  getValue(array, index, value, REALGetArrayValueUInt64);
}
void REALGetArrayValue(REALarrayStruct* array, int32_t index, float* value) {
  getValue(array, index, value, REALGetArrayValueSingle);
}
void REALGetArrayValue(REALarrayStruct* array, int32_t index, double* value) {
  getValue(array, index, value, REALGetArrayValueDouble);
}
void REALGetArrayValue(REALarrayStruct* array, int32_t index, REALstringStruct** value) {
  getValue(array, index, value, REALGetArrayValueString);
}
void REALGetArrayValue(REALarrayStruct* array, int32_t index, REALobjectStruct** value) {
  getValue(array, index, value, REALGetArrayValueObject);
}

void REALSetArrayValue(REALarrayStruct* array, int32_t index, int32_t value) {
  setValue(array, index, value, REALSetArrayValueInt32);
}
void REALSetArrayValue(REALarrayStruct* array, int32_t index, uint32_t value) {
  setValue(array, index, value, REALSetArrayValueUInt32);
}
void REALSetArrayValue(REALarrayStruct* array, int32_t index, int16_t value) {
  setValue(array, index, value, REALSetArrayValueInt16);
}
void REALSetArrayValue(REALarrayStruct* array, int32_t index, uint16_t value) {
  setValue(array, index, value, REALSetArrayValueUInt16);
}
void REALSetArrayValue(REALarrayStruct* array, int32_t index, int8_t value) {
  setValue(array, index, value, REALSetArrayValueInt8);
}
void REALSetArrayValue(REALarrayStruct* array, int32_t index, uint8_t value) {
  setValue(array, index, value, REALSetArrayValueUInt8);
}
void REALSetArrayValue(REALarrayStruct* array, int32_t index, int64_t value) {
  setValue(array, index, value, REALSetArrayValueInt64);
}
void REALSetArrayValue(REALarrayStruct* array, int32_t index, uint64_t value) {
  setValue(array, index, value, REALSetArrayValueUInt64);
}
void REALSetArrayValue(REALarrayStruct* array, int32_t index, float value) {
  setValue(array, index, value, REALSetArrayValueSingle);
}
void REALSetArrayValue(REALarrayStruct* array, int32_t index, double value) {
  setValue(array, index, value, REALSetArrayValueDouble);
}
void REALSetArrayValue(REALarrayStruct* array, int32_t index, REALstringStruct* value) {
  setValue(array, index, value, REALSetArrayValueString);
}
void REALSetArrayValue(REALarrayStruct* array, int32_t index, REALobjectStruct* value) {
  setValue(array, index, value, REALSetArrayValueObject);
}

int32_t REALGetArrayInt(REALarrayStruct* array, int32_t index) {
  static HostEntry<int32_t(REALarrayStruct*, int32_t)> entry{"RuntimeDirectReadIntArray"};
  return getOld(array, index, entry);
}

REALstringStruct* REALGetArrayString(REALarrayStruct* array, int32_t index) {
  static HostEntry<REALstringStruct*(REALarrayStruct*, int32_t)> entry{"RuntimeDirectReadStringArray"};
  return getOld(array, index, entry);
}

REALobjectStruct* REALGetArrayObject(REALarrayStruct* array, int32_t index) {
  static HostEntry<REALobjectStruct*(REALarrayStruct*, int32_t)> entry{"RuntimeDirectReadObjectArray"};
  return getOld(array, index, entry);
}

void REALInsertArrayValue(REALarrayStruct* array, int32_t index, int32_t value) {
  REALInsertArrayValueInt32(array, index, value);
}
void REALInsertArrayValue(REALarrayStruct* array, int32_t index, uint32_t value) {
  REALInsertArrayValueUInt32(array, index, value);
}
void REALInsertArrayValue(REALarrayStruct* array, int32_t index, uint16_t value) {
  REALInsertArrayValueUInt16(array, index, value);
}
void REALInsertArrayValue(REALarrayStruct* array, int32_t index, int64_t value) {
  REALInsertArrayValueInt64(array, index, value);
}
void REALInsertArrayValue(REALarrayStruct* array, int32_t index, uint64_t value) {
  REALInsertArrayValueUInt64(array, index, value);
}
void REALInsertArrayValue(REALarrayStruct* array, int32_t index, float value) {
  REALInsertArrayValueSingle(array, index, value);
}
void REALInsertArrayValue(REALarrayStruct* array, int32_t index, double value) {
  REALInsertArrayValueDouble(array, index, value);
}
void REALInsertArrayValue(REALarrayStruct* array, int32_t index, REALstringStruct* value) {
  REALInsertArrayValueString(array, index, value);
}
void REALInsertArrayValue(REALarrayStruct* array, int32_t index, REALobjectStruct* value) {
  REALInsertArrayValueObject(array, index, value);
}

void REALAppendArrayValue(REALarrayStruct* array, REALstringStruct* value) {
  if (array) REALInsertArrayValue(array, REALGetArrayUBound(array) + 1, value);
}
void REALAppendArrayValue(REALarrayStruct* array, REALobjectStruct* value) {
  if (array) REALInsertArrayValue(array, REALGetArrayUBound(array) + 1, value);
}
