// Every method by its plain definition, one pixel at a time: whatever calls the plug-in compares with these.
#pragma once

#include <optional>

#include "tests/calls.h"

// The promised outcome of a call of a method, or of a class's Run, on hosts of version 2013.03 of the kind
// that is played. Nullopt where nothing is promised: other members of classes, bytes beyond a smaller mask's
// rows, or of the padding of RGB24 rows.
std::optional<Outcome> promised(const Call& call);
// The names of all methods that have a definition.
std::vector<std::string> modelledMethods();

// Without its top byte.
inline Rgb colorIn(const Value& value) { return std::get<host::Color>(value).rgb & 0xFFFFFF; }
// The waveform of RenderSamplesZVR with these arguments, nil included.
Value waveform(const std::vector<Value>& arguments);
