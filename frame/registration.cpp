// Converts records to the layout and flags that the host expects.

#include "frame/registration.h"

#include <string.h>

#include "frame/entry_points.h"
#include "frame/host_state.h"
#include "frame/memory.h"

namespace {

// The first host version with console-safe and web-only members.
constexpr double kFlagsVersion = 2010.029;

// Never read, but kept on purpose: they identify the library's file to anyone who inspects it.
[[gnu::used]] const char* gPartName;
[[gnu::used]] const char* gVersionBanner;

void fixFlags(uint32_t* flags) {
  if ((*flags & (kMarkConsoleSafe | kMarkWebOnly)) != 0 && rbversion_rbversion >= kFlagsVersion) {
    if (*flags & kMarkConsoleSafe) *flags |= kFlagConsoleSafe;
    if (*flags & kMarkWebOnly) *flags |= kFlagWebOnly;
  }
  *flags &= ~uint32_t{kAllMarks};
}

template <typename Record>
void fixAll(Record* records, int32_t count) {
  for (int32_t i = 0; records && i < count; ++i) fixFlags(&records[i].flags);
}

// Replaces an array by a new one that holds the first words of each record. The pointer keeps the type of the
// current layout, because the enclosing record declares it so. A missing or empty array becomes null and
// keeps its count; if memory runs out, both become 0.
template <typename Old, typename Record>
void shorten(Record*& records, int32_t& count) {
  static_assert(sizeof(Old) < sizeof(Record));
  const Record* source = records;
  records = nullptr;
  if (!source || count <= 0) return;
  auto* copies = static_cast<Old*>(AllocateClearMemory(int64_t{count} * static_cast<int64_t>(sizeof(Old))));
  if (!copies) count = 0;
  for (int32_t i = 0; i < count; ++i) memcpy(copies + i, source + i, sizeof(Old));
  records = reinterpret_cast<Record*>(copies);
}

// The same for events; each source record also gets a pointer to its copy.
void shortenEvents(REALevent*& events, int32_t& count) {
  REALevent* source = events;
  shorten<REALoldEvent>(events, count);
  for (int32_t i = 0; events && i < count; ++i)
    source[i].forOldHosts = reinterpret_cast<REALoldEvent*>(events) + i;
}

template <typename Record>
Record* copied(const Record* definition) {
  auto* copy = static_cast<Record*>(AllocateClearMemory(sizeof(Record)));
  if (copy) {
    memcpy(copy, definition, sizeof(Record));
    copy->version = CurrentREALControlVersion;
  }
  return copy;
}

// Sets the version, or on old hosts converts the record to the old layout, and registers it. A record that
// can't be converted is not registered: the host would misread its arrays.
template <typename Record>
void registerRecord(Record* definition, Record* (*fix)(Record*), HostEntry<void(Record*)>& hand) {
  if (CurrentREALControlVersion > kOldLayoutVersion) {
    definition->version = CurrentREALControlVersion;
  } else {
    Record* old = fix(definition);
    if (!old) return;
    memcpy(definition, old, sizeof(Record));
    FreeMemoryNow(old);
  }
  hand(definition);
}

}  // namespace

void FixConsoleFlags(REALmethodDefinition* method) { fixFlags(&method->flags); }

void FixConsoleFlags(REALmethodDefinition* methods, int32_t count) { fixAll(methods, count); }

void FixConsoleFlags(REALmoduleDefinition* definition) {
  fixAll(definition->methods, definition->methodCount);
  fixAll(definition->properties, definition->propertyCount);
}

void FixConsoleFlags(REALclassDefinition* definition) {
  fixFlags(&definition->flags);
  fixAll(definition->methods, definition->methodCount);
  fixAll(definition->sharedMethods, definition->sharedMethodCount);
  fixAll(definition->properties, definition->propertyCount);
  fixAll(definition->sharedProperties, definition->sharedPropertyCount);
}

void MyPluginStart(const char* partName, const char* versionBanner) {
  gPartName = partName;
  gVersionBanner = versionBanner;
}

void MyPluginEnde() {}

void MyREALRegisterMethod(REALmethodDefinition* method) { REALRegisterMethod(method); }

void MyREALRegisterMethodArray(REALmethodDefinition* methods, int32_t count) {
  for (int32_t i = 0; i < count; ++i) MyREALRegisterMethod(methods + i);
}

void MyREALRegisterClass(REALclassDefinition* definition) {
  definition->dataSize = (definition->dataSize + 15) & ~15;
  registerRecord(definition, FixClass, REALRegisterClass);
}

void MyREALRegisterClassExtension(REALclassDefinition* definition) {
  registerRecord(definition, FixClass, REALRegisterClassExtension);
}

void MyREALRegisterModule(REALmoduleDefinition* definition) {
  registerRecord(definition, FixModule, REALRegisterModule);
}

void MyREALRegisterInterface(REALinterfaceDefinition* definition) {
  registerRecord(definition, FixInterface, REALRegisterInterface);
}

void MyREALRegisterControl(REALcontrolDefinition* definition) {
  registerRecord(definition, FixControl, REALRegisterControl);
}

REALclassDefinition* FixClass(REALclassDefinition* definition) {
  REALclassDefinition* old = copied(definition);
  if (!old) return nullptr;
  shorten<REALoldProperty>(old->properties, old->propertyCount);
  shorten<REALoldMethodDefinition>(old->methods, old->methodCount);
  shortenEvents(old->events, old->eventCount);
  shorten<REALoldConstant>(old->constants, old->constantCount);
  shorten<REALoldProperty>(old->sharedProperties, old->sharedPropertyCount);
  shorten<REALoldMethodDefinition>(old->sharedMethods, old->sharedMethodCount);
  old->obsolete[0] = old->obsolete[1] = 0;
  return old;
}

REALmoduleDefinition* FixModule(REALmoduleDefinition* definition) {
  REALmoduleDefinition* old = copied(definition);
  if (!old) return nullptr;
  shorten<REALoldMethodDefinition>(old->methods, old->methodCount);
  shorten<REALoldConstant>(old->constants, old->constantCount);
  shorten<REALoldProperty>(old->properties, old->propertyCount);
  return old;
}

REALinterfaceDefinition* FixInterface(REALinterfaceDefinition* definition) {
  REALinterfaceDefinition* old = copied(definition);
  if (old) shorten<REALoldMethodDefinition>(old->methods, old->methodCount);
  return old;
}

REALcontrolDefinition* FixControl(REALcontrolDefinition* definition) {
  REALcontrolDefinition* old = copied(definition);
  if (!old) return nullptr;
  shorten<REALoldProperty>(old->properties, old->propertyCount);
  shorten<REALoldMethodDefinition>(old->methods, old->methodCount);
  shortenEvents(old->events, old->eventCount);
  return old;
}

REALclassDefinition* SetClassConsoleSafe(REALclassDefinition* definition) {
  definition->flags |= kFlagConsoleSafe;
  return definition;
}

uint32_t SetClassWebOnly(REALclassDefinition* definition) {
  definition->flags = (definition->flags & ~uint32_t{kFlagWebOnly}) | kFlagClassWebOnly;
  return definition->flags;
}
