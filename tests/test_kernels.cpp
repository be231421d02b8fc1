// Every kernel of every instruction set that this processor has, against its plain definition: all short
// lengths, all alignments, memory that ends where the spans end, adversarial contents and parameters, all
// colours, spans of megabytes.

#include <sys/mman.h>

#include <iostream>
#include <sstream>

#include "kernels/channel_tables.h"
#include "tests/filter_models.h"
#include "tests/kernel_calls.h"
#include "tests/support.h"

namespace {

using kernels::Table;
using Words = std::vector<uint32_t>;

// ---- Memory ----

// Memory between two pages that can't be touched, kept for good.
struct GuardedMemory {
  uint8_t *begin, *end;

  explicit GuardedMemory(size_t bytes) {
    constexpr size_t kPage = 4096;
    const size_t size = (bytes + kPage - 1) / kPage * kPage;
    void* all = mmap(nullptr, size + 2 * kPage, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (all == MAP_FAILED) throw std::bad_alloc();
    begin = static_cast<uint8_t*>(all) + kPage;
    end = begin + size;
    if (mprotect(begin, size, PROT_READ | PROT_WRITE) != 0) throw std::bad_alloc();
  }
};

// Bytes between an operand and the page before it, or behind.
struct Place {
  bool atEnd;
  size_t distance;
};

// An operand, and the bytes around it.
struct Operand {
  GuardedMemory memory{34 << 20};
  Words words;  // of which it is made, again and again
  uint8_t *from, *at, *end, *to;
  std::vector<uint8_t> expected;

  void lay(size_t size, const Place& place) {
    constexpr size_t kMargin = 64;
    at = place.atEnd ? memory.end - place.distance - size : memory.begin + place.distance;
    end = at + size;
    from = std::max(at - kMargin, memory.begin);
    to = std::min(end + kMargin, memory.end);
  }
  // Another one stands for it.
  void removeIt() { from = at = end = to = memory.begin; }
  void write() {
    std::fill(from, at, uint8_t{0xA5});
    std::fill(end, to, uint8_t{0xA5});
    const size_t size = static_cast<size_t>(end - at), once = words.size() * 4;
    for (size_t done = 0; done < size; done += once)
      memcpy(at + done, words.data(), std::min(once, size - done));
  }
};

uint8_t* guarded(const void* contents, size_t size, size_t shift = 0) {
  uint8_t* at = GuardedMemory(size + shift).end - size - shift;
  memcpy(at, contents, size);
  return at;
}

// ---- Contents and parameters ----

// The colours of Random, with top bytes.
Words takeWords(Random& random, size_t count) {
  static const Words kWords = [] {
    Random source(3);
    Words words = source.pixels(256, 256).colors;
    for (size_t i = 0; i < words.size(); ++i) words[i] |= (i / 4096 % 4 * source.word()) << 24;
    return words;
  }();
  const uint32_t* start = &kWords[random.word() % (kWords.size() - count)];
  return {start, start + count};
}

// These, or one word, perhaps not at all places and with any top bytes; small numbers and extremes; nearly
// gray words whose channels differ by up to `spread`.
Words drawWords(Random& random, size_t count, int spread) {
  static const uint32_t kPatterns[] = {0x80808080, 0x7F7F7F7F, 0x80008000, 0x7FFF7FFF,
                                       0x00000000, 0xFFFFFFFF, 0xFF000000, 0x00FFFFFF};
  Words words = takeWords(random, count);
  const int kind = random.between(0, 6);
  const uint32_t one = kPatterns[random.word() % std::size(kPatterns)];
  const uint32_t tops = random.chance(50) * 0xFF000000;
  const auto gray = [&] {
    return random.chance(30) ? random.between(0, spread) : random.between(0, 1) * spread;
  };
  for (uint32_t& word : words) {
    const uint32_t darkest = word % static_cast<uint32_t>(256 - spread) * 0x10101, top = word & tops;
    const int number = random.between(-10, 30);
    if (kind == 0) word = (darkest + rgb(gray(), gray(), gray())) | top;
    if (kind == 1) word = number > 26 ? 0x7FFFFFFF + word % 2 : static_cast<uint32_t>(number);
    if (kind == 2) word = one ^ top;
    if (kind == 3) word = words[0] ^ top;
  }
  for (int odd = random.between(0, 2); odd > 0 && count > 0; --odd)
    words[random.word() % count] ^= 1U << random.between(0, 31);
  return words;
}

// Around `spread`; where kernels may begin to calculate otherwise; of any size.
uint32_t drawNumber(Random& random, const std::string& kernel, int spread) {
  static const int32_t kEdges[] = {0,      254,    255,     256,     509,       510,          0x7FFF,
                                   0x7F80, 0x8000, 0x10000, 8421505, INT32_MAX, INT32_MIN + 1};
  const auto any = static_cast<int32_t>(random.word() >> random.between(1, 31));
  int32_t number = random.chance(70) ? any : kEdges[random.word() % std::size(kEdges)];
  if (random.chance(50)) number = -number;
  if (random.chance(50)) number = spread + random.between(-1, 1);
  if (kernel == "isAllGray") number = std::clamp(number, 0, 255);
  if (kernel == "countColorful") number = std::clamp(number, -1, 255);
  return static_cast<uint32_t>(number);
}

kernels::LinearMaps drawLines(Random& random) {
  const auto line = [&]() -> kernels::LinearMap {
    return {random.chance(50), static_cast<uint8_t>(random.word()), static_cast<uint16_t>(random.word()),
            random.between(-65535, 65535) / (random.chance(50) ? 1 : 256)};
  };
  return {line(), line(), line(), static_cast<uint32_t>(random.between(1, 8))};
}

// Of whole and other numbers, some of which are hard to calculate with; and of sums at and just below 17 * k,
// for all k, where kernels may calculate otherwise than by dividing.
std::vector<std::vector<double>> drawCubes(Random& random) {
  static const double kHard[] = {kNaN, kInfinity, -kInfinity, 1e308, -1e308, 5e-324, 255.5, 256, -1e-9, -4e9};
  std::vector<std::vector<double>> cubes = {wholeCube(random)};
  for (const int percent : {0, 5, 50}) {
    cubes.push_back(makeCube([&](const auto&, size_t) {
      return random.chance(percent) ? kHard[random.word() % std::size(kHard)]
                                    : random.between(-300, 3000) / 10.0;
    }));
  }
  for (size_t first = 1; first <= 256; first += kUsed) {
    cubes.push_back(makeCube([=](const auto& node, size_t x) {
      const auto k = static_cast<double>(first + node[2]);
      return x == 0 ? k : std::nextafter(x == 1 ? k : std::nextafter(k, 0), 0);
    }));
  }
  return cubes;
}

// What references and tables lead to: some of each kind, at the very end of memory.
const std::vector<uint8_t*>& tablesOf(Kind kind) {
  static const std::map<Kind, std::vector<uint8_t*>> kTables = [] {
    std::map<Kind, std::vector<uint8_t*>> all;
    Random random(2);
    for (int i = 0; i < 1000; ++i) {
      Words sepia(sizeof(kernels::Sepia) / 4);
      for (uint32_t& part : sepia) part = drawNumber(random, "sepia", random.between(-300, 300));
      const kernels::LinearMaps lines = drawLines(random);
      all[Kind::sepia].push_back(guarded(sepia.data(), sizeof(kernels::Sepia)));
      all[Kind::lines].push_back(guarded(&lines, sizeof lines));
    }
    for (const std::vector<double>& cube : drawCubes(random)) {
      // Entries are read in fours; the fourth number of the last one may be anything.
      constexpr size_t kLast = kUsed - 1, kSize = ((kLast * kSide + kLast) * kSide + kLast) * 3 + 4;
      all[Kind::cube].push_back(guarded(cube.data(), kSize * sizeof(double), random.word() % 8));
      Words words(kernels::kWholeCubeSide * kernels::kWholeCubeSide * kernels::kWholeCubeSide);
      for (uint32_t& word : words) word = random.color();
      all[Kind::wholeCube].push_back(guarded(words.data(), words.size() * 4, random.word() % 4));
      kernels::ChannelTables tables;
      for (auto* table : {&tables.red, &tables.green, &tables.blue}) {
        for (uint8_t& entry : *table) entry = static_cast<uint8_t>(random.word());
      }
      kernels::placeEntries(tables);
      all[Kind::tables].push_back(guarded(&tables, sizeof tables));
    }
    return all;
  }();
  return kTables.at(kind);
}

// Of bases with which many results are at whole numbers: their weights are exact, or err to the same side for
// all pixels, or to another one for each, or so little that only extended precision decides; and of any.
kernels::Tint drawTint(Random& random) {
  const uint32_t kBases[][2] = {
      {0x555555, 0x704214},           {0x555555, 0xFFFFFF}, {0xFF0000, 0xFFFFFF}, {0xFFFFFF, 0x00FF00},
      {0x4C961D, 0xFFFFFF},           {0x4C961D, 0xFFF0D1}, {0x336699, 0xFFCC55}, {0x3355CC, 0xAA0133},
      {0xFF5533, 0xFF66CC},           {0x000000, 0xFFFFFF}, {0x667722, 0x999999}, {0xB4A5C3, 0xE1E1E1},
      {random.word(), random.word()},
  };
  const auto& base = kBases[random.word() % std::size(kBases)];
  return {base[0], base[1], {}};
}

// ---- The comparison ----

// Calls of one kernel: of its definition, then of all sets with the same arguments.
class Trial {
 public:
  explicit Trial(const Kernel& kernel) : kernel_(kernel) {
    // Kernels that touch memory of others end the process.
    describeRunning = [this] { return describe(); };
  }
  ~Trial() { describeRunning = nullptr; }

  // Draws all arguments; the first input may be given.
  void draw(size_t length, const Words& input = {}) {
    static const int kSpreads[] = {0, 1, 2, 5, 29, 30, 127, 254, 255};
    const int spread = kSpreads[random_.word() % std::size(kSpreads)];
    const Words* hints = &input;
    for (size_t i = 0; i < kernel_.parameters.size(); ++i) {
      const auto [kind, size, alignment] = kernel_.parameters[i];
      call_.words[i] = kind == Kind::length   ? length
                       : kind == Kind::top    ? random_.chance(50) * 0xFF000000
                       : kind == Kind::number ? drawNumber(random_, kernel_.name, spread)
                                              : drawColor(*hints);
      if (kind >= Kind::sepia) call_.memory[i] = tablesOf(kind)[random_.word() % tablesOf(kind).size()];
      if (size == 0) continue;
      const size_t count = ((kind == Kind::counts ? 1 : length) * size + 3) / 4;
      const bool isSecond = i > 0 && kernel_.parameters[i - 1].kind == Kind::in;
      operands_[i].words = kind != Kind::in                 ? takeWords(random_, count)
                           : isSecond && random_.chance(30) ? nearly(operands_[i - 1].words)
                           : input.empty()                  ? drawWords(random_, count, spread)
                                                            : input;
      if (kind == Kind::in) hints = &operands_[i].words;
    }
    // Its bits are below the top byte.
    if (kernel_.name == "replaceBits") call_.words[kernel_.placeOf(Kind::color)] &= 0xFFFFFF;
    if (tints_.empty() || random_.chance(30))
      tints_.assign(static_cast<size_t>(1 + sets_.count), drawTint(random_));
  }

  void setLength(uint32_t length) { call_.words[kernel_.placeOf(Kind::length)] = length; }

  // With operands at that place, or each at any. Tints go on with what they know.
  void run(const std::optional<Place>& place = {}) {
    for (size_t i = 0; i < operands_.size(); ++i) {
      operands_[i].removeIt();
      if (i >= kernel_.parameters.size() || kernel_.parameters[i].size == 0) continue;
      const auto [kind, size, alignment] = kernel_.parameters[i];
      if (kernel_.mayAlias && i > 0 && random_.chance(30)) {
        call_.memory[i] = call_.memory[random_.word() % i];
        continue;
      }
      const size_t length = kind == Kind::counts ? 1 : call_.words[kernel_.placeOf(Kind::length)];
      Place at = place.value_or(Place{random_.chance(50), random_.word() % 64});
      at.distance -= at.distance % alignment;
      operands_[i].lay(size * length, at);
      call_.memory[i] = operands_[i].at;
    }
    const Answer expected = runOn(plain::kTable, tints_[0]);
    for (Operand& operand : operands_) operand.expected.assign(operand.from, operand.to);
    for (size_t i = 1; i < tints_.size(); ++i) {
      const Answer got = runOn(*sets_.table[i - 1], tints_[i]);
      ASSERT_EQ(got.number, expected.number) << describe();
      ASSERT_FALSE(got.areUpperHalvesInUse) << describe();
      for (const Operand& operand : operands_) expectAsExpected(operand);
    }
  }

 private:
  // A colour of the contents, or another.
  uint32_t drawColor(const Words& contents) {
    const bool isOfContents = !contents.empty() && random_.chance(70);
    const uint32_t color = isOfContents ? contents[random_.word() % contents.size()] : random_.color();
    return color ^ (random_.chance(50) ? 0 : random_.word() << 24);
  }
  // The same but for top bytes and, perhaps, one bit.
  Words nearly(Words words) {
    for (uint32_t& word : words) word ^= random_.word() << 24;
    if (!words.empty() && random_.chance(50))
      words[random_.word() % words.size()] ^= 1U << random_.between(0, 31);
    return words;
  }

  Answer runOn(const Table& table, kernels::Tint& tint) {
    running_ = table.name;
    for (Operand& operand : operands_) operand.write();
    if (kernel_.has(Kind::tint))
      call_.memory[kernel_.placeOf(Kind::tint)] = reinterpret_cast<uint8_t*>(&tint);
    const Answer answer = kernel_.run(table, call_);
    if (kernel_.has(Kind::counts)) addLanes(call_.memory[kernel_.placeOf(Kind::counts)]);
    return answer;
  }
  // Only sums of lanes are promised.
  static void addLanes(uint8_t* memory) {
    auto& counts = *reinterpret_cast<kernels::ChannelCounts*>(memory);
    for (auto* channel : {&counts.red, &counts.green, &counts.blue}) {
      for (size_t lane = 1; lane < kernels::kCountingLanes; ++lane) {
        for (size_t v = 0; v < 256; ++v) (*channel)[0][v] += std::exchange((*channel)[lane][v], 0);
      }
    }
  }

  void expectAsExpected(const Operand& operand) const {
    if (memcmp(operand.from, operand.expected.data(), operand.expected.size()) == 0) return;
    const auto [got, expected] = std::mismatch(operand.from, operand.to, operand.expected.begin());
    FAIL() << describe() << "operand " << &operand - &operands_[0] << ", byte " << got - operand.at
           << ": got " << int{*got} << ", expected " << int{*expected};
  }

  // Numbers, and where operands lie.
  std::string describe() const {
    std::ostringstream text;
    text << running_ << ' ' << kernel_.name << std::hex;
    for (size_t i = 0; i < kernel_.parameters.size(); ++i)
      text << ", " << call_.words[i] << " at " << reinterpret_cast<uintptr_t>(call_.memory[i]);
    return text.str() + '\n';
  }

  const Kernel& kernel_;
  const kernels::Tables sets_ = kernels::supported();
  const char* running_ = "";
  Random random_{4};
  Call call_ = {};
  std::vector<kernels::Tint> tints_;               // the definition's and those of the sets
  static inline std::array<Operand, 4> operands_;  // by place; trials leave their memory to the next
};

// ---- The tests ----

class EachKernel : public ::testing::TestWithParam<Kernel> {
 protected:
  const Kernel& kernel = GetParam();
  const bool isSlow = kernel.name.find("Cube") != std::string::npos;
  Trial trial{kernel};
};

INSTANTIATE_TEST_SUITE_P(All, EachKernel, ::testing::ValuesIn(allKernels()),
                         [](const auto& parameter) { return parameter.param.name; });

TEST_P(EachKernel, AllLengthsAndAlignments) {
  std::vector<size_t> lengths = {255, 256, 257, 510, 511, 512, 513, 514, 1000, 1001, 1003, 1023, 1025};
  for (size_t length = 0; length <= 200; ++length) lengths.push_back(length);
  for (const size_t length : lengths) {
    for (int i = 0; i < 12; ++i) {
      trial.draw(length);
      trial.run(i < 2 ? std::optional(Place{i == 0, 0}) : std::nullopt);
    }
  }
}

// Of one input, in spans with other parameters each. Of slow definitions, and without optimisation, some
// colours suffice.
TEST_P(EachKernel, AllColors) {
  const size_t input = kernel.placeOf(Kind::in);
  if (input + 1 != kernel.placeOf(Kind::length) || kernel.parameters[input].size != 4) return;
#ifdef __OPTIMIZE__
  const uint32_t step = isSlow ? 5 : 1;
#else
  const uint32_t step = 41;
#endif
  Words colors(4096);
  for (uint32_t part = 0; part < 4096; part += step) {
    for (uint32_t i = 0; i < 4096; ++i) colors[i] = part << 12 | i | i * 77 << 24;
    trial.draw(colors.size(), colors);
    trial.run();
  }
}

// Spans long enough for streaming stores and for sums that wrap; from a word after the begin of a cache line,
// and from within a word. Nothing in them ends a search early.
TEST_P(EachKernel, LongSpans) {
  if (isSlow) return;
  const bool sums = kernel.name.find("sum") == 0;
  for (const auto& [distance, word] : {std::pair(4U, 0x80808080), {1U, 0xFFFFFFFF}}) {
    trial.draw(4099, kernel.has(Kind::out) ? Words() : Words(4099, word));
    trial.setLength(sums ? (1U << 25) / kernel.parameters[0].size + 77 : 4099 * 800);
    trial.run(Place{false, distance});
  }
}

TEST(Kernels, AllSetsOfThisProcessor) {
  const kernels::Tables sets = kernels::supported();
  for (int i = 0; i < sets.count; ++i) std::cout << "instruction set: " << sets.table[i]->name << '\n';
  EXPECT_STREQ(sets.table[0]->name, "sse2");
  EXPECT_EQ(&kernels::best(), sets.table[sets.count - 1]);
}

}  // namespace
