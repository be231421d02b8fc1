// Every per-pixel method with its plain definition: one pixel at a time, in the most literal arithmetic.
#pragma once

#include <vector>

#include "tests/support.h"

struct PixelModel {
  const char* method;
  bool isGlobal;    // takes all its pictures as arguments; a method of Picture is called on the first
  bool keepsAlpha;  // the result has an alpha channel when the source has one
  int sources;      // pictures of equal size, first among the arguments
  // The arguments behind the pictures: often ordinary, sometimes adversarial. `hint` is a colour of the first
  // picture.
  std::vector<host::Value> (*arguments)(Random& random, Rgb hint);
  // A pixel of the result from the pixels of the sources, in the order of the arguments.
  Rgb (*pixel)(const Rgb* sources, const std::vector<host::Value>& arguments);
};

const std::vector<PixelModel>& pixelModels();
