// Properties by name, typed by the entry point that is used, and variants, whose value is a property.

#include "host/entry_points.h"
#include "host/objects_internal.h"

namespace host {
namespace {

// A property is read and written only by entry points of its own kind: whole numbers of any width, floating
// numbers, booleans, strings, objects.
template <typename Native>
bool toNative(const PropertyValue& value, Native& native) {
  using Kept = std::conditional_t<std::is_floating_point_v<Native>, double,
                                  std::conditional_t<std::is_same_v<Native, RBBoolean>, bool, int64_t>>;
  const auto* kept = std::get_if<Kept>(&value);
  if (kept) native = static_cast<Native>(*kept);
  return kept != nullptr;
}
bool toNative(const PropertyValue& value, REALstringStruct*& native) {
  const auto* text = std::get_if<Text>(&value);
  if (text) native = newString(text->bytes, text->encoding).leak();
  return text != nullptr;
}
bool toNative(const PropertyValue& value, REALobjectStruct*& native) {
  const auto* object = std::get_if<ObjectRef>(&value);
  if (object) native = ObjectRef(*object).leak();
  return object != nullptr;
}

template <typename Native>
PropertyValue fromNative(Native native) {
  if constexpr (std::is_floating_point_v<Native>) {
    return static_cast<double>(native);
  } else if constexpr (std::is_same_v<Native, RBBoolean>) {
    return native != 0;
  } else {
    return static_cast<int64_t>(native);
  }
}
PropertyValue fromNative(REALstringStruct* native) {
  if (!native) return Text{};
  return Text{stringBytes(native), stringEncoding(native)};
}
PropertyValue fromNative(REALobjectStruct* native) {
  if (native) retain(native);
  return ObjectRef::adopt(native);
}

// Strings and objects are handed over with a reference for the caller.
template <typename Native>
RBBoolean getProperty(REALobjectStruct* handle, const char* name, Native* native) {
  const auto* object = find<Object>(handle, "get property");
  PropertyValue value;
  return object && name && native && object->readProperty(name, value) && toNative(value, *native);
}

template <typename Native>
RBBoolean setProperty(REALobjectStruct* handle, const char* name, Native native) {
  auto* object = find<Object>(handle, "set property");
  if (!object || !name) return 0;
  const auto found = object->properties.find(name);
  PropertyValue value = fromNative(native);
  if (found == object->properties.end() || found->second.index() != value.index()) return 0;
  found->second = std::move(value);
  return 1;
}

// The property under which a variant shows what it wraps.
struct VariantOf {
  static constexpr const char *kString = "StringValue", *kPointer = "PtrValue", *kInteger = "IntegerValue",
                              *kDouble = "DoubleValue", *kBoolean = "BooleanValue", *kColor = "ColorValue",
                              *kUInt32 = "UInt32Value", *kInt64 = "Int64Value", *kUInt64 = "UInt64Value",
                              *kSingle = "SingleValue";
};
template <const char* const& Property, typename Native>
REALobjectStruct* makeVariant(Native native) {
  auto variant = std::make_unique<Object>("Variant");
  if constexpr (std::is_same_v<Native, void*>) {
    variant->properties[Property] = static_cast<int64_t>(reinterpret_cast<uintptr_t>(native));
  } else {
    variant->properties[Property] = fromNative(native);
  }
  return handleOf<REALobjectStruct>(enrollNew(std::move(variant)));
}

}  // namespace

bool Object::readProperty(const std::string& name, PropertyValue& value) const {
  const auto found = properties.find(name);
  if (found == properties.end()) return false;
  value = found->second;
  return true;
}

void addPropertyServices(std::vector<Entry>& all) {
  all.insert(all.end(), {
                            entry<getProperty<int32_t>>("REALGetPropValueInt"),
                            entry<getProperty<REALstringStruct*>>("REALGetPropValueString"),
                            entry<getProperty<double>>("REALGetPropValueDouble"),
                            entry<getProperty<REALobjectStruct*>>("REALGetPropValueObject"),
                            entry<getProperty<int64_t>>("REALGetPropValueInt64"),
                            entry<getProperty<uint64_t>>("REALGetPropValueUInt64"),
                            entry<getProperty<uint32_t>>("REALGetPropValueUInt32"),
                            entry<getProperty<uint16_t>>("REALGetPropValueUInt16"),
                            entry<getProperty<int16_t>>("REALGetPropValueInt16"),
                            entry<getProperty<int8_t>>("REALGetPropValueInt8"),
                            entry<getProperty<float>>("REALGetPropValueSingle"),
                            entry<getProperty<RBBoolean>>("REALGetPropValueBool"),
                            entry<setProperty<int32_t>>("REALSetPropValueInt"),
                            entry<setProperty<REALstringStruct*>>("REALSetPropValueString"),
                            entry<setProperty<double>>("REALSetPropValueDouble"),
                            entry<setProperty<REALobjectStruct*>>("REALSetPropValueObject"),
                            entry<setProperty<uint32_t>>("REALSetPropValueUInt32"),
                            entry<setProperty<uint64_t>>("REALSetPropValueUInt64"),
                            entry<setProperty<int64_t>>("REALSetPropValueInt64"),
                            entry<setProperty<int16_t>>("REALSetPropValueInt16"),
                            entry<setProperty<uint16_t>>("REALSetPropValueUInt16"),
                            entry<setProperty<int8_t>>("REALSetPropValueInt8"),
                            entry<setProperty<RBBoolean>>("REALSetPropValueBoolean"),
                            entry<makeVariant<VariantOf::kString, REALstringStruct*>>("StringToVariant"),
                            entry<makeVariant<VariantOf::kPointer, void*>>("PtrToVariant"),
                            entry<makeVariant<VariantOf::kInteger, int32_t>>("Int32ToVariant"),
                            entry<makeVariant<VariantOf::kDouble, double>>("DoubleToVariant"),
                            entry<makeVariant<VariantOf::kBoolean, RBBoolean>>("BooleanToVariant"),
                            entry<makeVariant<VariantOf::kColor, RBColor>>("ColorToVariant"),
                            entry<makeVariant<VariantOf::kUInt32, uint32_t>>("UInt32ToVariant"),
                            entry<makeVariant<VariantOf::kInt64, int64_t>>("Int64ToVariant"),
                            entry<makeVariant<VariantOf::kUInt64, uint64_t>>("UInt64ToVariant"),
                            entry<makeVariant<VariantOf::kSingle, float>>("SingleToVariant"),
                        });
}

}  // namespace host
