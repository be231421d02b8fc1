// The plug-in's methods, one function each. The host keeps its own references on the pictures that it passes
// and owns one reference on a returned picture or string. If a source is nil or can't be opened, or the
// result can't be created, functions return nil (false, 0) without raising, unless a comment says otherwise.
//
// Rectangles are in pixels and signed; they are clipped to the picture, with right and bottom counted from
// the given left and top.
#pragma once

#include "frame/host_interface.h"

// ---- masks.cpp ----

// Whether the picture has a mask picture.
RBBoolean PictureHasMask(REALpictureStruct* picture);
// The top bytes of the picture's words as a new gray picture: alpha on desktop hosts, white for a picture
// without alpha; transparency on console hosts, black for an opaque picture. `swap` inverts it.
REALpictureStruct* GetEmbededMask(REALpictureStruct* picture, RBBoolean swap);
// Writes the red channel of `mask` to the first byte (blue) of the picture's pixel words, in place. Not the
// inverse of the getter, on purpose. `swap` inverts it. A no-op for a nil or unreadable picture or mask.
void SetEmbededMask(REALpictureStruct* picture, RBBoolean swap, REALpictureStruct* mask);

// ---- invert.cpp ----

// A new picture of the source's size whose rectangle holds the source's pixels inverted (255 - v in each
// channel); the rest stays as in a new picture of the host. A width or height below 1 means the whole
// picture's.
REALpictureStruct* InvertPicture(REALpictureStruct* picture, int32_t left, int32_t top, int32_t width,
                                 int32_t height);
REALpictureStruct* InvertPicture2(REALpictureStruct* picture);
// The same for gray pixels (red = green = blue); others are copied. Here only a negative width or height
// means the whole picture's; with 0 nothing is processed.
REALpictureStruct* InvertGrayPicture(REALpictureStruct* picture, int32_t left, int32_t top, int32_t width,
                                     int32_t height);
REALpictureStruct* InvertGrayPicture2(REALpictureStruct* picture);

// ---- merge.cpp ----

// A new picture without alpha, with the maximum of two pictures in each channel. Also nil if their sizes
// differ.
REALpictureStruct* MergePicture(REALpictureStruct* source1, REALpictureStruct* source2);
// Likewise with the red of the first picture, the blue of the second and the green of the third, in this
// order on purpose.
REALpictureStruct* CombinePicturesZVR(REALpictureStruct* red, REALpictureStruct* blue,
                                      REALpictureStruct* green);

// ---- count.cpp ----

// The number of pixels of exactly this colour.
int32_t CountColorZVR(REALpictureStruct* picture, RBColor color);
// Adds histograms to blocks of 256 32-bit counters: red to the first, green to the second, blue to the third,
// on purpose, despite the parameter names. Replaces a nil block by a new one, which the caller owns; counters
// beyond the end of a shorter block are lost. `count` is the number of pixels, or -1 if a block can't be
// created or the picture can't be opened.
void CountColorsZVR(REALpictureStruct* picture, REALmemoryBlockStruct** red, REALmemoryBlockStruct** blue,
                    REALmemoryBlockStruct** green, int32_t* count);
// The picture with each channel mapped through a lookup table of 256 bytes (missing ones are 0), without
// alpha. Writes the top left of `dest` and returns it if it is large enough and can be opened, else a new
// picture. Raises "NilObjectException" for a nil picture or block.
REALpictureStruct* TransformColorsZVR(REALpictureStruct* picture, REALmemoryBlockStruct* red,
                                      REALmemoryBlockStruct* blue, REALmemoryBlockStruct* green,
                                      REALpictureStruct* dest);

// ---- brightness.cpp ----

// New pictures like the source, with one value for all channels or one each. Any double is accepted. Results
// are truncated and clamped to 0..255, except with linear brightness and no contrast, which keeps the low 8
// bits.
//
// Linear brightness, usefully -255..255: squeezes 0..255 to brightness..255, or to 0..255 + brightness.
REALpictureStruct* LinBrightnessPicture1(REALpictureStruct* picture, double brightness);
REALpictureStruct* LinBrightnessPicture3(REALpictureStruct* picture, double red, double green, double blue);
// Absolute brightness is added.
REALpictureStruct* AbsBrightnessPicture1(REALpictureStruct* picture, double brightness);
REALpictureStruct* AbsBrightnessPicture3(REALpictureStruct* picture, double red, double green, double blue);
// Contrast stretches values away from 127 by a factor of 1 + contrast.
REALpictureStruct* ContrastPicture1(REALpictureStruct* picture, double contrast);
REALpictureStruct* ContrastPicture3(REALpictureStruct* picture, double red, double green, double blue);
// Contrast, then brightness.
REALpictureStruct* ContrastLinBrightnessPicture1(REALpictureStruct* picture, double contrast,
                                                 double brightness);
REALpictureStruct* ContrastLinBrightnessPicture3(REALpictureStruct* picture, double contrastRed,
                                                 double contrastGreen, double contrastBlue,
                                                 double brightnessRed, double brightnessGreen,
                                                 double brightnessBlue);
REALpictureStruct* ContrastAbsBrightnessPicture1(REALpictureStruct* picture, double contrast,
                                                 double brightness);
REALpictureStruct* ContrastAbsBrightnessPicture3(REALpictureStruct* picture, double contrastRed,
                                                 double contrastGreen, double contrastBlue,
                                                 double brightnessRed, double brightnessGreen,
                                                 double brightnessBlue);
// value * a + b in every channel.
REALpictureStruct* TransformPicture(REALpictureStruct* picture, double a, double b);

// ---- channels.cpp ----

// A new picture without alpha: one channel from the top left of the channel picture, the others from the
// picture. Raises "NilObjectException" for a nil channel picture; also nil if that is smaller than the
// picture.
REALpictureStruct* ReplaceRedChannel(REALpictureStruct* picture, REALpictureStruct* redChannel);
REALpictureStruct* ReplaceGreenChannel(REALpictureStruct* picture, REALpictureStruct* greenChannel);
REALpictureStruct* ReplaceBlueChannel(REALpictureStruct* picture, REALpictureStruct* blueChannel);

// ---- scroll.cpp ----

// Move a picture's pixels in place by `delta` (right or down if positive). With `wrap`, pixels that leave on
// one side enter on the other; otherwise white enters (all bits set). With `scrollMask` the mask, if there is
// one, moves first; if it can't be moved up or down, the call returns false. A delta of 0 succeeds without
// opening the picture. If a picture can't be changed in place or memory runs out: true sideways, false up and
// down.
RBBoolean ScrollHorizontalZVR(REALpictureStruct* picture, int32_t delta, RBBoolean wrap,
                              RBBoolean scrollMask);
RBBoolean ScrollVerticalZVR(REALpictureStruct* picture, int32_t delta, RBBoolean wrap, RBBoolean scrollMask);
// Sideways, then up or down.
RBBoolean ScrollZVR(REALpictureStruct* picture, int32_t deltaX, int32_t deltaY, RBBoolean wrap,
                    RBBoolean scrollMask);

// ---- replace.cpp ----

// A new picture like the source, with one exact colour replaced by another.
REALpictureStruct* ReplaceColorZVR(REALpictureStruct* picture, RBColor searched, RBColor replacement);
// A new picture of two colours, without alpha: `replacement` where the source has exactly `searched`, else
// `background`.
REALpictureStruct* ExtractColorZVR(REALpictureStruct* picture, RBColor searched, RBColor replacement,
                                   RBColor background);

// ---- saturation.cpp ----

// A new picture like the source, with each pixel's channels moved away from its gray value or towards it: 0
// changes nothing, -255 gives gray, 255 doubles the distance. Any amount is accepted.
REALpictureStruct* SaturationPicture(REALpictureStruct* picture, int32_t amount);

// ---- tint.cpp ----

// A new picture like the source: each pixel's brightness (its channels weighted by the gray base) times the
// sepia base. A base channel of 255 means 1.
REALpictureStruct* TintPicture(REALpictureStruct* picture, RBColor grayBase, RBColor sepiaBase);

// ---- samples.cpp ----

// A new picture of sound samples: bars from the centre line, up for negative and down for positive
// excursions. The length of a bar is twice the sum of its excursions over the number of all samples in its
// column.
//
// `bits` of 7 and 15 mean signed samples of one and two bytes, 8 and 16 unsigned ones; other values give nil.
// A `count` below 1 means all samples of the block, such a height 500 rows, such a width one column per
// sample; samples past the block's end are zero bytes. `smoothing` is the number of columns that the moving
// average looks back over: 1 leaves the columns unchanged, 0 exaggerates, values below -1 turn it off.
// `autoScale` scales the largest excursion to half the height; otherwise the sample type's whole range does.
// An outline of width 1 is antialiased; the host draws wider ones. Raises "NilObjectException" for a nil
// block.
REALpictureStruct* RenderSamples(REALmemoryBlockStruct* block, int32_t count, int32_t smoothing,
                                 int32_t width, int32_t height, int32_t outlineWidth, RBColor background,
                                 RBColor foreground, RBColor outline, int32_t bits, RBBoolean autoScale);

// ---- region.cpp ----

// Whether every pixel of the rectangle is black, white, or gray: gray if no two channels differ by more than
// the tolerance, whose sign doesn't count. A negative width or height means the whole picture's. True for a
// rectangle without pixels.
RBBoolean isBlack(REALpictureStruct* picture, int32_t left, int32_t top, int32_t width, int32_t height);
RBBoolean isBlack2(REALpictureStruct* picture);
RBBoolean isWhite(REALpictureStruct* picture, int32_t left, int32_t top, int32_t width, int32_t height);
RBBoolean isWhite2(REALpictureStruct* picture);
RBBoolean isGray(REALpictureStruct* picture, int32_t tolerance, int32_t left, int32_t top, int32_t width,
                 int32_t height);
RBBoolean isGray2(REALpictureStruct* picture, int32_t tolerance);
// The share of colourful pixels, 0 to 1: not all channels are below 30, and green differs from red or from
// blue by more than the threshold. With a negative threshold every pixel that isn't dark is colourful.
double ColornessZVR(REALpictureStruct* picture, int32_t threshold);

// ---- color_mask.cpp ----

// A new white picture with a black rectangle over each coloured area of the picture. Only the given rectangle
// is searched; a negative width or height means the whole picture's. Row `top` of the rectangle reads the
// picture's row 0, and so on down, on purpose.
REALpictureStruct* ExtractColorRectangleMaskZVR(REALpictureStruct* picture, int32_t left, int32_t top,
                                                int32_t width, int32_t height);
REALpictureStruct* ExtractColorRectangleMaskZVR2(REALpictureStruct* picture);

// ---- search.cpp ----

// Whether the picture contains an exact copy of `needle`. x and y get the top left corner of the topmost
// copy, and of those the leftmost; 0 if there is none. Alpha doesn't count. x and y may be null.
RBBoolean FindPicture(REALpictureStruct* picture, REALpictureStruct* needle, int32_t* x, int32_t* y);

// ---- binary_string.cpp ----

// The picture's size and colours as a string, and back. Also nil for a string in another format, or one that
// claims more pixels than it holds.
REALstringStruct* PicturetoBinaryString(REALpictureStruct* picture);
REALpictureStruct* BinaryStringtoPicture(REALstringStruct* string);
