// Operands and parameters of kernels.

#include "tests/kernel_cases.h"

#include <cmath>

#include "kernels/channel_tables.h"
#include "tests/plain_kernels.h"

namespace {

using kernels::Pixel;
using kernels::Table;

int32_t anyNumber(Random& random, const Hint&) { return static_cast<int32_t>(random.word()); }

// `call` takes the kernel, Operands and Parameters.
template <typename Kernel, typename Call>
Case makeCase(const char* name, Kernel* Table::*field, const Shape& shape, const Call& call,
              int32_t (*number)(Random&, const Hint&) = anyNumber) {
  const auto place = [](const auto& part) { return reinterpret_cast<const char*>(&part); };
  Case c;
  c.name = name;
  c.slot = static_cast<size_t>(place(plain::kTable.*field) - place(plain::kTable)) / sizeof(void*);
  c.shape = shape;
  c.number = number;
  c.run = [=](const Table& table, const Operands& o, Parameters& p) -> uint64_t {
    if constexpr (std::is_void_v<decltype(call(table.*field, o, p))>) {
      call(table.*field, o, p);
      return 0;
    } else {
      return call(table.*field, o, p);
    }
  };
  return c;
}

// Numbers around the one that decides.
int32_t tolerance(Random& random, const Hint& hint) {
  return random.chance(80) ? std::clamp(hint.spread + random.between(-1, 1), 0, 255) : random.between(0, 255);
}
int32_t threshold(Random& random, const Hint& hint) {
  return random.chance(10) ? -1 : tolerance(random, hint);
}
int32_t row(Random& random, const Hint&) {
  return random.chance(10) ? (random.chance(50) ? INT32_MIN : INT32_MAX) : random.between(-10, 26);
}
int32_t saturation(Random& random, const Hint&) {
  static const int32_t kEdges[] = {0,       1,       127,       254,           255,           256,
                                   510,     0x7FFE,  0x7FFF,    0x8000,        0x8001,        0x10000,
                                   8421504, 8421505, INT32_MAX, INT32_MAX - 1, 255 * 8421504, 0x55555555};
  const int32_t any = static_cast<int32_t>(random.word() >> random.between(1, 31));
  const int32_t factor = random.chance(50) ? any : kEdges[random.word() % std::size(kEdges)];
  return random.chance(5) ? INT32_MIN : random.chance(50) ? -factor : factor;
}

// Starts with the counts in `out`, and leaves there the sums over the lanes.
void histogram(kernels::SpanHistogram* kernel, const Operands& o, Parameters&) {
  static kernels::ChannelCounts counts;
  uint32_t(*const channels[])[256] = {counts.red, counts.green, counts.blue};
  Pixel* out = o.pixelsOut();
  for (size_t c = 0; c < 3; ++c) {
    for (size_t v = 0; v < 256; ++v) {
      for (size_t lane = 0; lane < kernels::kCountingLanes; ++lane) channels[c][lane][v] = 0;
      channels[c][v % kernels::kCountingLanes][v] = out[c * 256 + v];
    }
  }
  kernel(o.pixels(0), o.count, counts);
  for (size_t c = 0; c < 3; ++c) {
    for (size_t v = 0; v < 256; ++v) {
      out[c * 256 + v] = 0;
      for (size_t lane = 0; lane < kernels::kCountingLanes; ++lane) out[c * 256 + v] += channels[c][lane][v];
    }
  }
}

constexpr Shape kMap = {{4}, 4}, kTest = {{4}};
constexpr Shape kMapInPlace[] = {
    {{4}, 4, false, true}, {{4, 4}, 4, false, true}, {{4, 4, 4}, 4, false, true}};

// A case for each type of kernel.
using O = const Operands&;
using P = Parameters&;
Case caseOf(const char* name, kernels::SpanMap* Table::*field) {
  return makeCase(name, field, kMapInPlace[0],
                  [](auto f, O o, P p) { f(o.pixelsOut(), o.pixels(0), o.count, p.top); });
}
Case caseOf(const char* name, kernels::SpanMap2* Table::*field) {
  return makeCase(name, field, kMapInPlace[1],
                  [](auto f, O o, P p) { f(o.pixelsOut(), o.pixels(0), o.pixels(1), o.count, p.top); });
}
Case caseOf(const char* name, kernels::SpanMap3* Table::*field) {
  return makeCase(name, field, kMapInPlace[2], [](auto f, O o, P p) {
    f(o.pixelsOut(), o.pixels(0), o.pixels(1), o.pixels(2), o.count, p.top);
  });
}
Case caseOf(const char* name, kernels::SpanReplace* Table::*field) {
  return makeCase(name, field, kMapInPlace[1], [](auto f, O o, P p) {
    f(o.pixelsOut(), o.pixels(0), o.pixels(1), o.count, p.top, p.words[0] & 0xFFFFFF);
  });
}
Case caseOf(const char* name, kernels::SpanMerge* Table::*field) {
  return makeCase(name, field, kMap, [](auto f, O o, P) { f(o.pixelsOut(), o.pixels(0), o.count); });
}
Case caseOf(const char* name, kernels::SpanUnpack* Table::*field) {
  return makeCase(name, field, {{3}, 4}, [](auto f, O o, P p) { f(o.pixelsOut(), o.in[0], o.count, p.top); });
}
Case caseOf(const char* name, kernels::SpanPack* Table::*field) {
  return makeCase(name, field, {{4}, 3}, [](auto f, O o, P) { f(o.out, o.pixels(0), o.count); });
}
Case caseOf(const char* name, kernels::SpanFill* Table::*field) {
  return makeCase(name, field, {{}, 4}, [](auto f, O o, P p) { f(o.pixelsOut(), o.count, p.words[0]); });
}
Case caseOf(const char* name, kernels::SpanLookup* Table::*field) {
  return makeCase(name, field, kMap,
                  [](auto f, O o, P p) { f(o.pixelsOut(), o.pixels(0), o.count, p.top, *p.tables); });
}
Case caseOf(const char* name, kernels::SpanLinear* Table::*field) {
  return makeCase(name, field, kMap,
                  [](auto f, O o, P p) { f(o.pixelsOut(), o.pixels(0), o.count, p.top, p.lines); });
}
// SpanFind is of the same type.
Case caseOf(const char* name, kernels::SpanCount* Table::*field) {
  return makeCase(name, field, kTest, [](auto f, O o, P p) { return f(o.pixels(0), o.count, p.words[0]); });
}
Case caseOf(const char* name, kernels::SpanHistogram* Table::*field) {
  return makeCase(name, field, {{4}, 3 * 256 * 4, true}, histogram);
}
Case caseOf(const char* name, kernels::SpanIsColor* Table::*field) {
  return makeCase(name, field, kTest, [](auto f, O o, P p) { return f(o.pixels(0), o.count, p.words[0]); });
}
Case caseOf(const char* name, kernels::SpanIsGray* Table::*field) {
  return makeCase(
      name, field, kTest, [](auto f, O o, P p) { return f(o.pixels(0), o.count, p.number); }, tolerance);
}
Case caseOf(const char* name, kernels::SpanCountBeyond* Table::*field) {
  return makeCase(
      name, field, kTest, [](auto f, O o, P p) { return f(o.pixels(0), o.count, p.number); }, threshold);
}
Case caseOf(const char* name, kernels::SpanCompare* Table::*field) {
  return makeCase(name, field, {{4, 4}}, [](auto f, O o, P) { return f(o.pixels(0), o.pixels(1), o.count); });
}
Case caseOf(const char* name, kernels::SpanMark* Table::*field) {
  return makeCase(name, field, {{4}, 1},
                  [](auto f, O o, P p) { f(o.out, o.pixels(0), o.count, static_cast<uint8_t>(p.words[0])); });
}
Case caseOf(const char* name, kernels::SpanDraw* Table::*field) {
  return makeCase(name, field, {{1}, 4}, [](auto f, O o, P p) {
    f(o.pixelsOut(), o.in[0], o.count, static_cast<uint8_t>(p.words[0]), p.top);
  });
}
Case caseOf(const char* name, kernels::SpanReplaceColor* Table::*field) {
  return makeCase(name, field, kMap, [](auto f, O o, P p) {
    f(o.pixelsOut(), o.pixels(0), o.count, p.top, p.words[0], p.words[1]);
  });
}
Case caseOf(const char* name, kernels::SpanExtractColor* Table::*field) {
  return makeCase(name, field, kMap, [](auto f, O o, P p) {
    f(o.pixelsOut(), o.pixels(0), o.count, p.top, p.words[0], p.words[1], p.words[2]);
  });
}
Case caseOf(const char* name, kernels::SpanSaturate* Table::*field) {
  return makeCase(
      name, field, kMap, [](auto f, O o, P p) { f(o.pixelsOut(), o.pixels(0), o.count, p.top, p.number); },
      saturation);
}
Case caseOf(const char* name, kernels::SpanTint* Table::*field) {
  return makeCase(name, field, kMap,
                  [](auto f, O o, P p) { f(o.pixelsOut(), o.pixels(0), o.count, p.top, p.tint); });
}
Case caseOf(const char* name, kernels::SpanCube* Table::*field) {
  return makeCase(name, field, kMap,
                  [](auto f, O o, P p) { f(o.pixelsOut(), o.pixels(0), o.count, p.top, p.cube); });
}
Case caseOf(const char* name, kernels::SpanWholeCube* Table::*field) {
  return makeCase(name, field, kMap,
                  [](auto f, O o, P p) { f(o.pixelsOut(), o.pixels(0), o.count, p.top, p.wholeCube); });
}
Case caseOf(const char* name, kernels::SpanSepia* Table::*field) {
  return makeCase(name, field, kMap,
                  [](auto f, O o, P p) { f(o.pixelsOut(), o.pixels(0), o.count, p.top, p.sepia); });
}
Case caseOf(const char* name, kernels::SampleSums* Table::*field) {
  const size_t sampleSize = std::string(name).find("16") == std::string::npos ? 1 : 2;
  return makeCase(name, field, {{sampleSize}}, [](auto f, O o, P) {
    const kernels::Excursions sums = f(o.in[0], o.count);
    return uint64_t{sums.negative} << 32 | sums.positive;
  });
}
Case caseOf(const char* name, kernels::SpanBars* Table::*field) {
  return makeCase(
      name, field, {{4, 4}, 4, false, false, true},
      [](auto f, O o, P p) {
        f(o.pixelsOut(), o.numbers(0), o.numbers(1), o.count, p.number, p.words[0], p.words[1]);
      },
      row);
}

// Lookup tables of all kinds, each at the end of its guarded memory: bytes past those that may be read can't
// be touched.
class Lookups {
 public:
  Lookups() {
    for (int i = 0; i < 8; ++i) addTables();
    for (const size_t shift : {0u, 0u, 4u, 8u, 1u, 3u}) {
      addCube(shift);
      addWholeCube(shift);
    }
  }
  std::vector<const kernels::ChannelTables*> tables;
  std::vector<const double*> cubes;
  std::vector<const uint8_t*> wholeCubes;  // of Pixel

 private:
  uint8_t* memory(size_t bytes, size_t shift) {
    return memory_.emplace_back(bytes + shift).last(bytes + shift);
  }

  void addTables() {
    uint8_t* bytes = memory(sizeof(kernels::ChannelTables), 0);
    auto* drawn = new (bytes) kernels::ChannelTables;
    for (uint8_t(*table)[256] : {&drawn->red, &drawn->green, &drawn->blue}) {
      for (uint8_t& entry : *table) entry = static_cast<uint8_t>(random_.word());
    }
    kernels::placeEntries(*drawn);
    tables.push_back(drawn);
  }
  // The identity; whole numbers; any numbers near the range; others with many that are hard to compute with.
  double cubeValue(size_t identity) {
    static const double kHard[] = {std::nan(""), HUGE_VAL, -HUGE_VAL, 1e308, -1e308,
                                   5e-324,       -0.0,     0.1,       255,   255.5,
                                   256,          -1e-9,    4e9,       -4e9,  std::nextafter(255, 0)};
    switch (cubes.size()) {
      case 0:
        return static_cast<double>(17 * identity);
      case 1:
        return random_.between(0, 255);
      case 2:
      case 3:
        return random_.word() * (400 / 4294967296.0) - 50;
      default:
        return random_.chance(cubes.size() == 4 ? 5 : 50) ? kHard[random_.word() % std::size(kHard)]
                                                          : random_.between(-300, 3000) / 10.0;
    }
  }
  void addCube(size_t shift) {
    constexpr size_t kSide = kernels::kCubeSide, kUsed = 16, kLast = kUsed - 1;
    // Entries are read in fours; the fourth double of the last one may be anything.
    const size_t size = ((plain::cubeIndex(kLast, kLast, kLast, kSide) + 1) * 3 + 1) * sizeof(double);
    uint8_t* bytes = memory(size, shift);
    memset(bytes + size - sizeof(double), 0xFF, sizeof(double));
    for (size_t r = 0; r < kUsed; ++r) {
      for (size_t g = 0; g < kSide; ++g) {
        for (size_t b = 0; b < kSide; ++b) {
          if (r == kLast && (g > kLast || (g == kLast && b > kLast))) continue;  // behind
          for (size_t x = 0; x < 3; ++x) {
            const size_t indices[] = {r, g, b};
            // Entries that are not to be used are NaN, which shows even where the weight is 0.
            const double value = g > kLast || b > kLast ? std::nan("") : cubeValue(indices[x]);
            memcpy(bytes + (((r * kSide + g) * kSide + b) * 3 + x) * sizeof value, &value, sizeof value);
          }
        }
      }
    }
    cubes.push_back(reinterpret_cast<const double*>(bytes));
  }
  void addWholeCube(size_t shift) {
    constexpr uint32_t kSide = kernels::kWholeCubeSide;
    Pixel* words = reinterpret_cast<Pixel*>(memory(kSide * kSide * kSide * 4, shift));
    for (uint32_t i = 0; i < kSide * kSide * kSide; ++i) {
      const uint32_t identity = (i / kSide / kSide) << 16 | (i / kSide % kSide) << 8 | i % kSide;
      words[i] = wholeCubes.empty() ? identity * 17 : random_.color();
    }
    wholeCubes.push_back(reinterpret_cast<const uint8_t*>(words));
  }

  Random random_{2};
  std::deque<GuardedMemory> memory_;
};

const Lookups& lookups() {
  static const Lookups all;
  return all;
}

template <typename T, typename Index>
const T& chosen(const std::vector<T>& from, Index index) {
  return from[static_cast<size_t>(index) % from.size()];
}

// Words to take spans from: the colours of Random, with top bytes.
const std::vector<uint32_t>& pool() {
  static const std::vector<uint32_t> words = [] {
    std::vector<uint32_t> all;
    Random random(3);
    for (int part = 0; part < 16; ++part) {
      for (const Rgb color : random.pixels(64, 64).colors) {
        all.push_back(color | (part % 4 == 0 ? 0 : part % 4 == 1 ? 0xFF000000 : random.word() << 24));
      }
    }
    return all;
  }();
  return words;
}

Bytes bytesOf(const std::vector<uint32_t>& words, size_t size) {
  const auto* bytes = reinterpret_cast<const uint8_t*>(words.data());
  return {bytes, bytes + size};
}

}  // namespace

const std::deque<Case>& allCases() {
#define ZVR_CASE(type, kernel) caseOf(#kernel, &Table::kernel),
  static const std::deque<Case> cases = {ZVR_KERNELS(ZVR_CASE)};
#undef ZVR_CASE
  return cases;
}

Parameters drawParameters(Random& random, const Case& c, const Hint& hint, uint32_t variant) {
  const auto color = [&] {
    static const uint32_t kEdges[] = {0x555555, 0xFFFFFF, 0x336633, 0x110F05, 0x000000, 0x704214};
    return (random.chance(50) ? random.color() : kEdges[random.word() % std::size(kEdges)]) | random.word()
                                                                                                  << 24;
  };
  Parameters p;
  p.top = random.chance(50) ? 0 : 0xFF000000;
  for (uint32_t& word : p.words) word = color();
  if (random.chance(70)) p.words[0] = hint.word ^ (random.chance(50) ? 0 : random.word() << 24);
  p.number = c.number(random, hint);
  p.tint.gray = color();
  p.tint.sepia = color();
  if (variant == 0) p.tint = {0x555555, 0xFFFFFF, {}};  // very many results are near whole numbers
  p.sepia = {306, 601, 116, 40, 20, static_cast<uint32_t>(-30)};
  if (random.chance(70)) {
    for (uint32_t* part : {&p.sepia.redWeight, &p.sepia.greenWeight, &p.sepia.blueWeight, &p.sepia.red,
                           &p.sepia.green, &p.sepia.blue}) {
      const uint32_t any = random.word() >> random.between(0, 31);
      *part = random.chance(50) ? any : 0 - any;
    }
  }
  p.lines.shift = static_cast<uint32_t>(random.between(1, 8));
  for (kernels::LinearMap* line : {&p.lines.red, &p.lines.green, &p.lines.blue}) {
    const auto any = [&](int least, int most) {
      return random.chance(20) ? (random.chance(50) ? least : most) : random.between(least, most);
    };
    *line = {random.chance(50), static_cast<uint8_t>(any(0, 255)), static_cast<uint16_t>(any(0, 65535)),
             any(-65535, 65535) / (random.chance(50) ? 1 : 256)};
  }
  p.tables = chosen(lookups().tables, variant);
  p.cube = chosen(lookups().cubes, variant);
  p.wholeCube = reinterpret_cast<const Pixel*>(chosen(lookups().wholeCubes, variant));
  return p;
}

Bytes drawContents(Random& random, size_t size, int spread) {
  if (size == 0) return {};
  std::vector<uint32_t> words((size + 3) / 4);
  const size_t start = random.word() % (pool().size() - words.size());
  std::copy_n(pool().begin() + static_cast<ptrdiff_t>(start), words.size(), words.begin());
  const int kind = random.between(0, 5);
  if (kind == 0) {  // nearly gray
    for (uint32_t& word : words) {
      const auto gray = static_cast<int>(word % (256 - static_cast<uint32_t>(spread)));
      word = rgb(gray + random.between(0, spread), gray + random.between(0, 1) * spread, gray) | word << 24;
    }
  } else if (kind <= 2) {  // one word, with any top bytes, and not at all places
    static const uint32_t kPatterns[] = {0x80808080, 0x7F7F7F7F, 0x80008000, 0x7FFF7FFF,
                                         0x00000000, 0xFFFFFFFF, 0xFF000000, 0x00FFFFFF};
    const uint32_t one = random.chance(50) ? kPatterns[random.word() % std::size(kPatterns)] : words[0];
    const uint32_t differing = kind == 1 ? 0 : 0xFF000000;
    for (uint32_t& word : words) word = one ^ (word & differing);
    for (int odd = random.between(0, 2); odd > 0; --odd)
      words[random.word() % words.size()] ^= 1U << random.between(0, 31);
  }
  return bytesOf(words, size);
}

Bytes drawNumbers(Random& random, size_t size) {
  std::vector<uint32_t> words(size / 4);
  for (uint32_t& word : words) {
    word = static_cast<uint32_t>(random.between(-10, 26));
    if (random.chance(10)) word = random.chance(50) ? 0x80000000 : 0x7FFFFFFF;
  }
  return bytesOf(words, size);
}
