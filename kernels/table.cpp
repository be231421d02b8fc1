// The table of one instruction set.

#include "kernels/families/families.h"

#define ZVR_NAME_OF(set) #set
#define ZVR_NAME(set) ZVR_NAME_OF(set)

namespace kernels::ZVR_INSTRUCTION_SET {
namespace {

constexpr Table makeTable() {
  Table t{};
  t.name = ZVR_NAME(ZVR_INSTRUCTION_SET);
  t.unpackRGB24 = unpackRGB24;
  t.packRGB24 = packRGB24;
  t.invert = invert;
  t.invertGray = invertGray;
  t.grayFromTop8 = grayFromTop8;
  t.grayFromTop7 = grayFromTop7;
  t.fill = fill;
  t.redIntoBlue = redIntoBlue;
  t.invertedRedIntoBlue = invertedRedIntoBlue;
  t.brighter = brighter;
  t.combineChannels = combineChannels;
  t.replaceBits = replaceBits;
  t.mapThroughTables = mapThroughTables;
  t.mapAlongLines = mapAlongLines;
  t.countColor = countColor;
  t.countChannels = countChannels;
  t.isAllColor = isAllColor;
  t.isAllGray = isAllGray;
  t.countColorful = countColorful;
  t.findColor = findColor;
  t.areEqual = areEqual;
  t.markColored = markColored;
  t.blackWhere = blackWhere;
  t.replaceColor = replaceColor;
  t.extractColor = extractColor;
  t.saturate = saturate;
  t.tint = tint;
  t.mapThroughCube = mapThroughCube;
  t.mapThroughWholeCube = mapThroughWholeCube;
  t.tone = tone;
  t.sumInt8 = sumInt8;
  t.sumUInt8 = sumUInt8;
  t.sumInt16 = sumInt16;
  t.sumUInt16 = sumUInt16;
  t.bars = bars;
  return t;
}

}  // namespace

const Table table = makeTable();

}  // namespace kernels::ZVR_INSTRUCTION_SET
