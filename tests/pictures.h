// The kind of host that is played, and its pictures: made from colours, and read back.
#pragma once

#include "host/calls.h"
#include "host/host.h"
#include "host/objects.h"
#include "tests/values.h"

// The kind of host that this process plays.
host::Road road();
void setRoad(host::Road road);
inline bool isGdk() { return road() == host::Road::gdk; }
inline bool isConsole() { return road() == host::Road::console; }
// That host at version 2013.03, with guard pages and padded rows; fresh pixels of an odd colour, so that
// unwritten ones show.
host::Settings settingsForRoad();
constexpr uint32_t kFreshPixel = 0xFF8E4D2B;

Pixels colorsOf(const host::PictureRef& picture);
// A picture of these words, with alpha and mask; and back.
host::PictureRef pictureOf(const Pixels& pixels);
Pixels pixelsOf(REALpictureStruct* picture);
// As this road's pictures hold it: drawables have no top bytes.
Pixels asHeld(Pixels pixels);

// A result of a writer as this road shows it: on the GDK road row 0 stays black, on purpose.
Pixels asWritten(Pixels expected);
// The top byte of words that a writer writes.
uint32_t opaqueTopByte();

// A host's value as plain data.
Value plainValue(const host::Value& value);
