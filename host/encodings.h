// Text in the host's encodings. Self-contained: a 32-bit program on a 64-bit machine can't count on finding
// the C library's conversion modules.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace host {

// Converts bytes between two encoding codes. Characters that the target lacks become '?', malformed bytes
// U+FFFD. Raw bytes (0xFFFF) on either side are passed on unchanged; nullopt for a code that is not known.
std::optional<std::string> convertText(const std::string& bytes, uint32_t from, uint32_t to);

}  // namespace host
