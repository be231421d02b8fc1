// The services that the host offers by name, wrapped so that faults and use counts apply to all alike.
#pragma once

#include <string>
#include <type_traits>
#include <vector>

#include "host/host.h"

namespace host {

// Uses of one service, and the fault that is planned for it.
struct Usage {
  int uses = 0;
  int failAt = 0;  // the use that meets the fault; 0 for none
  Fault fault = Fault::none;
  bool removed = false;
};

// Who offers a service.
enum class Giver { resolver, globalMethod, picture, graphics, memoryBlock };

struct Entry {
  Giver giver = Giver::resolver;
  std::string name;  // entry-point name, or the declaration by which a method is asked for
  void* address = nullptr;
  Usage* usage = nullptr;
};

// The time that the plug-in spends in the host, for Settings::serviceWatcher.
class Visit {
 public:
  Visit() { tell(true); }
  ~Visit() { tell(false); }
  Visit(const Visit&) = delete;
  Visit& operator=(const Visit&) = delete;

 private:
  static void tell(bool entered) {
    if (const auto watcher = settings().serviceWatcher) watcher(entered);
  }
};

// Counts a use. True: answer null instead of working. Throws Unwound when that is the fault.
bool meetsFault(Usage& usage);

// Wraps a service function. `OnNull` gets the arguments when the service fails by a null fault, for services
// whose failure leaves something behind.
template <auto Function, auto OnNull>
struct Service;
template <typename Result, typename... Arguments, Result (*Function)(Arguments...), auto OnNull>
struct Service<Function, OnNull> {
  static inline Usage usage;
  static Result call(Arguments... arguments) {
    const Visit visit;
    if (!meetsFault(usage)) return Function(arguments...);
    if constexpr (!std::is_null_pointer_v<decltype(OnNull)>) OnNull(arguments...);
    return Result();
  }
};

template <auto Function, auto OnNull = nullptr>
Entry entry(const char* name, Giver giver = Giver::resolver) {
  using Wrapped = Service<Function, OnNull>;
  return {giver, name, reinterpret_cast<void*>(&Wrapped::call), &Wrapped::usage};
}

// Every service, in a fixed order.
const std::vector<Entry>& entries();
// The address of a method, or null when the giver has none of exactly this declaration (or it was removed).
void* findMethod(Giver giver, const std::string& declaration);

// Each family of services adds its own.
void addRegistrationServices(std::vector<Entry>& all);
void addObjectServices(std::vector<Entry>& all);
void addStringServices(std::vector<Entry>& all);
void addPropertyServices(std::vector<Entry>& all);
void addArrayServices(std::vector<Entry>& all);
void addPictureServices(std::vector<Entry>& all);
void addGraphicsServices(std::vector<Entry>& all);
void addProgramServices(std::vector<Entry>& all);

}  // namespace host
