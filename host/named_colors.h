// Colours by name.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace host {

// The colour (0xRRGGBB) that CSS gives this name, in any case; nothing for other names.
std::optional<uint32_t> namedColor(std::string_view name);

}  // namespace host
