// Arrays of the dialect: storage in one piece, element access through procedures chosen by element type.

#include <cstring>

#include "host/entry_points.h"
#include "host/objects_internal.h"

namespace host {
namespace {

// Strings and objects are kept with a reference each and handed out with one more.
void keep(REALstringStruct* value) { retain(value); }
void keep(REALobjectStruct* value) { retain(value); }
void drop(REALstringStruct* value) { release(value); }
void drop(REALobjectStruct* value) { release(value); }
template <typename Element>
void keep(Element) {}
template <typename Element>
void drop(Element) {}

// The array; null, with an OutOfBoundsException pending, unless 0 <= index < count + past.
Array* within(const void* handle, int32_t index, int32_t past) {
  auto* array = find<Array>(handle, "access element");
  if (!array) return nullptr;
  if (index >= 0 && index < array->count() + past) return array;
  raise("OutOfBoundsException", "");
  return nullptr;
}

template <typename Element>
Element* elementAt(Array& array, int32_t index) {
  return reinterpret_cast<Element*>(array.bytes.data()) + index;
}

template <typename Element>
Element getElement(REALarrayStruct* handle, int32_t index) {
  Array* array = within(handle, index, 0);
  if (!array) return Element();
  const Element value = *elementAt<Element>(*array, index);
  keep(value);
  return value;
}

template <typename Element>
void setElement(REALarrayStruct* handle, Element value, int32_t index) {
  Array* array = within(handle, index, 0);
  if (!array) return;
  keep(value);
  drop(std::exchange(*elementAt<Element>(*array, index), value));
}

template <typename Element>
void insertElement(REALarrayStruct* handle, int32_t index, Element value) {
  Array* array = within(handle, index, 1);
  if (!array) return;
  keep(value);
  const auto* bytes = reinterpret_cast<const uint8_t*>(&value);
  const auto offset = static_cast<std::ptrdiff_t>(index) * static_cast<std::ptrdiff_t>(sizeof(Element));
  array->bytes.insert(array->bytes.begin() + offset, bytes, bytes + sizeof(Element));
  array->words->elements = array->bytes.data();
}

struct ElementType {
  int32_t code;
  size_t width;
  void *get, *set, *insert;
};
template <typename Element>
ElementType elementType(int32_t code) {
  return {code, sizeof(Element), reinterpret_cast<void*>(&getElement<Element>),
          reinterpret_cast<void*>(&setElement<Element>), reinterpret_cast<void*>(&insertElement<Element>)};
}

const ElementType* typeOf(int32_t code) {
  static const ElementType types[] = {
      elementType<int32_t>(0),
      elementType<float>(1),
      elementType<double>(2),
      elementType<REALstringStruct*>(3),
      elementType<REALobjectStruct*>(4),
      elementType<int8_t>(5),
      elementType<int16_t>(6),
      elementType<uint16_t>(7),
      elementType<uint8_t>(8),
      elementType<uint32_t>(9),
      elementType<uint64_t>(10),
      elementType<int64_t>(11),
  };
  for (const ElementType& type : types) {
    if (type.code == code) return &type;
  }
  return nullptr;
}

// ---- Services ----

REALarrayStruct* createArray(int32_t type, int32_t upperBound) {
  auto* array = newArray(type, upperBound).leak();
  return reinterpret_cast<REALarrayStruct*>(array);
}

int32_t upperBoundOf(REALarrayStruct* handle) {
  const auto* array = find<Array>(handle, "get upper bound");
  return array ? array->count() - 1 : -1;
}

template <void* ElementType::*Procedure>
void* procedureOf(REALarrayStruct* handle) {
  const auto* array = find<Array>(handle, "get element procedure");
  return array ? typeOf(array->elementType)->*Procedure : nullptr;
}

// For the old services, which serve arrays of their own element type only.
template <typename Element>
Element readDirectly(REALarrayStruct* handle, int32_t index) {
  const auto* array = find<Array>(handle, "read element");
  if (!array || typeOf(array->elementType)->get != reinterpret_cast<void*>(&getElement<Element>))
    return Element();
  return getElement<Element>(handle, index);
}

template <typename Handle>
void dropAll(Array& array) {
  for (int32_t i = 0; i < array.count(); ++i) drop(*elementAt<Handle*>(array, i));
}

}  // namespace

std::string Array::describe() const {
  return "array of " + std::to_string(count()) + " elements of type " + std::to_string(elementType);
}

void Array::die() {
  if (elementType == 3) dropAll<REALstringStruct>(*this);
  if (elementType == 4) dropAll<REALobjectStruct>(*this);
}

ObjectRef newArray(int32_t code, int32_t upperBound) {
  const ElementType* type = typeOf(code);
  const int64_t size = (int64_t{upperBound} + 1) * static_cast<int64_t>(type ? type->width : 0);
  if (!type || upperBound < -1 || size > 0x7FFFFFFF) return {};
  auto array = std::make_unique<Array>(code, type->width);
  array->bytes.resize(static_cast<size_t>(size));
  Array* enrolled = enrollNew(std::move(array));
  enrolled->words->elements = enrolled->bytes.empty() ? nullptr : enrolled->bytes.data();
  return ObjectRef::adopt(handleOf<REALobjectStruct>(enrolled));
}

void addArrayServices(std::vector<Entry>& all) {
  all.insert(all.end(), {
                            entry<createArray>("RuntimeArrayCreateSingleDimBoundedArray"),
                            entry<upperBoundOf>("RuntimeUBound"),
                            entry<procedureOf<&ElementType::get>>("RuntimeArrayDirectGetGetProc"),
                            entry<procedureOf<&ElementType::set>>("RuntimeArrayDirectGetSetProc"),
                            entry<procedureOf<&ElementType::insert>>("RuntimeArrayDirectGetInsertProc"),
                            entry<readDirectly<int32_t>>("RuntimeDirectReadIntArray"),
                            entry<readDirectly<REALstringStruct*>>("RuntimeDirectReadStringArray"),
                            entry<readDirectly<REALobjectStruct*>>("RuntimeDirectReadObjectArray"),
                        });
}

}  // namespace host
