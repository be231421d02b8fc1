// Lookup tables for the kernels that map channels.
#pragma once

#include "kernels/kernels.h"

namespace kernels {

// Sets `placed` from the tables of bytes.
void placeEntries(ChannelTables& tables);

// Finds piecewise linear maps that give every entry of all three tables exactly: kernels compute them faster
// than they look up tables. False when there are none or they are hard to find; `lines` is undefined then.
// Takes some microseconds: not worth it for a handful of pixels.
bool findLinearMaps(const ChannelTables& tables, LinearMaps& lines);

}  // namespace kernels
