#include "bench/machine.h"

#include <sched.h>
#include <sys/prctl.h>

#include <algorithm>
#include <ctime>
#include <fstream>
#include <sstream>

namespace bench {
namespace {

unsigned ownProcessor = 0;

}  // namespace

std::string machineName() {
  std::ifstream info("/proc/cpuinfo");
  for (std::string line; std::getline(info, line);) {
    if (line.rfind("model name", 0) == 0) return line.substr(line.find(':') + 2);
  }
  return "unknown machine";
}

std::string compilerName() {
#if defined(__clang__)
  return "Clang " __clang_version__;
#else
  return "GCC " __VERSION__;
#endif
}

std::string today() {
  char text[16];
  const time_t now = std::time(nullptr);
  std::strftime(text, sizeof text, "%Y-%m-%d", std::localtime(&now));
  return text;
}

void steady() {
  ownProcessor = static_cast<unsigned>(std::max(sched_getcpu(), 0));
  cpu_set_t one;
  CPU_ZERO(&one);
  CPU_SET(ownProcessor, &one);
  sched_setaffinity(0, sizeof one, &one);
  prctl(PR_SET_THP_DISABLE, 1, 0, 0, 0);
}

double Neighbours::busy() const {
  const Spent after = spent();
  return after.all > before_.all ? (after.busy - before_.busy) / (after.all - before_.all) : 0;
}

// Lines "cpu1 user nice system idle iowait …" in ticks.
Neighbours::Spent Neighbours::spent() {
  Spent sum;
  std::ifstream stat("/proc/stat");
  for (std::string line; std::getline(stat, line) && line.rfind("cpu", 0) == 0;) {
    std::istringstream fields(line);
    std::string name;
    fields >> name;
    if (name == "cpu" || name == "cpu" + std::to_string(ownProcessor)) continue;
    double ticks = 0;
    for (int i = 0; fields >> ticks; ++i) {
      const bool isIdle = i == 3 || i == 4;
      sum.all += ticks;
      if (!isIdle) sum.busy += ticks;
    }
  }
  return sum;
}

}  // namespace bench
