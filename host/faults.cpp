// Services that are missing or fail at a chosen use.

#include <stdexcept>

#include "host/entry_points.h"
#include "host/objects_internal.h"

namespace host {
namespace {

Usage anyService;  // all services together

// Names are those of entry points and of methods alike.
std::vector<Usage*> usagesOf(const std::string& name) {
  std::vector<Usage*> found;
  for (const Entry& entry : entries()) {
    if (entry.name == name) found.push_back(entry.usage);
  }
  if (found.empty()) throw std::invalid_argument("the host has no entry point or method \"" + name + "\"");
  return found;
}

std::vector<std::string> namesOf(bool ofResolver) {
  std::vector<std::string> names;
  for (const Entry& entry : entries()) {
    if ((entry.giver == Giver::resolver) == ofResolver) names.push_back(entry.name);
  }
  return names;
}

Fault nextFault(Usage& usage) { return ++usage.uses == usage.failAt ? usage.fault : Fault::none; }

void plan(Usage& usage, int nth, Fault fault) {
  usage.failAt = usage.uses + nth;
  usage.fault = fault;
}

}  // namespace

bool meetsFault(Usage& usage) {
  const Fault own = nextFault(usage);
  const Fault any = nextFault(anyService);
  if (own == Fault::unwind || any == Fault::unwind) throw Unwound{};
  return own == Fault::null || any == Fault::null;
}

std::vector<std::string> entryPointNames() { return namesOf(true); }
std::vector<std::string> hostMethodNames() { return namesOf(false); }

void removeEntryPoint(const std::string& name) {
  for (Usage* usage : usagesOf(name)) usage->removed = true;
}

void failAt(const std::string& name, int nth, Fault fault) {
  for (Usage* usage : usagesOf(name)) plan(*usage, nth, fault);
}

void failAnyAt(int nth, Fault fault) { plan(anyService, nth, fault); }

int uses(const std::string& name) {
  if (name.empty()) return anyService.uses;
  int sum = 0;
  for (const Usage* usage : usagesOf(name)) sum += usage->uses;
  return sum;
}

std::map<std::string, int> usesByName() {
  std::map<std::string, int> uses;
  for (const Entry& entry : entries()) {
    if (entry.usage->uses > 0) uses[entry.name] += entry.usage->uses;
  }
  return uses;
}

void clearFaults() {
  anyService = {};
  for (const Entry& entry : entries()) *entry.usage = {};
}

void resetFaults() { clearFaults(); }

}  // namespace host
