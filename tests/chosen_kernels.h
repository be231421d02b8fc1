// The instruction set of the plug-in under test: its calls of kernels::best() are led here by the linker.
#pragma once

struct ChosenKernels {
  int count;  // of sets that this processor has
  int index;  // of the one that is used, at first the best
};

// The name under which the library hands out its record.
extern "C" ChosenKernels* chosenKernels();
