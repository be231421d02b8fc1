// Fuzzes every registered member on desktop and console hosts, with any arguments: no outcome may differ from
// its definition, and nothing may stay held. The GDK road needs a display.

#include <fuzzer/FuzzedDataProvider.h>

#include <iostream>
#include <string_view>

#include "frame/application.h"
#include "frame/host_state.h"
#include "plugin/plugin_main.h"
#include "tests/models.h"

namespace {

// Choices by the input's bytes; when they run out, by all of them together.
class FuzzedRandom : public Random {
 public:
  FuzzedRandom(const uint8_t* bytes, size_t size)
      : Random(std::hash<std::string_view>()({reinterpret_cast<const char*>(bytes), size})),
        data_(bytes, size) {}
  int between(int low, int high) override {
    return isOver() ? Random::between(low, high) : data_.ConsumeIntegralInRange(low, high);
  }
  uint32_t word() override { return isOver() ? Random::word() : data_.ConsumeIntegral<uint32_t>(); }

 private:
  bool isOver() { return data_.remaining_bytes() == 0; }

  FuzzedDataProvider data_;
};

// The input found a fault.
[[noreturn]] void fail(const std::string& what) {
  std::cerr << what << std::endl;
  std::abort();
}

// Begins a host, after others in this process, and enters the plug-in, which is linked in, anew.
void play(host::Road kind) {
  setRoad(kind);
  host::Settings settings = settingsForRoad();
  settings.guardPages = false;  // the sanitizer watches
  host::start(settings);
  setApplicationKind(ApplicationKind::unknown);  // which never changes in a real process
  REALPluginMain(host::resolve);
}

void callMember(const Member& member, Random& random) {
  const Call call = makeCall(member, random, random.chance(50) ? 40 : 300);
  Scene scene(call);
  scene.run();
  const std::optional<Outcome> expected = promised(call);
  const std::string wrong = expected ? difference(*expected, scene.outcome()) : "";
  if (!wrong.empty()) fail(call.describe() + '\n' + wrong);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  FuzzedRandom random(bytes, size);
  play(random.among({host::Road::cairo, host::Road::console}));
  const std::vector<Member> members = everyMember();
  do {
    callMember(members[random.word() % members.size()], random);
  } while (random.chance(80));
  if (!(host::held() == host::Ledger{})) fail(host::describeHeld());
  return 0;
}
