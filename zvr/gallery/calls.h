// Calls of the gallery: run, and made into cards.
#pragma once

#include "zvr/gallery/material.h"
#include "zvr/gallery/page.h"

namespace zvr::gallery {

// All examples that the loaded plug-in has members for; members without one come last. A failure of a call
// becomes its problem. Shows progress.
Exhibition exhibitionOf(const Material& material);

}  // namespace zvr::gallery
