// Values of the dialect to and from the words of a C call.

#include "host/calls.h"

#include <ffi.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "host/objects_internal.h"

namespace host {
namespace {

// One argument, result or field as it lies in memory.
union Word {
  int32_t integer;
  uint32_t unsignedInteger;
  double real;
  RBBoolean boolean;
  void* handle;
};

[[noreturn]] void refuse(const std::string& name, Type type, const char* problem) {
  throw std::invalid_argument(name + ": the value " + problem + " " + typeName(type));
}

template <typename T>
const T* holds(const Value& value) {
  return std::get_if<T>(&value);
}

int64_t integerOf(const std::string& name, const Value& value, Type type, int64_t lowest, int64_t highest) {
  const auto* number = holds<int64_t>(value);
  if (!number) refuse(name, type, "is not of type");
  if (*number < lowest || *number > highest) refuse(name, type, "is out of range for");
  return *number;
}

void* borrowedHandle(const std::string& name, const Value& value, Type type) {
  if (holds<std::monostate>(value)) return nullptr;
  if (type == Type::string) {
    if (const auto* string = holds<StringRef>(value)) return string->get();
    refuse(name, type, "is not of type");
  }
  // Handles of objects are the same address under every type.
  if (const auto* object = holds<ObjectRef>(value)) return object->get();
  if (type != Type::memoryBlock) {
    if (const auto* picture = holds<PictureRef>(value)) return picture->get();
  }
  if (type != Type::picture) {
    if (const auto* block = holds<MemoryBlockRef>(value)) return block->get();
  }
  refuse(name, type, "is not of type");
}

// Handles are borrowed from the value.
Word toWord(const std::string& name, const Value& value, Type type) {
  Word word{};
  switch (type) {
    case Type::integer:
      word.integer = static_cast<int32_t>(integerOf(name, value, type, INT32_MIN, INT32_MAX));
      break;
    case Type::uint32:
      word.unsignedInteger = static_cast<uint32_t>(integerOf(name, value, type, 0, UINT32_MAX));
      break;
    case Type::real:
      if (const auto* number = holds<double>(value)) {
        word.real = *number;
      } else {
        word.real = static_cast<double>(integerOf(name, value, type, INT64_MIN, INT64_MAX));
      }
      break;
    case Type::boolean: {
      const auto* flag = holds<bool>(value);
      if (!flag) refuse(name, type, "is not of type");
      word.integer = *flag ? 1 : 0;
      break;
    }
    case Type::color: {
      const auto* color = holds<Color>(value);
      if (!color) refuse(name, type, "is not of type");
      word.unsignedInteger = color->rgb;
      break;
    }
    case Type::string:
    case Type::picture:
    case Type::memoryBlock:
    case Type::object:
      word.handle = borrowedHandle(name, value, type);
      break;
    case Type::none:
      refuse(name, type, "can't have type");
  }
  return word;
}

// Takes over the reference that comes with a handle.
Value toValue(const Word& word, Type type) {
  switch (type) {
    case Type::none:
      return std::monostate{};
    case Type::integer:
      return int64_t{word.integer};
    case Type::uint32:
      return int64_t{word.unsignedInteger};
    case Type::real:
      return word.real;
    case Type::boolean:
      return word.boolean != 0;
    case Type::color:
      return Color{word.unsignedInteger};
    case Type::string:
      return StringRef::adopt(static_cast<REALstringStruct*>(word.handle));
    case Type::picture:
      return PictureRef::adopt(static_cast<REALpictureStruct*>(word.handle));
    case Type::memoryBlock:
      return MemoryBlockRef::adopt(static_cast<REALmemoryBlockStruct*>(word.handle));
    case Type::object:
      return ObjectRef::adopt(static_cast<REALobjectStruct*>(word.handle));
  }
  return std::monostate{};
}

bool isHandle(Type type) {
  return type == Type::string || type == Type::picture || type == Type::memoryBlock || type == Type::object;
}

ffi_type* ffiType(Type type) {
  switch (type) {
    case Type::none:
      return &ffi_type_void;
    case Type::integer:
      return &ffi_type_sint32;
    case Type::uint32:
    case Type::color:
      return &ffi_type_uint32;
    case Type::real:
      return &ffi_type_double;
    case Type::boolean:
      return &ffi_type_sint32;  // as an argument it fills a stack slot
    case Type::string:
    case Type::picture:
    case Type::memoryBlock:
    case Type::object:
      return &ffi_type_pointer;
  }
  return &ffi_type_void;
}

// The words of one call. Byref words live here while the callee writes them.
class Frame {
 public:
  void pushHandle(void* handle) {
    Argument argument;
    argument.word.handle = handle;
    push(std::move(argument), &ffi_type_pointer);
  }
  void pushInteger(uint32_t integer) {
    Argument argument;
    argument.word.unsignedInteger = integer;
    push(std::move(argument), &ffi_type_uint32);
  }
  void push(const Parameter& parameter, Value value) {
    Argument argument;
    const bool starts = parameter.byRef && holds<std::monostate>(value) && !isHandle(parameter.type);
    if (!starts) argument.word = toWord(parameter.name, value, parameter.type);
    argument.given = argument.word;
    argument.value = std::move(value);
    argument.type = parameter.type;
    argument.byRef = parameter.byRef;
    push(std::move(argument), parameter.byRef ? &ffi_type_pointer : ffiType(parameter.type));
  }

  Value invoke(void* function, Type result) {
    std::vector<void*> addresses;
    for (Argument& argument : arguments_) {
      argument.address = &argument.word;
      addresses.push_back(argument.byRef ? static_cast<void*>(&argument.address) : &argument.word);
    }
    ffi_type* resultType = result == Type::boolean ? &ffi_type_uint8 : ffiType(result);
    ffi_cif interface;
    const auto count = static_cast<unsigned>(addresses.size());
    if (ffi_prep_cif(&interface, FFI_DEFAULT_ABI, count, resultType, types_.data()) != FFI_OK) {
      throw std::logic_error("the call can't be prepared");
    }
    Word word{};
    ffi_call(&interface, reinterpret_cast<void (*)()>(function), &word, addresses.data());
    return toValue(word, result);
  }

  // The declared arguments as they are; values that the callee stored in byref words are copied back.
  std::vector<Value> takeValues() {
    std::vector<Value> values;
    for (Argument& argument : arguments_) {
      if (argument.type == Type::none) continue;
      const bool unchanged = isHandle(argument.type) && argument.word.handle == argument.given.handle;
      if (argument.byRef && !unchanged) argument.value = toValue(argument.word, argument.type);
      values.push_back(std::move(argument.value));
    }
    arguments_.clear();
    return values;
  }

  Frame() = default;
  Frame(const Frame&) = delete;
  Frame& operator=(const Frame&) = delete;
  ~Frame() { takeValues(); }  // an unwound call may have stored handles too

 private:
  struct Argument {
    Word word{}, given{};
    Value value;
    Type type = Type::none;  // none: not one of the declared
    bool byRef = false;
    void* address = nullptr;
  };
  void push(Argument argument, ffi_type* type) {
    arguments_.push_back(std::move(argument));
    types_.push_back(type);
  }

  std::vector<Argument> arguments_;
  std::vector<ffi_type*> types_;
};

// Fills in what the caller left out.
void complete(const Method& method, std::vector<Value>& arguments) {
  const std::vector<Parameter>& parameters = method.declaration.parameters;
  const size_t given = arguments.size();
  while (arguments.size() < parameters.size()) {
    const Parameter& parameter = parameters[arguments.size()];
    if (!parameter.byRef && !parameter.hasDefault) break;
    arguments.push_back(parameter.hasDefault ? parseValue(parameter, parameter.defaultText) : Value{});
  }
  if (arguments.size() != parameters.size()) {
    throw std::invalid_argument(std::to_string(given) + " arguments given to \"" + method.text + "\"");
  }
}

Outcome invoke(const Method& method, void* function, Type result, REALobjectStruct* receiver,
               std::vector<Value> arguments, const Value* assigned) {
  complete(method, arguments);
  Frame frame;
  if (takesReceiver(method)) frame.pushHandle(receiver);
  for (size_t i = 0; i < arguments.size(); ++i) {
    frame.push(method.declaration.parameters[i], std::move(arguments[i]));
  }
  if (assigned) {
    Parameter value;
    value.name = method.declaration.name;
    value.type = method.declaration.result;
    frame.push(value, *assigned);
  }
  Outcome outcome;
  outcome.result = frame.invoke(function, result);
  outcome.arguments = frame.takeValues();
  if (assigned) outcome.arguments.pop_back();
  outcome.exception = takeException();
  return outcome;
}

bool contains(const std::vector<Method>& methods, const Method& method) {
  return std::any_of(methods.begin(), methods.end(),
                     [&](const Method& m) { return m.function == method.function && m.text == method.text; });
}

const Class* instanceClass(REALobjectStruct* handle) {
  const auto* instance = dynamic_cast<const Instance*>(peek(handle));
  for (const Class& type : members().classes) {
    if (instance && type.record == instance->record) return &type;
  }
  return nullptr;
}

const Property& propertyOf(REALobjectStruct* instance, const std::string& name) {
  const Class* type = instanceClass(instance);
  if (!type) throw std::invalid_argument(name + ": not an instance of a registered class");
  for (const Property& property : type->properties) {
    if (equalNames(property.name, name)) return property;
  }
  throw std::invalid_argument(type->name + " has no property " + name);
}

Type typeOf(const Property& property) {
  return parseDeclaration(property.name + " as " + property.type).result;
}

size_t sizeOf(Type type) { return type == Type::real ? sizeof(double) : type == Type::boolean ? 1 : 4; }

void retainWord(const Word& word, Type type) {
  if (!isHandle(type) || !word.handle) return;
  if (type == Type::string) return retain(static_cast<REALstringStruct*>(word.handle));
  retain(static_cast<REALobjectStruct*>(word.handle));
}

}  // namespace

Outcome call(const Method& method, REALobjectStruct* receiver, std::vector<Value> arguments) {
  return invoke(method, method.function, method.declaration.result, receiver, std::move(arguments), nullptr);
}

Outcome assign(const Method& method, REALobjectStruct* receiver, std::vector<Value> arguments, Value value) {
  if (!method.setter) throw std::invalid_argument(method.declaration.name + " can't be assigned to");
  return invoke(method, method.setter, Type::none, receiver, std::move(arguments), &value);
}

Value getProperty(REALobjectStruct* instance, const std::string& name) {
  const Property& property = propertyOf(instance, name);
  const Type type = typeOf(property);
  if (property.getter != kStoredProperty) {
    Frame frame;
    frame.pushHandle(instance);
    frame.pushInteger(property.offset);
    return frame.invoke(property.getter, type);
  }
  Word word{};
  std::memcpy(&word, instanceData(instance) + property.offset, sizeOf(type));
  retainWord(word, type);
  return toValue(word, type);
}

void setProperty(REALobjectStruct* instance, const std::string& name, const Value& value) {
  const Property& property = propertyOf(instance, name);
  const Type type = typeOf(property);
  const Word word = toWord(property.name, value, type);
  if (property.setter != kStoredProperty) {
    Parameter parameter;
    parameter.name = property.name;
    parameter.type = type;
    Frame frame;
    frame.pushHandle(instance);
    frame.pushInteger(property.offset);
    frame.push(parameter, value);
    frame.invoke(property.setter, Type::none);
    return;
  }
  // The field owns a reference; releases the old one after it stored the new one.
  uint8_t* field = instanceData(instance) + property.offset;
  Word before{};
  std::memcpy(&before, field, sizeOf(type));
  retainWord(word, type);
  std::memcpy(field, &word, sizeOf(type));
  toValue(before, type);
}

std::vector<const Method*> findMethods(const std::string& name) {
  std::vector<const Method*> found;
  for (const auto* group : {&members().globals, &members().pictureMethods}) {
    for (const Method& method : *group) {
      if (equalNames(method.declaration.name, name)) found.push_back(&method);
    }
  }
  return found;
}

bool takesReceiver(const Method& method) { return !contains(members().globals, method); }

}  // namespace host
