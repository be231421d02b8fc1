// Every member of the plug-in is called once for each thing that can go wrong in the host or the heap while
// it works. No call may crash, answer half a result, or leave anything held except as named here.

#include "tests/fault_stage.h"

namespace {

class Faults : public FaultTest {};

// Whether no more is held than the service that is missing, failed or threw explains.
bool isLeftOnPurpose(const std::string& service, const Trial& trial) {
  const host::Ledger& left = trial.left;
  host::Ledger allowed;
  // The result of a call is lost when the host throws from releasing what the call used.
  const bool releases = isAnyOf(service, {"REALUnlockObject", "REALUnlockString", "unlockPictureDescription",
                                          "PluginDisposeStringData", "REALPictureClearCache"});
  if (trial.unwound && !releases) return left == allowed;
  if (trial.unwound && left.objects + left.strings <= 2) {
    allowed.objects = left.objects;
    allowed.strings = left.strings;
  }
  // Without the service that releases nothing can be released.
  if (service == "REALUnlockObject") allowed.objects = left.objects;
  if (service == "REALUnlockString") allowed.strings = left.strings;
  if (service == "PluginDisposeStringData") allowed.stringData = left.stringData;
  if (service == "unlockPictureDescription") allowed.errors = left.errors;  // pictures that died locked
  // An instance whose constructor the host does not give is lost, on purpose.
  if (isAnyOf(service, {"REALLoadObjectMethod", "Constructor(width as integer, height as integer)"}))
    allowed.objects = left.objects;
  return left == allowed;
}

// Answers that are neither null nor those of a sound host.
bool isPoorerOnPurpose(const Call& call, const std::string& service, const Trial& trial, const Trial& sound) {
  const std::string name = call.name();
  // A target that can't be written is left alone, and a new picture is made.
  const auto *got = std::get_if<Pixels>(&trial.after.result),
             *wanted = std::get_if<Pixels>(&sound.after.result);
  if (name == "TransformColorsZVR" && got && wanted && got->color(0, 0) == wanted->color(0, 0)) return true;
  // A picture that can't be scrolled counts as scrolled sideways.
  if (isAnyOf(name, {"ScrollHorizontalZVR", "ScrollZVR"})) return true;
  // Wide outlines are drawn by the host: lines that it doesn't draw are missing.
  if (name == "RenderSamplesZVR" &&
      isAnyOf(service, {"RuntimeGraphicsDrawLine", "REALSetPropValueInt", "REALSetPropValueUInt32",
                        "pluginPictureGraphicsGetter"})) {
    return true;
  }
  // A picture that can't say that it has alpha has none.
  if (name == "EmbeddedMaskZVR") return service == "REALGetPropValueBool";
  // Nothing lies in a block of size 0: reads are 0, and what is written is lost.
  return service == "memoryBlockGetSize" || (name == "CountColorsZVR" && service == "memoryBlockGetPtr");
}

// A picture and its mask each count by themselves.
bool isOneOf(const Value& value, const Value& first, const Value& second) {
  if (areSame(value, first) || areSame(value, second)) return true;
  const auto *picture = std::get_if<Pixels>(&value), *a = std::get_if<Pixels>(&first),
             *b = std::get_if<Pixels>(&second);
  const bool areMasked = picture && a && b && picture->mask && a->mask && b->mask;
  return areMasked && (picture->colors == a->colors || picture->colors == b->colors) &&
         isOneOf(*picture->mask, *a->mask, *b->mask);
}

// The documented result of a call in which something failed: null, or that of a sound host.
void expectWhole(const Call& call, const std::string& service, const Trial& trial, const Trial& sound) {
  // A host that threw did not take the buffer.
  const bool frees = trial.unwound && service == "REALBuildPictureFromBuffer";
  EXPECT_EQ(trial.blocks, frees ? -1 : 0);
  EXPECT_TRUE(isLeftOnPurpose(service, trial)) << trial.held;
  // Both ways together were never promised; tables of size 0 make another picture.
  const bool scrolls = call.name().rfind("Scroll", 0) == 0;
  const bool changesOtherwise = call.name() == "ScrollZVR" || service == "memoryBlockGetSize";
  const auto &before = trial.before.arguments, &after = trial.after.arguments;
  for (size_t i = 0; i < before.size() && !changesOtherwise; ++i) {
    if (!isGiven(call, trial, i)) continue;
    EXPECT_TRUE(isOneOf(after[i], before[i], sound.after.arguments[i]))
        << "argument " << i << " is half changed: " << written(after[i]);
  }
  if (trial.unwound) return;
  const bool isSame = haveSameAnswer(call, trial.after, sound.after);
  EXPECT_TRUE(isNull(call, trial.after) || isSame || isPoorerOnPurpose(call, service, trial, sound))
      << difference(sound.after, trial.after);
  if (isNull(call, trial.after) && !scrolls && !isSame) expectUnchanged(call, trial);
}

// ---- Services ----

TEST_F(Faults, EveryServiceMissing) {
  std::map<std::string, Trial> sound;
  for (const Call& call : calls_) sound[call.describe()] = attempt(Stage(), call);
  const std::set<std::string> registering = Stage().usedServices();
  for (const std::string& name : allServices()) {
    const std::vector<Call> known =
        (Stage(name), registered(calls_));  // without some fewer members are registered
    for (const Call& call : known) {
      // A service that neither the call nor the registration asks for can't be missed.
      if (!sound[call.describe()].uses.count(name) && !registering.count(name)) continue;
      SCOPED_TRACE(call.describe() + " without " + name);
      const Trial trial = attempt(Stage(name), call, [&](Scene&) { host::removeEntryPoint(name); });
      ++injected_;
      expectWhole(call, name, trial, sound[call.describe()]);
    }
  }
}

// Services without a result that reference counting depends on: whether they counted up can't be
// seen.
const std::set<std::string> kSilent = {"REALLockObject", "REALLockString"};

TEST_F(Faults, EveryUseOfEveryServiceFailing) {
  for (const double version : {2013.03, 2011.5}) {
    for (const Call& call : calls_) {
      std::unique_ptr<Stage> stage;
      const auto attemptAfresh = [&](const auto&... arm) {
        stage.reset();
        stage = std::make_unique<Stage>(version);
        return attempt(*stage, call, arm...);
      };
      const Trial sound = attemptAfresh(), again = attempt(*stage, call);
      const auto failInTurn = [&](const std::string& name, int uses, host::Fault fault) {
        // What is looked up only once, or no longer after a fault, takes a plug-in that is loaded afresh.
        const auto repeated = again.uses.find(name);
        const bool isRepeated = repeated != again.uses.end() && repeated->second == uses;
        // Until its fault a call runs as the sound one.
        for (int nth = 1; nth <= uses; ++nth) {
          SCOPED_TRACE(call.describe() + ", use " + std::to_string(nth) + " of " + name +
                       (fault == host::Fault::unwind ? " unwinds" : " fails") + ", version " +
                       std::to_string(version));
          const auto arm = [&](Scene&) { host::failAt(name, nth, fault); };
          Trial trial = isRepeated ? attempt(*stage, call, arm) : attemptAfresh(arm);
          if (trial.uses[name] < nth) trial = attemptAfresh(arm);
          ++injected_;
          EXPECT_GE(trial.uses[name], nth);
          EXPECT_EQ(trial.unwound, fault == host::Fault::unwind);
          expectWhole(call, name, trial, sound);
        }
      };
      for (const auto& [name, uses] : sound.uses) {
        if (!kSilent.count(name)) failInTurn(name, uses, host::Fault::null);
        failInTurn(name, uses, host::Fault::unwind);
      }
    }
  }
}

// ---- Memory ----

TEST_F(Faults, EveryAllocationFailing) {
  least_ = 25;  // most calls work without memory of their own
  for (const double version : {2013.03, 2011.5}) {
    for (const Call& call : calls_) {
      const Trial sound = attempt(Stage(version), call);
      for (int nth = 1; nth <= sound.allocations; ++nth) {
        SCOPED_TRACE(call.describe() + ", allocation " + std::to_string(nth));
        const Stage stage(version);
        const Trial trial = attempt(stage, call, [&](Scene&) { stage.memory().failAt = nth; });
        ++injected_;
        EXPECT_GE(trial.allocations, nth);
        expectWhole(call, "", trial, sound);
      }
    }
  }
}

// ---- Registration ----

// False for a class of the plug-in that was registered without properties.
bool hasProperties(const std::string& owner) {
  for (const host::Class& type : host::members().classes) {
    if (type.name == owner) return !type.properties.empty();
  }
  return true;
}

// Members may be missing then; those that are there work.
TEST_F(Faults, EveryFaultWhileRegistering) {
  enum Kind { kNull, kUnwind, kMemory };
  least_ = 20;
  for (const double version : {2013.03, 2011.5}) {
    for (const Kind kind : {kNull, kUnwind, kMemory}) {
      for (int nth = 1;; ++nth) {
        SCOPED_TRACE(std::to_string(nth) + (kind == kMemory ? ". allocation" : ". use of a service") +
                     (kind == kUnwind ? " unwinds" : "") + ", version " + std::to_string(version));
        const Stage stage(version, [&](PluginMemory& memory) {
          if (kind == kMemory) {
            memory.failAt = nth;
          } else {
            host::failAnyAt(nth, kind == kNull ? host::Fault::null : host::Fault::unwind);
          }
        });
        if ((kind == kMemory ? stage.memory().uses : stage.serviceUses()) < nth) break;
        ++injected_;
        for (const Call& call : registered(calls_)) {
          if (!hasProperties(call.member.owner)) continue;
          const Trial trial = attempt(stage, call);
          host::Ledger allowed;
          // A host that does not tell its version, asked for first, gets failed locks undone as old ones need
          // it.
          if (kind == kNull && nth == 1) allowed.errors = trial.left.errors;
          EXPECT_EQ(trial.left, allowed) << call.describe() << '\n' << trial.held;
          EXPECT_EQ(trial.blocks, 0) << call.describe();
        }
      }
    }
  }
}

}  // namespace
