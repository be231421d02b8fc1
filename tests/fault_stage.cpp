#include "tests/fault_stage.h"

#include <dlfcn.h>

#include <algorithm>
#include <iostream>

namespace {

host::Settings settingsAt(std::optional<double> version) {
  host::Settings settings = settingsForRoad();
  settings.version = version;
  return settings;
}

// With sanitizers a call takes five times as long: each road tries other calls, a sixth of them all.
#ifdef ZVR_SANITIZED
constexpr int kParts = 6;
#else
constexpr int kParts = 1;
#endif

}  // namespace

std::vector<Call> callsToTry() {
  std::vector<Call> calls = everyCall();
  const auto isLeftOut = [](const Call& call) {
    return std::hash<std::string>()(call.describe()) % kParts != static_cast<size_t>(road()) % kParts;
  };
  calls.erase(std::remove_if(calls.begin(), calls.end(), isLeftOut), calls.end());
  return calls;
}

std::vector<std::string> allServices() {
  std::vector<std::string> names = host::entryPointNames();
  for (const std::string& method : host::hostMethodNames()) names.push_back(method);
  return names;
}

bool isAnyOf(const std::string& text, std::initializer_list<const char*> some) {
  return std::find(some.begin(), some.end(), text) != some.end();
}

Stage::Stage(double version, const Arm& arm) : Stage(settingsAt(version), arm) {}

Stage::Stage(const std::string& missing)
    : Stage(missing == "REALGetRBVersion" ? settingsAt(std::nullopt) : settingsForRoad(),
            [&](PluginMemory&) { host::removeEntryPoint(missing); }) {}

Stage::Stage(const host::Settings& settings, const Arm& arm)
    : library_(dlopen(ZVR_FAULTY_PLUGIN, RTLD_NOW | RTLD_LOCAL), &dlclose) {
  if (!library_) throw std::runtime_error(dlerror());
  memory_ = reinterpret_cast<PluginMemory* (*)()>(dlsym(library_.get(), "pluginMemory"))();
  host::start(settings);
  if (arm) arm(*memory_);
  try {
    plugin_ = std::make_unique<host::Plugin>(ZVR_FAULTY_PLUGIN);
  } catch (const host::Unwound&) {
    // Members that were registered until then stay.
  }
  serviceUses_ = host::uses();
  for (const auto& [name, uses] : host::usesByName()) usedServices_.insert(name);
}

Trial attempt(const Stage& stage, const Call& call, const std::function<void(Scene&)>& arm) {
  Trial trial;
  {
    Scene scene(call);
    trial.before = scene.inputs();
    host::clearFaults();
    PluginMemory& memory = stage.memory();
    memory.uses = memory.failAt = 0;
    const int live = memory.live;
    if (arm) arm(scene);
    try {
      scene.run();
    } catch (const host::Unwound&) {
      trial.unwound = true;
    }
    memory.failAt = 0;
    trial.allocations = memory.uses;
    trial.uses = host::usesByName();
    // A buffer that the host is given becomes the host's.
    trial.blocks = memory.live - live - host::uses("REALBuildPictureFromBuffer");
    host::clearFaults();
    trial.answer = scene.answer();
    trial.answersNull = scene.answersNull();
    trial.raised = scene.raised();
    trial.after = scene.inputs();
  }
  trial.left = host::held();
  trial.held = host::describeHeld();
  return trial;
}

void expectNothingHeld(const Call& call, const Trial& trial) {
  host::Ledger allowed;
  // A picture with alpha whose surface can't be had dies locked, on purpose.
  if (call.alpha && road() == host::Road::cairo) allowed.errors = trial.left.errors;
  EXPECT_EQ(trial.left, allowed) << trial.held;
  EXPECT_EQ(trial.blocks, 0);
}

bool needsNoPixels(const Call& call) {
  return call.kind != Call::Kind::call ||
         isAnyOf(call.name(), {"HasMaskZVR", "ScrollHorizontalZVR", "Table", "BinaryStringtoPictureZVR",
                               "RenderSamplesZVR"});
}

void FaultTest::SetUp() {
  const Stage stage;
  calls_ = callsToTry();
}

void FaultTest::TearDown() {
  host::start(settingsForRoad());
  std::cout << injected_ << " faults\n";
  if (IsSkipped() || HasFailure()) return;
  EXPECT_GE(injected_ * kParts, least_) << "hardly anything was tried";
}
