#include "tests/chosen_kernels.h"

#include "kernels/kernels.h"

namespace {

const kernels::Tables gSets = kernels::supported();
ChosenKernels gChosen = {gSets.count, gSets.count - 1};

}  // namespace

__attribute__((visibility("default"))) ChosenKernels* chosenKernels() { return &gChosen; }

// The linker's name for what the plug-in calls.
extern "C" const kernels::Table& __wrap__ZN7kernels4bestEv();
const kernels::Table& __wrap__ZN7kernels4bestEv() { return *gSets.table[gChosen.index]; }
