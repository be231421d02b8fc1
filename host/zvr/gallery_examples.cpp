#include "host/zvr/gallery_examples.h"

#include <sstream>

namespace zvr::gallery {

const std::vector<Family>& families() {
  static const std::vector<Family> kFamilies = {
      {"Negatives",
       {
           {"{photo} InvertZVR", "The negative: every value subtracted from 255."},
           {"{photo} InvertZVR {x20} {y20} {x60} {y60}",
            "The negative of a rectangle; the new picture is blank around it."},
           {"{photo} InvertGrayZVR", "Gray pixels inverted, coloured ones kept."},
           {"{photo} InvertGrayZVR {x20} {y20} {x60} {y60}",
            "Gray pixels of a rectangle inverted, coloured ones kept; blank around it."},
       }},
      {"Brightness and contrast",
       {
           {"{photo} ChangeBrightnessLinearZVR 80", "Every value squeezed toward white."},
           {"{photo} ChangeBrightnessLinearZVR 60 20 -40",
            "Each channel squeezed toward white or black: warmer light, nothing cut off."},
           {"{photo} ChangeBrightnessAbsoluteZVR 60",
            "60 added to every value; what is brightest is cut off."},
           {"{photo} ChangeBrightnessAbsoluteZVR 60 20 -40",
            "A value added to each channel: warmer light, cut off at the ends."},
           {"{photo} ChangeContrastZVR 0.5", "Every value stretched away from the middle."},
           {"{photo} ChangeContrastZVR 0.6 0.3 -0.4", "Contrast for each channel; below 0 there is less."},
           {"{photo} ChangeContrastBrightnessLinearZVR 0.3 40",
            "More contrast, then a squeeze toward white."},
           {"{photo} ChangeContrastBrightnessLinearZVR 0.2 0.2 0.4 -120 -100 -40",
            "Contrast for each channel, then a squeeze toward black: day becomes night."},
           {"{photo} ChangeContrastBrightnessAbsoluteZVR 0.3 40",
            "More contrast, then 40 added to every value."},
           {"{photo} ChangeContrastBrightnessAbsoluteZVR 0.3 0.1 -0.2 20 0 30",
            "Contrast for each channel, then a value added to it."},
           {"{photo} ChangeCustomZVR 0.5 60", "Every value multiplied by one number, then another added."},
       }},
      {"Colours",
       {
           {"{photo} TintPictureZVR @ &c555555 &cFFD08C", "Shades of one colour, as in an old photograph."},
           {"{photo} ChangeSaturationZVR 120", "Stronger colours; below 0 weaker ones, down to gray."},
           {"{photo} TransformColorsZVR {table} {table} {table}",
            "Every channel through a table of 256 values: four levels, as on a poster."},
           {"{photo} ReplaceColorZVR {common} &cF4C542", "One exact colour in exchange for another."},
           {"{photo} ExtractColorZVR {common} &cF4C542 &c203F4E",
            "Where one exact colour is, and where it is not."},
       }},
      {"Several pictures",
       {
           {"{photo} MergePictureZVR @ {other}", "The brighter of two pictures in each channel."},
           {"{photo} CombinePicturesZVR @ {other} @", "Red and green of one picture, blue of another."},
           {"{photo} ReplaceRedChannelZVR {other}", "Red from the other picture."},
           {"{photo} ReplaceGreenChannelZVR {other}", "Green from the other picture."},
           {"{photo} ReplaceBlueChannelZVR {other}", "Blue from the other picture."},
       }},
      {"Scrolling",
       {
           {"{photo} ScrollHorizontalZVR {x25} true false",
            "Moves its own pixels to the right; what leaves comes back on the left."},
           {"{photo} ScrollVerticalZVR {y20} true false",
            "Moves its own pixels down; what leaves comes back above."},
           {"{photo} ScrollZVR {x15} {y15} false false",
            "Moves its own pixels both ways; what leaves is lost."},
       }},
      {"Search and masks",
       {
           {"{photo} FindPictureZVR {part}", "Where a part of the picture is found in it again."},
           {"{photo} ExtractColorRectangleMaskZVR", "Rectangles over the coloured areas."},
           {"{photo} ExtractColorRectangleMaskZVR {x10} {y10} {x80} {y80}",
            "Rectangles over the coloured areas of a part of the picture."},
           {"{photo} EmbeddedMaskZVR false", "The picture's alpha channel as a gray picture."},
           {"{photo} EmbeddedMaskZVR false = {other}",
            "Assigned to: the other picture's red becomes the blue."},
           {"{photo} HasMaskZVR", "Whether the picture has a mask picture."},
       }},
      {"Counting and questions",
       {
           {"{photo} CountColorsZVR", "The histograms of the three channels."},
           {"{photo} CountColorZVR {common}", "How many pixels have exactly this colour."},
           {"{photo} ColornessZVR", "How much of the picture is colourful, from 0 to 1."},
           {"{photo} isGrayZVR 10", "Whether all is gray, give or take 10."},
           {"{photo} isGrayZVR 10 {x40} {y40} {x20} {y20}", "Whether a rectangle is gray, give or take 10."},
           {"{photo} isBlackZVR", "Whether all is black."},
           {"{photo} isBlackZVR {x40} {y40} {x20} {y20}", "Whether a rectangle is black."},
           {"{photo} isWhiteZVR", "Whether all is white."},
           {"{photo} isWhiteZVR {x40} {y40} {x20} {y20}", "Whether a rectangle is white."},
       }},
      {"Sound",
       {
           {"{samples} RenderSamplesZVR @ 0 3 {columns} 240 1 &c88B5C4 &c274C5A &c203F4E {bits} true",
            "A sound as a waveform."},
       }},
      {"Strings",
       {
           {"{photo} PicturetoBinaryStringZVR", "The picture as a compact binary string."},
           {"{photo} PicturetoBinaryStringZVR + BinaryStringtoPictureZVR",
            "A picture from a binary string, here from the one that the photograph became."},
       }},
  };
  return kFamilies;
}

const std::vector<ClassExample>& classExamples() {
  static const std::vector<ClassExample> kExamples = {
      {"PictureSepiaZVR", "SepiaRed=40 SepiaGreen=20", "Gray with a colour added.", false},
      {"PictureLut3DZVR", "", "A film look: a table of colours, and what lies between them.", true},
  };
  return kExamples;
}

std::vector<std::string> filledWords(const std::string& words,
                                     const std::map<std::string, std::string>& fields, int width,
                                     int height) {
  const auto filled = [&](const std::string& word) {
    if (word.size() < 2 || word[0] != '{') return word;
    const std::string name = word.substr(1, word.size() - 2);
    const auto field = fields.find(name);
    if (field != fields.end()) return field->second;
    const auto percent = static_cast<int64_t>(std::stoi(name.substr(1)));
    return std::to_string((name[0] == 'x' ? width : height) * percent / 100);
  };
  std::vector<std::string> result;
  std::istringstream stream(words);
  for (std::string word; stream >> word;) result.push_back(filled(word));
  return result;
}

}  // namespace zvr::gallery
