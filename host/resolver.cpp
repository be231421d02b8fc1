#include "host/entry_points.h"

#include <dlfcn.h>
#ifdef ZVR_SANITIZED
#include <sanitizer/lsan_interface.h>
#endif

#include <cstring>
#include <map>
#include <numeric>
#include <stdexcept>

#include "host/objects_internal.h"
#include "host/pictures/views.h"

namespace host {
namespace {

Settings current;
std::map<std::string, int> askedNames;

const Entry* findEntry(Giver giver, const std::string& name) {
  for (const Entry& entry : entries()) {
    if (entry.giver == giver && entry.name == name) return &entry;
  }
  return nullptr;
}

// Enters the plug-in. Memory that it allocates while it registers stays for the life of the process, on
// purpose: the leak detector, which loses sight of it when the library is closed, is told so.
void enterPlugin(void (*enter)(REALResolver)) {
#ifdef ZVR_SANITIZED
  const __lsan::ScopedDisabler registeredForEver;
#endif
  enter(&resolve);
}

}  // namespace

const std::vector<Entry>& entries() {
  static const std::vector<Entry> all = [] {
    std::vector<Entry> gathered;
    for (auto add : {addRegistrationServices, addObjectServices, addStringServices, addPropertyServices,
                     addArrayServices, addPictureServices, addGraphicsServices, addProgramServices}) {
      add(gathered);
    }
    return gathered;
  }();
  return all;
}

void start(const Settings& chosen) {
  resetRegistry();
  resetRegistration();
  resetFaults();
  resetProgram();
  askedNames.clear();
  Buffer::dropSpares();
  current = chosen;
  openRoad(current.road);
}

const Settings& settings() { return current; }

void* resolve(const char* name) {
  const Visit visit;
  if (!name) return nullptr;
  ++askedNames[name];
  if (!current.version && std::strcmp(name, "REALGetRBVersion") == 0) return nullptr;
  return findMethod(Giver::resolver, name);
}

int resolverCalls(const std::string& name) {
  if (name.empty()) {
    return std::accumulate(askedNames.begin(), askedNames.end(), 0,
                           [](int sum, const auto& asked) { return sum + asked.second; });
  }
  const auto found = askedNames.find(name);
  return found == askedNames.end() ? 0 : found->second;
}

void* findMethod(Giver giver, const std::string& declaration) {
  const Entry* entry = findEntry(giver, declaration);
  return entry && !entry->usage->removed ? entry->address : nullptr;
}

Plugin::Plugin(const std::string& path) : library_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (!library_) throw std::runtime_error(std::string("the plug-in can't be loaded: ") + dlerror());
  using Main = void (*)(REALResolver);
  const auto enter = reinterpret_cast<Main>(dlsym(library_, "REALPluginMain"));
  try {
    if (!enter) throw std::runtime_error(path + " is not a plug-in: it has no REALPluginMain");
    enterPlugin(enter);
  } catch (...) {
    dlclose(library_);
    throw;
  }
}

Plugin::~Plugin() { dlclose(library_); }

}  // namespace host
