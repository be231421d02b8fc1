// Timing: the plug-in's own time, and the plain copy that serves as reference.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace bench {

// Seconds since an arbitrary point. `wall` has the finer resolution, for measurements of microseconds.
// `thread` is this thread's CPU time: on a busy machine it excludes waiting for a processor.
enum class Clock { wall, thread };
void useClock(Clock clock);
double now();

// For host::Settings::serviceWatcher: excludes the time and memory that host services take.
void watchService(bool entered);

// The duration of one call of the plug-in, in seconds.
struct CallTime {
  double plugin = 0;  // without the host's services
  double all = 0;     // with them
};
CallTime timeCall(const std::function<void()>& call);

// Memory whose pages are all mapped.
class Memory {
 public:
  explicit Memory(size_t bytes);
  Memory(const Memory&) = delete;
  Memory& operator=(const Memory&) = delete;
  ~Memory();
  uint8_t* get() const { return bytes_; }
  size_t size() const { return size_; }

 private:
  size_t size_;
  uint8_t* bytes_;
};

// The unit of speed: a plain copy of some bytes between memory of its own.
class PlainCopy {
 public:
  explicit PlainCopy(size_t bytes);
  // Copies by `rep movsb`, by the C library's memcpy, and by streaming stores with prefetch; returns the
  // seconds of the fastest.
  double time();

 private:
  struct Pair {
    Memory from, to;
    explicit Pair(size_t bytes) : from(bytes), to(bytes) {}
  };
  // If large, one for each way of copying: memory that another has just copied would partly lie in the
  // caches, unlike a call's. Small pictures do lie there, and so do their copies.
  std::vector<std::unique_ptr<Pair>> pairs_;
};

// How often to measure.
struct Effort {
  int minRuns, maxRuns;
  double seconds;  // stops after this long, once minRuns are done
  Clock clock = Clock::thread;
};

struct Medians {
  double seconds = 0;   // of a run
  double inCopies = 0;  // of the ratios between a run and the copy just before it
};
// Alternates between `copy` (or nothing, if null) and `once`, which returns its seconds. Machines change
// their speed from one moment to the next: only neighbours in time are compared.
Medians measure(const Effort& effort, const std::function<double()>& once, PlainCopy* copy);

}  // namespace bench
