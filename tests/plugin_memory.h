// The heap of the plug-in under test. A second library is made of the plug-in's own objects whose calls of
// calloc and free the linker leads here: the released library has nothing of this.
#pragma once

struct PluginMemory {
  int uses;    // allocations asked for
  int failAt;  // the one that is refused, counted by `uses`; 0 for none
  int live;    // blocks that the plug-in holds, or gave away: frees of others are not seen here
};

// The library exports it under this name.
extern "C" __attribute__((visibility("default"))) PluginMemory pluginMemory;
