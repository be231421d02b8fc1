// The gallery as one HTML page that needs nothing beside itself.
#pragma once

#include <string>

#include "zvr/gallery/material.h"

namespace zvr::gallery {

// The page is made again with coarser pictures as long as it is larger than this, in bytes.
constexpr size_t kLargestPage = 6'000'000;

// Runs all examples that the loaded plug-in has members for; a failure of a call stands in the page. `title`
// is that of the page, `host` is what it was made on. Throws Failure when the page can't be made small
// enough.
std::string page(const Material& material, const std::string& title, const std::string& host);

}  // namespace zvr::gallery
