// What each kernel source defines for the instruction set that it is being compiled for. Kernel sources
// include no standard header with inline functions: the linker might keep a copy compiled for a newer
// processor for everybody.
#pragma once

#include "kernels/kernels.h"

namespace kernels::ZVR_INSTRUCTION_SET {

extern const Table table;

SpanUnpack unpackRGB24;
SpanPack packRGB24;
SpanMap invert, invertGray;
SpanMap grayFromTop8, grayFromTop7;
SpanFill fill;
SpanMerge redIntoBlue, invertedRedIntoBlue;
SpanMap2 brighter;
SpanMap3 combineChannels;
SpanReplace replaceBits;
SpanLookup mapThroughTables;
SpanLines mapAlongLines;
SpanCount countColor;
SpanHistogram countChannels;
SpanTest isAllColor, isAllGray;
SpanCountBeyond countColorful;
SpanFind findColor;
SpanCompare areEqual;
SpanMark markColored;
SpanDraw blackWhere;
SpanReplaceColor replaceColor;
SpanExtractColor extractColor;
SpanSaturate saturate;
SpanTint tint;
SpanCube mapThroughCube;
SpanWholeCube mapThroughWholeCube;
SpanTone tone;
SampleSums sumInt8, sumUInt8, sumInt16, sumUInt16;
SpanBars bars;

}  // namespace kernels::ZVR_INSTRUCTION_SET
