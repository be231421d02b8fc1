// The host methods of the plug-in, one function each. Pictures come from the host with references of its own;
// a picture or string that a function returns carries one reference for the host. A source that is nil or
// can't be opened, and a result that can't be made, give nil (false, 0) without a word unless a comment says
// otherwise.
//
// Rectangles are signed pixel columns and rows; what lies outside the picture is cut off, counting from the
// left and top as given.
#pragma once

#include "frame/host_interface.h"

// ---- masks.cpp ----

// Whether the picture has a mask picture.
RBBoolean PictureHasMask(REALpictureStruct* picture);
// What the top bytes of the picture's words hold as a new gray picture: alpha on desktop hosts, white for a
// picture without; transparency on console hosts, black for an opaque picture. `swap` inverts it.
REALpictureStruct* GetEmbededMask(REALpictureStruct* picture, RBBoolean swap);
// Writes the red channel of `mask` into the first byte (the blue) of the picture's pixel words, in place. Not
// the reverse of the getter, on purpose. `swap` inverts it. Nothing happens for a nil or unreadable picture
// or mask.
void SetEmbededMask(REALpictureStruct* picture, RBBoolean swap, REALpictureStruct* mask);

// ---- invert.cpp ----

// A new picture of the source's size whose rectangle holds the source's pixels inverted (255 - v in each
// channel); the rest is as the host makes new pictures. A width or height below 1 stands for the whole
// picture's.
REALpictureStruct* InvertPicture(REALpictureStruct* picture, int32_t left, int32_t top, int32_t width,
                                 int32_t height);
REALpictureStruct* InvertPicture2(REALpictureStruct* picture);
// The same for gray pixels (red = green = blue); others are copied. Here only a negative width or height
// stands for the whole picture's: 0 means nothing at all.
REALpictureStruct* InvertGrayPicture(REALpictureStruct* picture, int32_t left, int32_t top, int32_t width,
                                     int32_t height);
REALpictureStruct* InvertGrayPicture2(REALpictureStruct* picture);

// ---- merge.cpp ----

// A new picture without alpha channel with the brighter of two pictures' values in each channel. Nil, too,
// when their sizes differ.
REALpictureStruct* MergePicture(REALpictureStruct* source1, REALpictureStruct* source2);
// Likewise with the red of one picture, the blue of the second and the green of the third: in this order, on
// purpose.
REALpictureStruct* CombinePicturesZVR(REALpictureStruct* red, REALpictureStruct* blue,
                                      REALpictureStruct* green);

// ---- count.cpp ----

// How many pixels have exactly this colour.
int32_t CountColorZVR(REALpictureStruct* picture, RBColor color);
// Adds histograms to blocks of 256 32-bit counters: red to the first, green to the second, blue to the third
// (on purpose, whatever their names promise). A nil block is replaced by a new one, which the caller then
// owns; counters beyond the end of a shorter block are lost. `count` is the number of pixels; -1 when a block
// can't be made or the picture can't be opened.
void CountColorsZVR(REALpictureStruct* picture, REALmemoryBlockStruct** red, REALmemoryBlockStruct** blue,
                    REALmemoryBlockStruct** green, int32_t* count);
// The picture with each channel looked up in a table of 256 bytes (missing ones are 0), without alpha.
// Written to the top left of `dest`, which is then the result, when that is large enough and can be opened;
// else to a new picture. Raises "NilObjectException" for a nil picture or block.
REALpictureStruct* TransformColorsZVR(REALpictureStruct* picture, REALmemoryBlockStruct* red,
                                      REALmemoryBlockStruct* blue, REALmemoryBlockStruct* green,
                                      REALpictureStruct* dest);

// ---- brightness.cpp ----

// New pictures like the source; one value for all channels or one each. Any double is accepted. Results are
// truncated and clamped to 0..255, but for linear brightness alone, which keeps the low 8 bits.
//
// Linear brightness, sensibly -255..255: squeezes 0..255 to brightness..255, or to 0..255 + brightness.
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

// A new picture without alpha channel: one channel from the top left of the channel picture, the others from
// the picture. Raises "NilObjectException" for a nil channel picture; nil, too, when it is smaller than the
// picture.
REALpictureStruct* ReplaceRedChannel(REALpictureStruct* picture, REALpictureStruct* redChannel);
REALpictureStruct* ReplaceGreenChannel(REALpictureStruct* picture, REALpictureStruct* greenChannel);
REALpictureStruct* ReplaceBlueChannel(REALpictureStruct* picture, REALpictureStruct* blueChannel);

// ---- scroll.cpp ----

// These move a picture's own pixels by `delta` (right or down when positive): with `wrap` what leaves at one
// side comes in at the other, else white comes in (all bits set). With `scrollMask` the mask, if there is
// one, is moved first; a mask that can't be moved up or down ends the call with false. A delta of 0 succeeds
// untried. Pictures that can't be changed in place and lacking memory: true sideways, false up and down.
RBBoolean ScrollHorizontalZVR(REALpictureStruct* picture, int32_t delta, RBBoolean wrap,
                              RBBoolean scrollMask);
RBBoolean ScrollVerticalZVR(REALpictureStruct* picture, int32_t delta, RBBoolean wrap, RBBoolean scrollMask);
// Sideways, then up or down.
RBBoolean ScrollZVR(REALpictureStruct* picture, int32_t deltaX, int32_t deltaY, RBBoolean wrap,
                    RBBoolean scrollMask);

// ---- replace.cpp ----

// A new picture like the source with one exact colour replaced by another.
REALpictureStruct* ReplaceColorZVR(REALpictureStruct* picture, RBColor searched, RBColor replacement);
// A new picture of two colours, without alpha: `replacement` where the source has exactly the colour, else
// `background`.
REALpictureStruct* ExtractColorZVR(REALpictureStruct* picture, RBColor searched, RBColor replacement,
                                   RBColor background);

// ---- saturation.cpp ----

// A new picture like the source, each pixel's channels moved away from its gray value or towards it: 0
// changes nothing, -255 leaves gray, 255 doubles the distance. Any amount is accepted.
REALpictureStruct* SaturationPicture(REALpictureStruct* picture, int32_t amount);

// ---- tint.cpp ----

// A new picture like the source: each pixel's brightness, its channels weighted by the gray base, times the
// sepia base. A base channel of 255 stands for 1.
REALpictureStruct* TintPicture(REALpictureStruct* picture, RBColor grayBase, RBColor sepiaBase);

// ---- samples.cpp ----

// A new picture of sound samples: bars from the centre line up for the negative and down for the positive
// excursions, each twice their sum over the number of all samples in its column's share.
//
// `bits` 7 and 15 are signed samples of one and two bytes, 8 and 16 unsigned ones; any other value gives nil.
// A `count` below 1 stands for all samples of the block, a height for 500 rows, a width for one column a
// sample; samples past the block's end are zero bytes. `smoothing` is how many columns the moving average
// looks back over: 1 leaves the columns as they are, 0 exaggerates, below -1 nothing is done. `autoScale`
// spreads the largest excursion over half the height, else the samples' whole range counts. An outline of
// width 1 has soft edges; a wider one is drawn by the host. Raises "NilObjectException" for a nil block.
REALpictureStruct* RenderSamples(REALmemoryBlockStruct* block, int32_t count, int32_t smoothing,
                                 int32_t width, int32_t height, int32_t outlineWidth, RBColor background,
                                 RBColor foreground, RBColor outline, int32_t bits, RBBoolean autoScale);

// ---- region.cpp ----

// Whether every pixel of the rectangle is black, white, or gray: gray when no two channels differ by more
// than the tolerance, whose sign doesn't count. A negative width or height stands for the whole picture's.
// True for a rectangle without pixels.
RBBoolean isBlack(REALpictureStruct* picture, int32_t left, int32_t top, int32_t width, int32_t height);
RBBoolean isBlack2(REALpictureStruct* picture);
RBBoolean isWhite(REALpictureStruct* picture, int32_t left, int32_t top, int32_t width, int32_t height);
RBBoolean isWhite2(REALpictureStruct* picture);
RBBoolean isGray(REALpictureStruct* picture, int32_t tolerance, int32_t left, int32_t top, int32_t width,
                 int32_t height);
RBBoolean isGray2(REALpictureStruct* picture, int32_t tolerance);
// The share of colourful pixels, 0 to 1: not all channels are below 30, and green differs from red or from
// blue by more than the threshold. With a negative threshold every pixel that is not dark is colourful.
double ColornessZVR(REALpictureStruct* picture, int32_t threshold);

// ---- color_mask.cpp ----

// A new white picture with a black rectangle over each coloured area of the picture. Coloured pixels are
// looked for in the rectangle; a negative width or height stands for the whole picture's. Row `top` of the
// rectangle looks at the picture's row 0, and so on down, on purpose.
REALpictureStruct* ExtractColorRectangleMaskZVR(REALpictureStruct* picture, int32_t left, int32_t top,
                                                int32_t width, int32_t height);
REALpictureStruct* ExtractColorRectangleMaskZVR2(REALpictureStruct* picture);

// ---- search.cpp ----

// Where the picture holds an exact copy of `needle`: the topmost, and of those the leftmost, by its top left
// corner in x and y, which are 0 when there is none. Alpha doesn't count. x and y may be null.
RBBoolean FindPicture(REALpictureStruct* picture, REALpictureStruct* needle, int32_t* x, int32_t* y);

// ---- binary_string.cpp ----

// The picture's size and colours as a string, and back. Nil, too, for a string that is not of this format or
// claims more pixels than it holds.
REALstringStruct* PicturetoBinaryString(REALpictureStruct* picture);
REALpictureStruct* BinaryStringtoPicture(REALstringStruct* string);
