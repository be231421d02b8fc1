// The machine that is measured, and how steady it is.
#pragma once

#include <string>

namespace bench {

// Its name, the compiler's, and the date: "AMD EPYC", "GCC 12.2.0", "2026-11-22".
std::string machineName();
std::string compilerName();
std::string today();

// Stays on one processor from now on, and gives all memory small pages: huge ones for some buffers would
// favour these.
void steady();

// Watches the other processors, which may be the same core or share its way to memory.
class Neighbours {
 public:
  Neighbours() : before_(spent()) {}
  // The share of the time since construction that they were busy, 0 to 1; 0 if the system doesn't tell.
  double busy() const;

 private:
  struct Spent {
    double busy = 0, all = 0;
  };
  static Spent spent();

  Spent before_;
};

}  // namespace bench
