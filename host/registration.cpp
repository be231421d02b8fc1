// Registration by the plug-in: records in the current layout and in the shorter one of old hosts.

#include <cstring>
#include <stdexcept>

#include "host/entry_points.h"
#include "host/objects_internal.h"

namespace host {
namespace {

constexpr int32_t kOldControlVersion = 9;
constexpr double kCurrentLayoutVersion = 2012.0;

Members registered;

// A host that was told no control version goes by its own version.
bool isOldHost() {
  if (registered.controlVersion == 0) return !(settings().version.value_or(0) >= kCurrentLayoutVersion);
  return registered.controlVersion <= kOldControlVersion;
}

// The records of an array in whichever layout the plug-in was told to use: old records are the first words
// of the current ones.
template <typename Record, typename OldRecord>
std::vector<Record> readRecords(const Record* array, int32_t count) {
  std::vector<Record> records;
  const size_t size = isOldHost() ? sizeof(OldRecord) : sizeof(Record);
  const auto* bytes = reinterpret_cast<const uint8_t*>(array);
  for (int32_t i = 0; bytes && i < count; ++i, bytes += size) {
    Record record{};
    std::memcpy(&record, bytes, size);
    records.push_back(record);
  }
  return records;
}

void journal(const char* entryPoint, const char* name, int32_t version, const void* record) {
  registered.journal.push_back({entryPoint, name ? name : "", version, record});
}

// False when the host can't make sense of the record.
bool addMethod(std::vector<Method>& methods, const REALmethodDefinition& record) {
  try {
    if (!record.function || !record.declaration) throw std::invalid_argument("no function or no declaration");
    methods.push_back({{record.flags},
                       parseDeclaration(record.declaration),
                       record.declaration,
                       record.function,
                       record.setter});
    return true;
  } catch (const std::invalid_argument& problem) {
    noteError(std::string("method \"") + (record.declaration ? record.declaration : "") +
              "\" not registered: " + problem.what());
    return false;
  }
}

void addMethods(std::vector<Method>& methods, const REALclassDefinition& record) {
  for (const auto& method :
       readRecords<REALmethodDefinition, REALoldMethodDefinition>(record.methods, record.methodCount)) {
    addMethod(methods, method);
  }
}

// ---- Services ----

void tellVersion(int32_t controlVersion) { registered.controlVersion = controlVersion; }

void registerMethod(const REALmethodDefinition* record) {
  if (!record) return noteError("a null method record");
  const bool added = addMethod(registered.globals, *record);
  journal("PluginRegisterMethod",
          added ? registered.globals.back().declaration.name.c_str() : record->declaration, 0, record);
}

void registerClass(const REALclassDefinition* record) {
  if (!record || !record->name) return noteError("a class record that is null or lacks a name");
  journal("PluginRegisterClass", record->name, record->version, record);
  Class added;
  added.name = record->name;
  added.dataSize = record->dataSize;
  added.flags = record->flags;
  added.constructor = record->constructor;
  added.destructor = record->destructor;
  added.record = record;
  for (const auto& property :
       readRecords<REALproperty, REALoldProperty>(record->properties, record->propertyCount)) {
    added.properties.push_back({{property.flags},
                                property.name,
                                property.type,
                                property.getter,
                                property.setter,
                                property.parameter});
  }
  addMethods(added.methods, *record);
  registered.classes.push_back(std::move(added));
}

void registerExtension(const REALclassDefinition* record) {
  if (!record || !record->name) return noteError("an extension record that is null or lacks a name");
  journal("PluginRegisterClassExtension", record->name, record->version, record);
  if (std::strcmp(record->name, "Picture") == 0) {
    addMethods(registered.pictureMethods, *record);
  } else {
    noteError(std::string("extension of \"") + record->name + "\", a class that this host does not extend");
  }
}

// Kinds of members that this host only notes.
void registerModule(const REALmoduleDefinition* record) {
  if (record) journal("PluginRegisterModule", record->name, record->version, record);
}
void registerInterface(const REALinterfaceDefinition* record) {
  if (record) journal("PluginRegisterInterface", record->name, record->version, record);
}
void registerControl(const REALcontrolDefinition* record) {
  if (record) journal("PluginRegisterControl", record->name, record->version, record);
}

}  // namespace

const Members& members() { return registered; }

void resetRegistration() { registered = {}; }

void addRegistrationServices(std::vector<Entry>& all) {
  all.insert(all.end(), {
                            entry<tellVersion>("RegisterPluginVersion"),
                            entry<registerMethod>("PluginRegisterMethod"),
                            entry<registerClass>("PluginRegisterClass"),
                            entry<registerExtension>("PluginRegisterClassExtension"),
                            entry<registerModule>("PluginRegisterModule"),
                            entry<registerInterface>("PluginRegisterInterface"),
                            entry<registerControl>("PluginRegisterControl"),
                        });
}

}  // namespace host
