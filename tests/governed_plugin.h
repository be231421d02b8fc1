// A second library, made of the plug-in's own objects, whose heap, instruction set and stores tests govern:
// its calls of calloc, free, kernels::best() and kernels::shouldStream() the linker leads here. The released
// library has nothing of this.
#pragma once

struct GovernedPlugin {
  int uses;      // allocations asked for
  int failAt;    // the one that is refused, counted by `uses`; 0 for none
  int live;      // blocks that the plug-in holds, or gave away: frees of others are not seen here
  int sets;      // instruction sets that this processor has
  int set;       // the one that is used, at first the best
  bool streams;  // whether results are written past the caches
};

// The library exports it under this name.
extern "C" __attribute__((visibility("default"))) GovernedPlugin governedPlugin;
