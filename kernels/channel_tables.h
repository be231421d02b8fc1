// Lookup tables for the kernels that map channels.
#pragma once

#include "kernels/kernels.h"

namespace kernels {

// Fills `placed` from the byte tables.
void placeEntries(ChannelTables& tables);

// Finds piecewise linear maps that reproduce every entry of all three tables exactly: kernels compute them
// faster than they look up tables. False if there are none or the search gives up; `lines` is undefined then.
// Takes some microseconds: not worth it for a handful of pixels.
bool findLinearMaps(const ChannelTables& tables, LinearMaps& lines);

}  // namespace kernels
