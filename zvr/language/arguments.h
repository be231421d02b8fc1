// Files, and what they become as arguments of a call.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/calls.h"
#include "zvr/language/outputs.h"

namespace zvr {

using Bytes = std::vector<uint8_t>;

// The bytes of a file. Throws Failure with "PATH: what is wrong"; an empty file is wrong.
Bytes readBytes(const std::string& path);
// A string or a memory block of its own with these bytes.
host::Value valueOfBytes(const Bytes& bytes, host::Type type);
// A file as what a parameter of this type takes: a picture, a memory block or a string. `options` and
// `asOnHost` as for Original. Throws Failure.
host::Value valueOfFile(const std::string& path, host::Type type, const PictureOptions& options,
                        bool asOnHost);
// The bytes of a memory block; none for nil and for other values.
Bytes bytesOf(const host::Value& value);

}  // namespace zvr
