#include "bench/clock.h"

#include <sys/mman.h>
#include <x86intrin.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <ctime>
#include <new>

#include "bench/allocations.h"

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

PlainCopy::PlainCopy(const void* from, size_t bytes) : from_(from), to_(bytes) {}

double PlainCopy::time() {
  void* to = to_.get();
  const void* from = from_;
  size_t left = to_.size();
  const double start = now();
  asm volatile("rep movsb" : "+D"(to), "+S"(from), "+c"(left) : : "memory");
  return now() - start;
}

Medians measure(const Effort& effort, const std::function<double()>& once, std::vector<PlainCopy*> copies) {
  std::vector<double> times;
  std::vector<std::vector<double>> copyTimes(copies.size());
  useClock(effort.clock);
  const double start = now();
  for (int i = 0; i < effort.maxRuns && (i < effort.minRuns || now() - start < effort.seconds); ++i) {
    for (size_t k = 0; k < copies.size(); ++k) copyTimes[k].push_back(copies[k]->time());
    times.push_back(once());
  }
  Medians medians{median(times), {}};
  for (const auto& values : copyTimes) medians.inCopies.push_back(medians.seconds / median(values));
  return medians;
}

}  // namespace bench
