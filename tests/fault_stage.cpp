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
constexpr int kSide = 8;

}  // namespace

// Pictures that oddities make smaller, the first with alpha or without; blocks that hold all that a host
// without sizes is trusted for; and something to answer.
bool isWorthTrying(const Call& call, bool alpha) {
  bool isFirst = true;
  for (const Value& argument : call.arguments) {
    const auto* bytes = std::get_if<Bytes>(&argument);
    if (bytes && bytes->size() < (call.name() == "TransformColorsZVR" ? 256 : 1024)) return false;
    const auto* picture = std::get_if<Pixels>(&argument);
    if (!picture) continue;
    if (picture->width < 5 || picture->height < 5 || (isFirst && picture->alpha != alpha)) return false;
    isFirst = false;
  }
  Scene scene(call);
  scene.run();
  const Outcome outcome = scene.outcome();
  return !isNull(call, outcome) || !difference({call.arguments, {}, {}}, outcome).empty();
}

std::vector<Call> callsToTry() {
  constexpr uint32_t kSeeds = 60;
  std::vector<Call> calls;
  for (const Member& member : everyMember()) {
    Call call;
    uint32_t seed = 0;
    for (const bool alpha : {false, !isGdk(), false}) {
      do {
        Random random(++seed);
        call = makeCall(member, random, kSide);
      } while (seed % kSeeds != 0 && !isWorthTrying(call, alpha));
      calls.push_back(call);
    }
    for (size_t i = 0; i < call.arguments.size(); ++i) {
      Call without = call;
      without.arguments[i] = {};
      if (isObject(call.arguments[i])) calls.push_back(without);
    }
  }
  const auto isLeftOut = [](const Call& call) {
    return std::hash<std::string>()(call.describe()) % kParts != static_cast<size_t>(road()) % kParts;
  };
  calls.erase(std::remove_if(calls.begin(), calls.end(), isLeftOut), calls.end());
  return calls;
}

std::vector<Call> registered(const std::vector<Call>& calls) {
  const std::vector<Member> members = everyMember();
  std::vector<Call> there;
  for (const Call& call : calls) {
    const auto isMember = [&](const Member& m) {
      return m.owner == call.member.owner && m.text == call.member.text;
    };
    if (std::any_of(members.begin(), members.end(), isMember)) there.push_back(call);
  }
  return there;
}

bool haveSameAnswer(const Call& call, const Outcome& a, const Outcome& b) {
  const auto areAlike = [](const Value& x, const Value& y) {
    const auto *first = std::get_if<Pixels>(&x), *second = std::get_if<Pixels>(&y);
    return areSame(x, y) ||
           (first && second && first->width == second->width && first->colors == second->colors);
  };
  const std::vector<host::Parameter> parameters = parametersOf(call.member);
  bool same = areAlike(a.result, b.result);
  for (size_t i = 0; i < parameters.size(); ++i)
    same &= !parameters[i].byRef || areAlike(a.arguments[i], b.arguments[i]);
  return same;
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
  const host::Ledger lost = host::held();  // by faults of earlier calls
  {
    Scene scene(call);
    trial.before = scene.outcome();
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
    trial.after = scene.outcome();
  }
  const host::Ledger held = host::held();
  trial.left = {held.objects - lost.objects, held.strings - lost.strings,
                held.descriptionLocks - lost.descriptionLocks, held.stringData - lost.stringData,
                held.errors - lost.errors};
  trial.held = host::describeHeld();
  return trial;
}

void expectNothingHeld(const Call& call, const Trial& trial) {
  host::Ledger allowed;
  // A picture with alpha whose surface can't be had dies locked, on purpose.
  const auto hasAlpha = [](const Value& value) {
    const auto* picture = std::get_if<Pixels>(&value);
    return picture && picture->alpha;
  };
  const bool anyAlpha = std::any_of(call.arguments.begin(), call.arguments.end(), hasAlpha);
  if (anyAlpha && road() == host::Road::cairo) allowed.errors = trial.left.errors;
  EXPECT_EQ(trial.left, allowed) << trial.held;
  EXPECT_EQ(trial.blocks, 0);
}

bool isGiven(const Call& call, const Trial& trial, size_t argument) {
  return isObject(trial.before.arguments[argument]) && !(call.member.isOfClass() && argument == 1);
}

void expectUnchanged(const Call& call, const Trial& trial) {
  for (size_t i = 0; i < call.arguments.size(); ++i) {
    if (!isGiven(call, trial, i)) continue;
    EXPECT_TRUE(areSame(trial.after.arguments[i], trial.before.arguments[i]))
        << "argument " << i << " is changed";
  }
}

bool needsNoPixels(const Call& call) {
  if (call.member.kind != Member::Kind::call) return true;
  const std::string name = call.name();
  const auto isZero = [&](size_t i) { return call.arguments[i] == Value(int64_t{0}); };
  return isAnyOf(name, {"HasMaskZVR", "ScrollHorizontalZVR", "Table", "BinaryStringtoPictureZVR",
                        "RenderSamplesZVR"}) ||
         (name == "ScrollVerticalZVR" && isZero(1)) || (name == "ScrollZVR" && isZero(2));
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
