// Calls of the gallery: run, and made into cards.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "host/calls.h"
#include "zvr/gallery/examples.h"
#include "zvr/gallery/page.h"
#include "zvr/language/chain.h"

namespace zvr::gallery {

// The photograph and files that the calls take.
struct Material {
  std::string photoPath, lookPath;            // as written in zvr's lines
  Image photo;                                // of photoPath
  std::map<std::string, std::string> fields;  // for the words of examples
};

// The histograms of a picture by the plug-in's CountColorsZVR; empty when it has none.
Histogram histogramOf(const host::PictureRef& picture);

class Stage {
 public:
  // Keeps the reference.
  explicit Stage(const Material& material);

  // An example of a registered method, as words of `zvr apply`; nothing for a class, or when its
  // method is not registered.
  std::optional<Chain> parse(const Example& example) const;
  // The last step is shown. A failure of a call becomes the card's problem.
  Card show(const Chain& chain, const Example& example);
  // A class, with its example or none.
  Card show(const host::Class& type, const Example* example);

 private:
  std::vector<std::string> wordsOf(const std::string& words) const;
  void run(const Chain& chain, Card& card);

  const Material& material_;
  const Image before_;  // the photograph as the host keeps it
};

}  // namespace zvr::gallery
