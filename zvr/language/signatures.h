// Declarations and values as people read them.
#pragma once

#include <string>
#include <vector>

#include "host/calls.h"
#include "host/host.h"

namespace zvr {

// "InvertZVR(left as Integer, top as Integer) as Picture" in lines of at most `width` characters, those after
// the first indented; styled.
std::vector<std::string> signatureLines(const host::Declaration& declaration, size_t width);
// The same in one line, not styled.
std::string signatureText(const host::Declaration& declaration);
// "Class PictureLut3DZVR, console-safe", styled.
std::string classTitle(const host::Class& type);
// The bytes of a block, which is not nil, as 32-bit counts; none when there aren't four to a count.
std::vector<uint32_t> countsIn(const host::MemoryBlockRef& block);
// Numbers in the shortest form that reads back the same; long or binary strings and blocks by their size.
std::string valueText(const host::Value& value);
// The names of all registered methods and classes.
std::vector<std::string> memberNames();
// "; did you mean InvertZVR or InvertGrayZVR?", or "; `zvr list` shows every method" when none is near.
std::string nearestText(const std::string& name);

}  // namespace zvr
