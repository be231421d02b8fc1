// Every kernel of every instruction set that this processor has, against its plain definition: all short
// lengths, all alignments, memory that ends where the spans end, adversarial contents and parameters.

#include <cpuid.h>

#include <iomanip>
#include <iostream>
#include <map>
#include <optional>
#include <set>
#include <sstream>

#include "tests/kernel_cases.h"
#include "tests/plain_kernels.h"

namespace {

using kernels::Pixel;
using kernels::Table;

std::vector<const Table*> supportedTables() {
  const kernels::Tables tables = kernels::supported();
  return {tables.table, tables.table + tables.count};
}

// The same as an earlier operand except for top bytes and, perhaps, one bit.
Bytes nearly(Random& random, Bytes bytes) {
  for (size_t i = 3; i < bytes.size(); i += 4) bytes[i] = static_cast<uint8_t>(i * 37);
  if (random.chance(50))
    bytes[random.word() % bytes.size()] ^= static_cast<uint8_t>(1 << random.between(0, 7));
  return bytes;
}

// Where operands lie: at addresses of this remainder modulo 64, else at the very edge; near the no-access
// page behind, or before.
struct Place {
  std::optional<size_t> remainder;
  bool atEnd;
};

// One operand twice: in guarded memory for the kernel, and in an image of that memory for the definition.
class Operand {
 public:
  void lay(const Place& place, const Bytes& contents, bool aligned) {
    size_ = contents.size();
    const size_t remainder = place.remainder.value_or(0) & (aligned ? ~size_t{3} : ~size_t{0});
    at_ = place.atEnd ? memory_.size() - size_ : 0;
    if (place.remainder) at_ = place.atEnd ? at_ - ((at_ - remainder) & 63) : remainder;
    from_ = at_ < kMargin ? 0 : at_ - kMargin;
    end_ = std::min(at_ + size_ + kMargin, memory_.size());
    memset(image_.data() + from_, 0xA5, end_ - from_);
    if (size_ > 0) memcpy(image_.data() + at_, contents.data(), size_);
    memcpy(memory_.begin() + from_, image_.data() + from_, end_ - from_);
  }
  uint8_t* kernels() { return memory_.begin() + at_; }
  uint8_t* definitions() { return image_.data() + at_; }
  // The offset from the operand's start of the first byte that differs.
  std::optional<ptrdiff_t> difference() const {
    if (memcmp(memory_.begin() + from_, image_.data() + from_, end_ - from_) == 0) return std::nullopt;
    size_t i = from_;
    while (memory_.begin()[i] == image_[i]) ++i;
    return static_cast<ptrdiff_t>(i) - static_cast<ptrdiff_t>(at_);
  }

 private:
  static constexpr size_t kMargin = 128;
  GuardedMemory memory_{8192};
  Bytes image_ = Bytes(8192);
  size_t size_ = 0, at_ = 0, from_ = 0, end_ = 0;
};

constexpr unsigned kAvx = 1U << 2, kAvx512 = 1U << 6;

unsigned stateComponents(unsigned which) {
  unsigned low, high;
  __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(which));
  return low;
}

// Whether this processor has AVX and tells which parts of its registers are in use. Asked once: CPUID leaves
// a virtual machine, and when it comes back all parts may count as in use.
const bool kTellsPartsInUse = [] {
  unsigned a = 0, b, c = 0, d;
  if (!__get_cpuid(1, &a, &b, &c, &d) || (c & bit_OSXSAVE) == 0 || (c & bit_AVX) == 0) return false;
  if ((stateComponents(0) & kAvx) == 0) return false;
  return __get_cpuid_count(0xD, 1, &a, &b, &c, &d) != 0 && (a & 1U << 2) != 0;
}();

// Whether vector registers hold more than SSE code knows of after a call, which slows such code down. Nothing
// may come between the call and the question. An interrupt there can leave them in use, too: one answer
// proves nothing.
template <typename Call>
bool leavesUpperHalvesInUse(const Call& call) {
  if (kTellsPartsInUse) __asm__ volatile("vzeroupper");
  call();
  return kTellsPartsInUse && (stateComponents(1) & (kAvx | kAvx512)) != 0;
}

std::string describe(const Table& table, const Case& c, const Parameters& p) {
  std::ostringstream text;
  text << table.name << ' ' << c.name << " with number " << p.number << std::hex << ", top " << p.top
       << ", words";
  for (const uint32_t word : p.words) text << ' ' << word;
  text << ", tint " << p.tint.gray << ' ' << p.tint.sepia << ", toning";
  const kernels::Sepia& t = p.sepia;
  for (uint32_t part : {t.redWeight, t.greenWeight, t.blueWeight, t.red, t.green, t.blue})
    text << ' ' << part;
  text << '\n';
  return text.str();
}

// A kernel against its definition.
class Duel {
 public:
  Duel(const Table& table, const Case& c, uint32_t seed) : table_(table), case_(c), random_(seed) {}

  // One call with drawn contents and parameters.
  void run(size_t count, const Place& in, const Place& out) {
    layOperands(count, in, out);
    const Hint hint = {spread_, wordOf(0, count > 0 ? random_.word() % count : 0)};
    Parameters expected = drawParameters(random_, case_, hint, random_.word()), got = expected;
    const uint64_t right = case_.run(plain::kTable, definitions_, expected);
    uint64_t result = 0;
    const auto call = [&] { result = case_.run(table_, kernels_, got); };
    const bool leavesThem = leavesUpperHalvesInUse(call);
    ASSERT_TRUE(result == right) << describe(table_, case_, got) << where() << std::hex << "got " << result
                                 << ", expected " << right;
    expectSame(got);
    ASSERT_FALSE(leavesThem && leavesUpperHalvesInUse(call) && leavesUpperHalvesInUse(call))
        << table_.name << ' ' << case_.name << " leaves the upper halves of registers in use";
  }

  std::string where() const {
    const auto remainder = [](const uint8_t* at) { return reinterpret_cast<uintptr_t>(at) % 64; };
    std::ostringstream text;
    text << "length " << kernels_.count << ", in at " << remainder(kernels_.in[0]) << ", out at "
         << remainder(kernels_.out) << (out_ < 3 ? " (in place)" : "") << " modulo 64, ";
    return text.str();
  }

 private:
  size_t outSize(size_t count) const { return case_.shape.out * (case_.shape.outIsWhole ? 1 : count); }

  void layOperands(size_t count, const Place& in, const Place& out) {
    static const int kSpreads[] = {0, 1, 2, 5, 29, 30, 127, 254, 255};
    spread_ = kSpreads[random_.word() % std::size(kSpreads)];
    const Shape& shape = case_.shape;
    kernels_ = definitions_ = {nullptr, {}, count};
    out_ = 3;
    for (size_t k = 0; k < 3 && shape.in[k] > 0; ++k) {
      size_t place = k;
      if (k > 0 && shape.outMayBeIn && random_.chance(20)) {
        place = random_.word() % k;
      } else {
        layInput(k, count, in);
      }
      contents_[k] = contents_[place];
      kernels_.in[k] = place == k ? operands_[k].kernels() : kernels_.in[place];
      definitions_.in[k] = place == k ? operands_[k].definitions() : definitions_.in[place];
      if (shape.outMayBeIn && place == k && random_.chance(20)) out_ = k;
    }
    if (shape.out == 0) return;
    if (out_ == 3) operands_[3].lay(out, drawContents(random_, outSize(count), spread_), false);
    kernels_.out = operands_[out_].kernels();
    definitions_.out = operands_[out_].definitions();
  }

  void layInput(size_t k, size_t count, Place place) {
    const size_t size = case_.shape.in[k] * count;
    contents_[k] = case_.shape.inIsNumbers                   ? drawNumbers(random_, size)
                   : k > 0 && size > 0 && random_.chance(50) ? nearly(random_, contents_[0])
                                                             : drawContents(random_, size, spread_);
    if (place.remainder) place.remainder = (*place.remainder + 23 * k) % 64;
    operands_[k].lay(place, contents_[k], case_.shape.inIsNumbers);
  }

  void expectSame(const Parameters& parameters) const {
    for (size_t k = 0; k < 4; ++k) {
      const std::optional<ptrdiff_t> offset = operands_[k].difference();
      if (!offset) continue;
      const bool isInside =
          k == out_ && *offset >= 0 && *offset < static_cast<ptrdiff_t>(outSize(kernels_.count));
      ASSERT_TRUE(isInside) << describe(table_, case_, parameters) << where() << "wrote outside: at byte "
                            << *offset << " of " << (k == out_ ? "out" : "an input");
      const size_t element = case_.shape.outIsWhole ? 4 : case_.shape.out;
      const size_t index = static_cast<size_t>(*offset) / element;
      std::ostringstream from;
      for (size_t j = 0; j < 3 && kernels_.in[j] && !case_.shape.outIsWhole; ++j)
        from << ", from " << std::hex << wordOf(j, index);
      FAIL() << describe(table_, case_, parameters) << where() << "index " << index << std::hex << ": got "
             << number(kernels_.out + index * element, element) << ", expected "
             << number(definitions_.out + index * element, element) << from.str();
    }
  }

  static uint32_t number(const uint8_t* at, size_t size) {
    uint32_t value = 0;
    memcpy(&value, at, size);
    return value;
  }
  // An element of an input as it was; 0 when there is none.
  uint32_t wordOf(size_t k, size_t index) const {
    const size_t size = case_.shape.in[k];
    return kernels_.count > 0 && size > 0 ? number(&contents_[k][index * size], size) : 0;
  }

  const Table& table_;
  const Case& case_;
  Random random_;
  int spread_ = 0;
  Bytes contents_[3];
  Operand operands_[4];  // inputs and out
  size_t out_ = 3;       // which of them is written
  Operands kernels_ = {}, definitions_ = {};
};

// A kernel of an instruction set.
class Kernel : public ::testing::TestWithParam<std::tuple<const Table*, const Case*>> {
 protected:
  // Kernels that touch memory of others end the process.
  void SetUp() override {
    describeRunning = [this] { return duel.where(); };
  }
  void TearDown() override { describeRunning = nullptr; }
  Duel duel{*std::get<0>(GetParam()), *std::get<1>(GetParam()), 4};
};

std::vector<size_t> lengths() {
  std::vector<size_t> all = {255, 256, 257, 510, 511, 512, 513, 514, 1000, 1001, 1003, 1023, 1025};
  for (size_t length = 0; length <= 200; ++length) all.push_back(length);
  return all;
}

TEST_P(Kernel, AgreesWithItsDefinitionAtAllLengthsAndAlignments) {
  Random random(5);
  for (const size_t length : lengths()) {
    for (const bool atEnd : {false, true}) duel.run(length, {{}, atEnd}, {{}, atEnd});
      // Over the lengths each pair of alignments comes; of the slow sanitized runs one in eight.
#ifdef ZVR_SANITIZED
    constexpr size_t kStep = 8;
#else
    constexpr size_t kStep = 1;
#endif
    for (size_t remainder = length % kStep; remainder < 64; remainder += kStep) {
      duel.run(length, {remainder, random.chance(50)}, {(remainder + 29 * length) % 64, random.chance(50)});
    }
  }
}

template <typename Passes>
std::vector<const Case*> casesWhere(const Passes& passes) {
  std::vector<const Case*> all;
  for (const Case& c : allCases()) {
    if (passes(c.shape)) all.push_back(&c);
  }
  return all;
}

template <typename Passes>
auto onAllSets(const Passes& passes) {
  return ::testing::Combine(::testing::ValuesIn(supportedTables()), ::testing::ValuesIn(casesWhere(passes)));
}

const auto kSetAndName = [](const auto& parameter) {
  return std::string(std::get<0>(parameter.param)->name) + "_" + std::get<1>(parameter.param)->name;
};

INSTANTIATE_TEST_SUITE_P(Sets, Kernel, onAllSets([](const Shape&) { return true; }), kSetAndName);
TEST(Kernels, AllAreTestedOnAllSetsOfThisProcessor) {
  std::set<size_t> slots;
  for (const Case& c : allCases()) slots.insert(c.slot);
  // Behind the name there are only kernels.
  for (size_t slot = 1; slot < sizeof(Table) / sizeof(void*); ++slot) {
    EXPECT_EQ(slots.count(slot), 1u) << "no case for kernel " << slot << " of kernels::Table";
  }
  std::ostringstream names;
  for (const Table* table : supportedTables()) names << ' ' << table->name;
  std::cout << "instruction sets:" << names.str() << '\n';
  EXPECT_EQ(names.str().rfind(" sse2", 0), 0u) << names.str();
  EXPECT_EQ(kernels::best().name, supportedTables().back()->name);
}

// Builds for debugging, slow with one pixel at a time, look at some of the colours and factors.
#ifdef __OPTIMIZE__
constexpr uint32_t kSingleStep = 1, kSpanStep = 4096;
constexpr int32_t kFactorStep = 1;
constexpr uint32_t kTintStep = 11;
constexpr bool kAlsoInPlace = true;
#else
constexpr uint32_t kSingleStep = 613, kSpanStep = 41 * 4096;
constexpr int32_t kFactorStep = 41;
constexpr uint32_t kTintStep = 101;
constexpr bool kAlsoInPlace = false;
#endif

// A kernel that takes a span of words, on every colour.
class AllColors : public ::testing::TestWithParam<const Case*> {
 protected:
  // In spans of that length, from one to the next `step` colours on.
  void compare(uint32_t span, uint32_t step, uint32_t variant) {
    const Case& c = *GetParam();
    Random random(variant);
    const Parameters drawn = drawParameters(random, c, {30, random.color()}, variant);
    std::vector<Parameters> parameters(1 + sets_.size(), drawn);  // kept from span to span
    std::vector<uint32_t> in(span);
    const Bytes fresh(c.shape.out * (c.shape.outIsWhole ? 1 : span), 0x5A);
    Bytes expected, got;
    const auto run = [&](const Table& table, Bytes& out, Parameters& p) {
      out = fresh;
      return c.run(table, {out.data(), {reinterpret_cast<const uint8_t*>(in.data())}, span}, p);
    };
    for (uint32_t first = 0; first < 1U << 24; first += step) {
      for (uint32_t i = 0; i < span; ++i) in[i] = (first + i) | (first + i) * 77 << 24;
      const uint64_t right = run(plain::kTable, expected, parameters[0]);
      for (size_t s = 0; s < sets_.size(); ++s) {
        const uint64_t result = run(*sets_[s], got, parameters[1 + s]);
        ASSERT_TRUE(result == right && got == expected)
            << describe(*sets_[s], c, drawn) << "colours from " << std::hex << first << " on";
      }
    }
  }

 private:
  const std::vector<const Table*> sets_ = supportedTables();
};

TEST_P(AllColors, AgreeWithTheirDefinitions) {
  for (const uint32_t variant : {0u, 3u}) compare(4096, kSpanStep, variant);
  // One result for many says little of each.
  if (GetParam()->shape.out == 0) compare(1, kSingleStep, 1);
}

INSTANTIATE_TEST_SUITE_P(Kernels, AllColors, ::testing::ValuesIn(casesWhere([](const Shape& s) {
                           return s.in[0] == 4 && !s.in[1];
                         })),
                         [](const auto& parameter) { return parameter.param->name; });

// A kernel that maps words to words, on spans long enough for streaming stores. One buffer serves as every
// input, and in the second run as output too.
class LongSpans : public ::testing::TestWithParam<const Case*> {};

TEST_P(LongSpans, AgreeWithTheirDefinitions) {
  const Case& c = *GetParam();
  constexpr size_t kCount = (size_t{1} << 22) + 77;
  Random random(8);
  const Bytes contents = drawContents(random, 16384, 30);
  const Parameters drawn = drawParameters(random, c, {30, random.color()}, 3);
  const auto run = [&](const Table& table, bool inPlace) {
    Bytes in(kCount * 4 + 4), out(in.size());
    for (size_t i = 0; i < in.size(); i += contents.size())
      memcpy(&in[i], contents.data(), std::min(contents.size(), in.size() - i));
    // So much memory is aligned to cache lines: a word further on none starts.
    uint8_t *from = in.data() + 4, *to = inPlace ? from : out.data() + 4;
    Parameters p = drawn;
    c.run(table, {to, {from, from, from}, kCount}, p);
    return inPlace ? in : out;
  };
  for (const bool inPlace : {false, true}) {
    if (inPlace && !(kAlsoInPlace && c.shape.outMayBeIn)) break;
    const Bytes expected = run(plain::kTable, inPlace);
    for (const Table* table : supportedTables())
      EXPECT_TRUE(run(*table, inPlace) == expected) << describe(*table, c, drawn);
  }
}

INSTANTIATE_TEST_SUITE_P(Kernels, LongSpans, ::testing::ValuesIn(casesWhere([](const Shape& s) {
                           return s.in[0] == 4 && s.out == 4 && !s.outIsWhole && !s.inIsNumbers;
                         })),
                         [](const auto& parameter) { return parameter.param->name; });

// For each distance of red from gray that there is, the darkest and the lightest pixel: between them they
// show all results that are not clamped. And any pixels.
std::vector<uint32_t> pixelsOfAllDistances() {
  std::map<int, std::pair<Rgb, Rgb>> byDistance;
  const auto lightness = [](Rgb p) { return (red(p) + 2 * green(p) + blue(p)) / 4; };
  for (int i = 0; i < 256 * 256 * 2; ++i) {
    const Rgb pixel = rgb(i & 255, i >> 8 & 255, (i >> 16) * 255);
    auto& [dark, light] = byDistance.try_emplace(red(pixel) - lightness(pixel), pixel, pixel).first->second;
    if (lightness(pixel) < lightness(dark)) dark = pixel;
    if (lightness(pixel) > lightness(light)) light = pixel;
  }
  std::vector<uint32_t> pixels;
  for (const auto& [distance, ends] : byDistance) pixels.insert(pixels.end(), {ends.first, ends.second});
  Random random(7);
  for (int i = 0; i < 500; ++i) pixels.push_back(random.word());
  return pixels;
}

// run(table, out): on those pixels.
template <typename Run>
void expectAgreement(const std::vector<uint32_t>& in, const Run& run, uint32_t parameter) {
  std::vector<uint32_t> expected(in.size()), got(in.size());
  run(plain::kTable, expected.data());
  for (const Table* table : supportedTables()) {
    run(*table, got.data());
    const auto [right, wrong] = std::mismatch(expected.begin(), expected.end(), got.begin());
    ASSERT_TRUE(right == expected.end())
        << table->name << std::hex << ", parameter " << parameter << ", pixel "
        << in[static_cast<size_t>(right - expected.begin())] << ": got " << *wrong << ", expected " << *right;
  }
}

// Factors for which the kernel may calculate otherwise than for huge ones, and some beyond.
TEST(Kernels, SaturationByEveryModerateFactor) {
  const std::vector<uint32_t> in = pixelsOfAllDistances();
  for (int32_t factor = -0x8100; factor <= 0x8100; factor += kFactorStep) {
    const auto run = [&](const Table& table, Pixel* out) {
      table.saturate(out, in.data(), in.size(), 0, factor);
    };
    expectAgreement(in, run, static_cast<uint32_t>(factor));
  }
}

// Bases with which many results are at whole numbers: their weights are exact, or err to the same side for
// all pixels, or to another one for each; and some between.
TEST(Kernels, TintByBasesOfAllKinds) {
  const std::pair<uint32_t, uint32_t> bases[] = {
      {0x555555, 0x704214}, {0x555555, 0xFFFFFF}, {0xFF0000, 0xFFFFFF}, {0xFFFFFF, 0x00FF00},
      {0x4C961D, 0xFFFFFF}, {0x4C961D, 0xFFF0D1}, {0x336699, 0xFFCC55}, {0x3355CC, 0xAA0133},
      {0xFF5533, 0xFF66CC}, {0x000000, 0xFFFFFF}, {0x010203, 0x0405FE}, {0x80FE7F, 0x998811},
  };
  std::vector<uint32_t> in;
  for (uint32_t color = 0; color < 1U << 24; color += kTintStep) in.push_back(color);
  for (const auto& [gray, sepia] : bases) {
    const kernels::Tint fresh = {gray, sepia, {}};
    const auto run = [&](const Table& table, Pixel* out) {
      kernels::Tint tint = fresh;
      table.tint(out, in.data(), in.size(), 0, tint);
    };
    expectAgreement(in, run, gray);
  }
}

// So many of the largest samples that their sums wrap.
TEST(Kernels, SampleSumsWrapAt32Bits) {
  constexpr size_t kCount = (size_t{1} << 25) + 77;
  for (const int byte : {0x80, 0x7F, 0x00, 0xFF}) {
    const Bytes samples(kCount, static_cast<uint8_t>(byte));
    for (const auto& [sum, size] : {std::pair(&Table::sumInt8, 1),
                                    {&Table::sumUInt8, 1},
                                    {&Table::sumInt16, 2},
                                    {&Table::sumUInt16, 2}}) {
      const size_t count = kCount / static_cast<size_t>(size);
      const kernels::Excursions expected = (plain::kTable.*sum)(samples.data(), count);
      for (const Table* table : supportedTables()) {
        const kernels::Excursions got = (table->*sum)(samples.data(), count);
        EXPECT_EQ(got.negative, expected.negative) << table->name << ", bytes " << byte << ", size " << size;
        EXPECT_EQ(got.positive, expected.positive) << table->name << ", bytes " << byte << ", size " << size;
      }
    }
  }
}

}  // namespace
