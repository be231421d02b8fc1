#include "bench/clock.h"

#include <sys/mman.h>
#include <x86intrin.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <ctime>
#include <new>

#include "bench/allocations.h"
#include "kernels/kernels.h"

namespace bench {
namespace {

Clock usedClock = Clock::wall;
double enteredAt = 0, inServices = 0;
int visits = 0;
int depth = 0;  // services may call the plug-in, which may call services

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// The duration of a tick of the time-stamp counter, measured with the system's clock.
double secondsPerTick() {
  static const double measured = [] {
    using SystemClock = std::chrono::steady_clock;
    const auto from = SystemClock::now();
    const uint64_t ticksFrom = __rdtsc();
    std::chrono::duration<double> passed{};
    while (passed.count() < 0.02) passed = SystemClock::now() - from;
    return passed.count() / static_cast<double>(__rdtsc() - ticksFrom);
  }();
  return measured;
}

}  // namespace

void useClock(Clock clock) { usedClock = clock; }

double now() {
  if (usedClock == Clock::wall) return static_cast<double>(__rdtsc()) * secondsPerTick();
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

void watchService(bool entered) {
  if (entered && depth++ == 0) {
    ++visits;
    pauseCounting(true);
    enteredAt = now();
  } else if (!entered && --depth == 0) {
    inServices += now() - enteredAt;
    pauseCounting(false);
  }
}

namespace {

// The time that watching one service call adds to the plug-in's.
double measureWatchOverhead() {
  constexpr int kVisits = 16;
  std::vector<double> times;
  for (int i = 0; i < 200; ++i) {
    inServices = 0;
    const double from = now();
    for (int k = 0; k < kVisits; ++k) {
      watchService(true);
      watchService(false);
    }
    times.push_back((now() - from - inServices) / kVisits);
  }
  return median(times);
}

double watchOverhead(Clock clock) {
  if (clock == Clock::wall) {
    static const double wall = measureWatchOverhead();
    return wall;
  }
  static const double thread = measureWatchOverhead();
  return thread;
}

}  // namespace

CallTime timeCall(const std::function<void()>& call) {
  const double overhead = watchOverhead(usedClock);
  clearSpareBlocks();
  inServices = 0;
  visits = 0;
  const double from = now();
  call();
  const double all = now() - from;
  const double ofPlugin = all - inServices - visits * overhead;
  return {std::max(ofPlugin, 0.0), all};
}

Memory::Memory(size_t bytes) : size_(bytes) {
  void* mapped =
      mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_POPULATE, -1, 0);
  if (mapped == MAP_FAILED) throw std::bad_alloc();
  bytes_ = static_cast<uint8_t*>(mapped);
  std::memset(bytes_, 1, bytes);
}

Memory::~Memory() { munmap(bytes_, size_); }

namespace {

using Copy = void(uint8_t* to, const uint8_t* from, size_t size);

void copyByString(uint8_t* to, const uint8_t* from, size_t size) {
  asm volatile("rep movsb" : "+D"(to), "+S"(from), "+c"(size) : : "memory");
}

void copyByLibrary(uint8_t* to, const uint8_t* from, size_t size) { std::memcpy(to, from, size); }

// With streaming stores of this vector type. Precondition: `to` begins a cache line.
#define ZVR_STREAMING_COPY(Vector, load, stream)                                                  \
  for (; size >= 64; size -= 64, from += 64, to += 64) {                                          \
    _mm_prefetch(reinterpret_cast<const char*>(from) + kAhead, _MM_HINT_T0);                      \
    for (size_t i = 0; i < 64; i += sizeof(Vector))                                               \
      stream(reinterpret_cast<Vector*>(to + i), load(reinterpret_cast<const Vector*>(from + i))); \
  }                                                                                               \
  _mm_sfence();                                                                                   \
  std::memcpy(to, from, size)

constexpr size_t kAhead = 512;
void copyByVectors16(uint8_t* to, const uint8_t* from, size_t size) {
  ZVR_STREAMING_COPY(__m128i, _mm_loadu_si128, _mm_stream_si128);
}
__attribute__((target("avx2"))) void copyByVectors32(uint8_t* to, const uint8_t* from, size_t size) {
  ZVR_STREAMING_COPY(__m256i, _mm256_loadu_si256, _mm256_stream_si256);
}

double secondsOf(Copy* copy, const Memory& to, const Memory& from) {
  const double start = now();
  copy(to.get(), from.get(), to.size());
  return now() - start;
}

}  // namespace

PlainCopy::PlainCopy(size_t bytes) {
  const bool isLarge = kernels::shouldStream(static_cast<int64_t>(bytes / sizeof(kernels::Pixel)));
  for (int i = isLarge ? 3 : 1; i > 0; --i) pairs_.push_back(std::make_unique<Pair>(bytes));
}

double PlainCopy::time() {
  static const bool has32 = __builtin_cpu_supports("avx2");
  double best = HUGE_VAL;
  size_t next = 0;
  for (Copy* copy : {copyByString, copyByLibrary, has32 ? copyByVectors32 : copyByVectors16}) {
    const Pair& pair = *pairs_[next++ % pairs_.size()];
    best = std::min(best, secondsOf(copy, pair.to, pair.from));
  }
  return best;
}

Medians measure(const Effort& effort, const std::function<double()>& once, PlainCopy* copy) {
  std::vector<double> times, ratios;
  useClock(effort.clock);
  const double start = now();
  for (int i = 0; i < effort.maxRuns && (i < effort.minRuns || now() - start < effort.seconds); ++i) {
    const double unit = copy ? copy->time() : 0;
    times.push_back(once());
    ratios.push_back(times.back() / unit);
  }
  return {median(times), median(ratios)};
}

}  // namespace bench
