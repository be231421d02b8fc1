// Timing: the plug-in's own time, and the plain copy that everything is compared with.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

namespace bench {

// Seconds since some moment. `wall` is the fine one, for what takes microseconds. `thread` is what this
// thread had of a processor: on a busy machine the long ones lose nothing by waiting for their turn.
enum class Clock { wall, thread };
void useClock(Clock clock);
double now();

// For host::Settings::serviceWatcher: leaves the time and the memory that the host takes out of account.
void watchService(bool entered);

// What one call of the plug-in took, in seconds.
struct CallTime {
  double plugin = 0;  // without the host's services
  double all = 0;     // with them
};
CallTime timeCall(const std::function<void()>& call);

// Memory that is there: every page was touched.
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

// A plain copy of some bytes to memory of its own, by `rep movsb`.
class PlainCopy {
 public:
  PlainCopy(const void* from, size_t bytes);
  double time();  // seconds for one

 private:
  const void* from_;
  Memory to_;
};

// How much is measured.
struct Effort {
  int fewest, most;  // measurements
  double seconds;    // until then, once there are the fewest
  Clock clock = Clock::thread;
};

struct Medians {
  double seconds = 0;            // of what was measured
  std::vector<double> inCopies;  // as multiples of the copies' medians
};
// Measures by turns: one time of `once`, one of each copy.
Medians measure(const Effort& effort, const std::function<double()>& once, std::vector<PlainCopy*> copies);

}  // namespace bench
