// Hosts in which something is missing or fails, and the outcome of one call in such a host.
#pragma once

#include <map>
#include <optional>
#include <set>

#include "tests/calls.h"
#include "tests/plugin_memory.h"
#include "tests/support.h"

// Of every member some calls that have something to answer, with and without alpha, and one with each object
// nil. With sanitizers a sixth of them, others on each kind of host (half of all calls together).
std::vector<Call> callsToTry();
// Those whose members are registered in the present host.
std::vector<Call> registered(const std::vector<Call>& calls);
// The names of all that the host offers.
std::vector<std::string> allServices();

// A host of its own with the plug-in loaded afresh, so that each call also looks everything up.
class Stage {
 public:
  using Arm = std::function<void(PluginMemory&)>;

  explicit Stage(double version = 2013.03, const Arm& arm = {});
  // A host of version 2013.03 without a service.
  explicit Stage(const std::string& missing);
  // `arm` is called in the new host before the plug-in is entered.
  explicit Stage(const host::Settings& settings, const Arm& arm = {});

  PluginMemory& memory() const { return *memory_; }
  // The services that the plug-in used when it was loaded, and how often all together.
  const std::set<std::string>& usedServices() const { return usedServices_; }
  int serviceUses() const { return serviceUses_; }

 private:
  std::unique_ptr<void, int (*)(void*)> library_;
  PluginMemory* memory_;
  std::unique_ptr<host::Plugin> plugin_;  // null when an exception went through its entry
  std::set<std::string> usedServices_;
  int serviceUses_;
};

// One call.
struct Trial {
  Outcome before, after;
  bool unwound = false;
  int blocks = 0;     // of plug-in memory, without those given to the host
  host::Ledger left;  // once the arguments are gone
  std::string held;
  std::map<std::string, int> uses;  // of the host's services
  int allocations = 0;
};

// Makes the arguments, lets `arm` prepare the fault, calls.
Trial attempt(const Stage& stage, const Call& call, const std::function<void(Scene&)>& arm = {});

// Expects nothing to be left of a call, except the locks of pictures with alpha whose surface could not be
// had.
void expectNothingHeld(const Call& call, const Trial& trial);
// Whether it is an object that a call was given; the destination of a class is part of the answer.
bool isGiven(const Call& call, const Trial& trial, size_t argument);
// Expects all that was given to be as it was.
void expectUnchanged(const Call& call, const Trial& trial);
// Whether a member has something to answer although no pixels of the given pictures can be had.
bool needsNoPixels(const Call& call);

// Whether results and byref arguments are the same, except for the alpha that a result may lack.
bool haveSameAnswer(const Call& call, const Outcome& a, const Outcome& b);

bool isAnyOf(const std::string& text, std::initializer_list<const char*> some);

// Counts the faults of a test and prints how many there were.
class FaultTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  std::vector<Call> calls_;  // to try
  int injected_ = 0;
  int least_ = 500;  // fewer would mean that hardly anything was tried
};
