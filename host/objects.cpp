// Classes, instances, memory blocks, and the services that every object has.

#include "host/objects.h"

#include <algorithm>
#include <cstring>
#include <set>

#include "host/entry_points.h"
#include "host/objects_internal.h"

namespace host {
namespace {

constexpr const char* kException = "RuntimeException";

const std::set<std::string>& exceptionClasses() {
  static const std::set<std::string> names = {kException, "NilObjectException", "OutOfMemoryException",
                                              "OutOfBoundsException"};
  return names;
}

std::string applicationClass() {
  const bool console = settings().road == Road::console;
  return settings().applicationClass.value_or(console ? "ConsoleApplication" : "Application");
}

const Class* registeredClass(const std::string& name) {
  for (const Class& known : members().classes) {
    if (known.name == name) return &known;
  }
  return nullptr;
}

using InstanceRoutine = void (*)(REALobjectStruct*);

REALobjectStruct* makeRegistered(const Class& known) {
  auto made = std::make_unique<Instance>(known);
  if (known.dataSize > 0 && !made->data.data()) return nullptr;
  auto object = ObjectRef::adopt(handleOf<REALobjectStruct>(enrollNew(std::move(made))));
  if (const auto construct = reinterpret_cast<InstanceRoutine>(known.constructor)) construct(object.get());
  return object.leak();
}

REALobjectStruct* makeException(const std::string& className) {
  auto exception = std::make_unique<Object>(className);
  exception->properties["Message"] = Text{};
  return handleOf<REALobjectStruct>(enrollNew(std::move(exception)));
}

// Class references are handles that live as long as the process and are not counted.
REALclassRefStruct* classReference(const std::string& name) {
  static auto& names = *new std::set<std::string>;
  const std::string* kept = &*names.insert(name).first;
  return reinterpret_cast<REALclassRefStruct*>(const_cast<std::string*>(kept));
}
const std::string& className(const REALclassRefStruct* reference) {
  return *reinterpret_cast<const std::string*>(reference);
}

// ---- Services ----

void lockObject(REALobjectStruct* object) { retain(object); }
void unlockObject(REALobjectStruct* object) { release(object); }
void raiseException(REALobjectStruct* exception) { raise(exception); }

REALclassRefStruct* classByName(const char* name) {
  return name && isKnownClass(name) ? classReference(name) : nullptr;
}
REALobjectStruct* newByName(const char* name) { return name ? makeInstance(name) : nullptr; }
REALobjectStruct* newByReference(REALclassRefStruct* reference) {
  return reference ? makeInstance(className(reference)) : nullptr;
}
RBBoolean isA(REALobjectStruct* handle, REALclassRefStruct* reference) {
  const auto* object = find<Object>(handle, "is-a");
  return object && reference && isDerived(object->className, className(reference));
}

// The record says which class's data is wanted; an instance of another class has none of it.
void* pluginData(REALobjectStruct* handle, const REALclassDefinition* record) {
  const auto* instance = find<Instance>(handle, "get plug-in data");
  return instance && instance->record == record ? instance->data.data() : nullptr;
}

void* objectMethod(REALobjectStruct* handle, const char* declaration) {
  const auto* object = find<Object>(handle, "load method");
  if (!object || !declaration) return nullptr;
  if (object->className == "Picture") return findMethod(Giver::picture, declaration);
  if (object->className == "Graphics") return findMethod(Giver::graphics, declaration);
  return object->className == "MemoryBlock" ? findMethod(Giver::memoryBlock, declaration) : nullptr;
}

REALmemoryBlockStruct* newBlock(int32_t size) {
  return size < 0 ? nullptr : newMemoryBlock(nullptr, static_cast<size_t>(size)).leak();
}
REALmemoryBlockStruct* wrapPointer(void* memory) {
  auto block = std::make_unique<MemoryBlock>();
  block->wrapped = static_cast<uint8_t*>(memory);
  return handleOf<REALmemoryBlockStruct>(enrollNew(std::move(block)));
}
void* blockBytes(REALmemoryBlockStruct* block) { return memoryBlockBytes(block); }
int32_t blockSize(REALmemoryBlockStruct* handle) {
  const auto* block = find<MemoryBlock>(handle, "get size");
  return block ? block->reportedSize : 0;
}
void constructBlock(REALmemoryBlockStruct* handle, int32_t size) {
  auto* block = find<MemoryBlock>(handle, "construct");
  if (!block || size < 0) return;
  block->buffer = Buffer(static_cast<uint64_t>(size));
  block->reportedSize = static_cast<int32_t>(block->buffer.size());
}

}  // namespace

bool isKnownClass(const std::string& name) {
  static const std::set<std::string> always = {"Picture", "Graphics", "MemoryBlock"};
  if (name.empty()) return false;
  return always.count(name) || exceptionClasses().count(name) || name == applicationClass() ||
         registeredClass(name);
}

bool isDerived(const std::string& name, const std::string& ancestor) {
  return name == ancestor || (ancestor == kException && exceptionClasses().count(name));
}

REALobjectStruct* makeInstance(const std::string& name) {
  if (exceptionClasses().count(name)) return makeException(name);
  if (name == "Picture") return handleOf<REALobjectStruct>(enrollNew(std::make_unique<Picture>()));
  if (name == "MemoryBlock") return newMemoryBlock(nullptr, 0).leak();
  const Class* known = registeredClass(name);
  return known ? makeRegistered(*known) : nullptr;
}

std::string MemoryBlock::describe() const {
  return "MemoryBlock of " + std::to_string(buffer.size()) + " bytes";
}

Instance::Instance(const Class& known)
    : Object(known.name),
      record(known.record),
      destructor(known.destructor),
      data(known.dataSize > 0 ? static_cast<uint64_t>(known.dataSize) : 0) {}

void Instance::die() {
  const auto destruct = reinterpret_cast<InstanceRoutine>(destructor);
  if (!destruct) return;
  try {
    destruct(handleOf<REALobjectStruct>(this));
  } catch (const Unwound&) {
    // References are also dropped in destructors, which no exception may leave.
  }
}

ObjectRef newInstance(const std::string& name) {
  return registeredClass(name) ? ObjectRef::adopt(makeInstance(name)) : ObjectRef();
}

uint8_t* instanceData(REALobjectStruct* object) {
  const auto* instance = dynamic_cast<Instance*>(peek(object));
  return instance ? instance->data.data() : nullptr;
}

MemoryBlockRef newMemoryBlock(const void* bytes, size_t size) {
  auto block = std::make_unique<MemoryBlock>();
  block->buffer = Buffer(size);
  if (size > 0 && !block->buffer.data()) return {};
  if (bytes && size > 0) std::memcpy(block->buffer.data(), bytes, size);
  block->reportedSize = static_cast<int32_t>(size);
  return MemoryBlockRef::adopt(handleOf<REALmemoryBlockStruct>(enrollNew(std::move(block))));
}

uint8_t* memoryBlockBytes(REALmemoryBlockStruct* handle) {
  const auto* block = find<MemoryBlock>(handle, "get bytes");
  return block ? block->data() : nullptr;
}

size_t memoryBlockSize(REALmemoryBlockStruct* handle) {
  const auto* block = find<MemoryBlock>(handle, "get size");
  return block ? block->buffer.size() : 0;
}

void setReportedSize(REALmemoryBlockStruct* handle, int32_t size) {
  if (auto* block = find<MemoryBlock>(handle, "set reported size")) block->reportedSize = size;
}

void addObjectServices(std::vector<Entry>& all) {
  all.insert(all.end(), {
                            entry<lockObject>("REALLockObject"),
                            entry<unlockObject>("REALUnlockObject"),
                            entry<raiseException>("RuntimeRaiseException"),
                            entry<classByName>("pluginObjectType"),
                            entry<newByName>("PluginNewInstance"),
                            entry<newByReference>("CreateInstance"),
                            entry<isA>("RuntimeObjectIsa"),
                            entry<pluginData>("PluginGetPluginData"),
                            entry<objectMethod>("REALLoadObjectMethod"),
                            entry<newBlock>("newMemoryBlock"),
                            entry<wrapPointer>("PtrToMemoryBlock"),
                            entry<blockBytes>("memoryBlockGetPtr"),
                            entry<blockSize>("memoryBlockGetSize"),
                            entry<constructBlock>("Constructor(bytes as Integer)", Giver::memoryBlock),
                        });
}

}  // namespace host
