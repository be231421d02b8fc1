// Pictures through a lookup table for each channel.
#pragma once

#include "kernels/channel_tables.h"
#include "picture/rows.h"

// Writes the top left part of `result`, of the source's size, with each channel of the source looked up in
// its table of bytes.
void mapThroughTables(PictureEditor& result, kernels::ChannelTables& tables, PictureReader& source);
