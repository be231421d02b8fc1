// Fuzzes every registered member on hosts of every kind, with any arguments: no outcome of a method may
// differ from its definition, and nothing may stay held.

#include <fuzzer/FuzzedDataProvider.h>

#include <cmath>
#include <string_view>

#include "fuzz/played_host.h"
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

double anyReal(Random& random) {
  return random.chance(5) ? NAN
                          : std::ldexp(static_cast<int32_t>(random.word()), random.between(-1100, 1000));
}

void callMethod(const Member& member, Random& random) {
  Call call = makeCall(member, random, random.chance(50) ? 40 : 300);
  for (Value& argument : call.arguments) {
    // Drawables have no alpha, which the host that is played does not know.
    if (auto* picture = std::get_if<Pixels>(&argument)) *picture = asHeld(*picture);
    if (std::holds_alternative<double>(argument) && random.chance(20)) argument = anyReal(random);
  }
  Scene scene(call);
  scene.run();
  const std::optional<Outcome> expected = promised(call);
  const std::string wrong = expected ? difference(*expected, scene.outcome()) : "";
  if (!wrong.empty()) fuzz::fail((call.describe() + '\n' + wrong).c_str());
}

// A filter with any limits, tones, weights and table entries.
void runFilter(const host::Class& type, Random& random) {
  const host::ObjectRef filter = host::newInstance(type.name);
  for (const host::Property& property : type.properties) {
    const int64_t number = random.chance(70) ? random.between(-9, 99) : static_cast<int32_t>(random.word());
    if (property.type == "Integer") host::setProperty(filter.get(), property.name, number);
    if (property.type == "Double") host::setProperty(filter.get(), property.name, anyReal(random));
  }
  Pixels source = random.words(random.side(), random.between(1, 40));
  source.alpha = random.chance(50);
  host::setProperty(filter.get(), "SourcePicture", pictureOf(asHeld(source)));
  // Table, Run, Close.
  for (auto method = type.methods.rbegin(); method != type.methods.rend(); ++method) {
    for (int i = 0; method->setter && i < 9; ++i) {
      const auto place = [&] { return int64_t{random.chance(5) ? random.word() : random.word() % 19}; };
      host::assign(*method, filter.get(), {place(), place(), place(), place() % 4}, anyReal(random));
    }
    if (!method->setter) host::call(*method, filter.get(), {});
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  FuzzedRandom random(bytes, size);
  fuzz::play(random.among({host::Road::cairo, host::Road::gdk, host::Road::console}));
  const std::vector<Member> members = everyMember();
  do {
    const Member& member = members[random.word() % members.size()];
    if (!member.isOfClass()) callMethod(member, random);
    for (const host::Class& type : host::members().classes) {
      if (type.name == member.owner) runFilter(type, random);
    }
  } while (random.chance(80));
  if (!(host::held() == host::Ledger{})) fuzz::fail(host::describeHeld().c_str());
  return 0;
}
