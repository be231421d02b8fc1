// Maps pictures through a lookup table per channel.
#pragma once

#include "kernels/channel_tables.h"
#include "picture/rows.h"

// Writes the source, with each channel mapped through its byte table, to the top left part of `result`. Fills
// in `tables.placed`.
void mapThroughTables(PictureEditor& result, kernels::ChannelTables& tables, PictureReader& source);
