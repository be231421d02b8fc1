// 3D tables for the kernel that maps colours.
#pragma once

#include "kernels/kernels.h"

namespace kernels {

// Prepares `cube` for a table, as kernels/kernels.h describes it, that must stay until the cube is used no
// more. Tables with entries far beyond the range of colours, infinite or not numbers get no nodes. Takes some
// 20 microseconds: not worth it for small pictures.
void prepareCube(Cube& cube, const double* entries);

}  // namespace kernels
