// Handles, references, and the ledger of what is held.

#include <algorithm>
#include <deque>
#include <optional>

#include "host/objects_internal.h"

namespace host {
namespace {

constexpr size_t kQuarantine = 65536;  // dead handles that are kept before an address is reused
constexpr size_t kErrorLines = 200;    // error messages that are kept; all errors are counted

struct StringData {
  Buffer buffer;
  size_t size;
};

struct Registry {
  std::unordered_map<const void*, std::unique_ptr<Entity>> alive;
  std::unordered_map<const void*, StringData> stringData;
  std::deque<HandleWords*> dead;
  int errors = 0;
  std::vector<std::string> errorLines;
  ObjectRef pendingException;
};

// Never destroyed: references may be released while the program ends.
Registry& registry() {
  static Registry& only = *new Registry;
  return only;
}

HandleWords* freshWords() {
  auto& dead = registry().dead;
  if (dead.size() <= kQuarantine) return new HandleWords;
  HandleWords* words = dead.front();
  dead.pop_front();
  *words = {};
  return words;
}

void bury(HandleWords* words) {
  // A pointer read through a dead handle leads nowhere.
  auto* nowhere = reinterpret_cast<uint8_t*>(uintptr_t{0xDEAD0001});
  *words = {0xDEAD0000, nowhere, nowhere, -1};
  registry().dead.push_back(words);
}

template <typename Kind>
void retainAs(const void* handle) {
  if (auto* entity = find<Kind>(handle, "retain")) ++entity->references;
}

template <typename Kind>
void releaseAs(const void* handle) {
  Entity* entity = find<Kind>(handle, "release");
  if (!entity) return;
  if (entity->references == 0) {
    noteError("release of what is being destroyed: " + entity->describe());
    return;
  }
  if (--entity->references > 0 || entity->dying) return;
  entity->dying = true;
  entity->die();
  const auto found = registry().alive.find(handle);
  const auto last = std::move(found->second);
  registry().alive.erase(found);
  bury(last->words);
}

int referencesOf(const void* handle) {
  const Entity* entity = peek(handle);
  return entity ? entity->references : 0;
}

// The one reference to a pending exception is the host's, not the plug-in's.
bool isHostsOwn(const Entity* entity) {
  return entity->words == static_cast<const void*>(registry().pendingException.get()) &&
         entity->references == 1;
}

}  // namespace

void enroll(std::unique_ptr<Entity> entity) {
  HandleWords* words = freshWords();
  entity->words = words;
  registry().alive[words] = std::move(entity);
}

Entity* peek(const void* handle) {
  const auto found = registry().alive.find(handle);
  return found == registry().alive.end() ? nullptr : found->second.get();
}

void noteError(const std::string& what) {
  ++registry().errors;
  if (registry().errorLines.size() < kErrorLines) registry().errorLines.push_back("error: " + what);
}

void retain(REALobjectStruct* object) { retainAs<Object>(object); }
void release(REALobjectStruct* object) { releaseAs<Object>(object); }
int references(const REALobjectStruct* object) { return referencesOf(object); }
void retain(REALstringStruct* string) { retainAs<String>(string); }
void release(REALstringStruct* string) { releaseAs<String>(string); }
int references(const REALstringStruct* string) { return referencesOf(string); }

REALstringData giveStringData(const std::string& bytes, uint32_t encoding, bool terminated) {
  Buffer buffer = textBuffer(0, bytes, encoding, terminated);
  if (!buffer.data()) return {};
  const REALstringData data{buffer.data(), static_cast<int32_t>(bytes.size()), encoding};
  registry().stringData[data.data] = {std::move(buffer), bytes.size()};
  return data;
}

void takeStringDataBack(REALstringData* data) {
  if (!data || registry().stringData.erase(data->data) == 0) {
    noteError("string data disposed that was not given out");
    return;
  }
  *data = {};
}

void raise(REALobjectStruct* exception) {
  if (!find<Object>(exception, "raise")) return;
  retain(exception);
  registry().pendingException = ObjectRef::adopt(exception);
}

void raise(const std::string& className, const std::string& message) {
  const auto exception = ObjectRef::adopt(makeInstance(className));
  if (auto* object = find<Object>(exception.get(), "raise")) {
    object->properties["Message"] = Text{message, kEncodingUTF8};
    raise(exception.get());
  }
}

std::optional<RaisedException> takeException() {
  const ObjectRef pending = std::exchange(registry().pendingException, {});
  const auto* exception = find<Object>(pending.get(), "take exception");
  if (!exception) return std::nullopt;
  RaisedException raised{exception->className, {}};
  PropertyValue message;
  if (exception->readProperty("Message", message)) raised.message = std::get<Text>(message).bytes;
  return raised;
}

Ledger held() {
  Ledger ledger;
  for (const auto& [handle, entity] : registry().alive) {
    if (dynamic_cast<const String*>(entity.get())) {
      ++ledger.strings;
    } else if (!isHostsOwn(entity.get())) {
      ++ledger.objects;
    }
    if (dynamic_cast<const Picture*>(entity.get())) ledger.descriptionLocks += entity->words->count;
  }
  ledger.stringData = static_cast<int>(registry().stringData.size());
  ledger.errors = registry().errors;
  return ledger;
}

std::string describeHeld() {
  std::vector<std::string> lines;
  for (const auto& [handle, entity] : registry().alive) {
    if (isHostsOwn(entity.get())) continue;
    std::string line = entity->describe() + ", references: " + std::to_string(entity->references);
    if (dynamic_cast<const Picture*>(entity.get())) {
      line += ", description locks: " + std::to_string(entity->words->count);
    }
    lines.push_back(line);
  }
  for (const auto& [data, piece] : registry().stringData) {
    lines.push_back("string data of " + std::to_string(piece.size) + " bytes, not disposed");
  }
  std::sort(lines.begin(), lines.end());
  lines.insert(lines.end(), registry().errorLines.begin(), registry().errorLines.end());
  std::string text;
  for (const auto& line : lines) text += line + "\n";
  return text;
}

void resetRegistry() {
  registry().pendingException = {};
  // Objects that are left over are destroyed without die(), so no code of the plug-in runs.
  auto leftOver = std::exchange(registry().alive, {});
  for (auto& [handle, entity] : leftOver) {
    HandleWords* words = entity->words;
    entity.reset();
    bury(words);
  }
  registry().stringData.clear();
  registry().errors = 0;
  registry().errorLines.clear();
}

}  // namespace host
