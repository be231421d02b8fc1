// Everything that the plug-in registers: the one place that lists every operation and class member. Host
// programs were built against this order, spelling and set of flags, including overloads and odd mixtures.

#include "plugin/plugin_main.h"

#include <string.h>

#include <type_traits>

#include "classes/classes.h"
#include "frame/registration.h"
#include "operations/operations.h"

namespace {

constexpr uint32_t kConsole = kMarkConsoleSafe;
constexpr uint32_t kDesktopOnly = 0;
constexpr int32_t kRecordVersion = 12;

template <typename Function>
void* address(Function* function) {
  return reinterpret_cast<void*>(function);
}

template <typename Record, size_t count>
constexpr int32_t countOf(const Record (&)[count]) {
  return static_cast<int32_t>(count);
}

REALmethodDefinition method(void* function, const char* declaration, uint32_t flags) {
  return {function, nullptr, declaration, flags, {}};
}

REALmethodDefinition method(void* getter, void* setter, const char* declaration, uint32_t flags) {
  return {getter, setter, declaration, flags, {}};
}

REALproperty stored(const char* name, const char* type, size_t offset, uint32_t flags) {
  return {nullptr, name, type, flags, kStoredProperty, kStoredProperty, static_cast<uint32_t>(offset), {}};
}

REALproperty computed(const char* name, const char* type, void* getter, void* setter, uint32_t flags) {
  return {nullptr, name, type, flags, getter, setter, 0, {}};
}

// ---- Picture methods ----

REALmethodDefinition gPictureMethods[] = {
    method(address(ColornessZVR), "ColornessZVR(threshold as integer = 10) as double", kDesktopOnly),
    method(address(ScrollVerticalZVR),
           "ScrollVerticalZVR(delta as integer, wrap as boolean, scrollmask as boolean) as boolean",
           kDesktopOnly),
    method(address(ScrollHorizontalZVR),
           "ScrollHorizontalZVR(delta as integer, wrap as boolean, scrollmask as boolean) as boolean",
           kDesktopOnly),
    method(
        address(ScrollZVR),
        "ScrollZVR(deltaX as integer, deltaY as integer, wrap as boolean, scrollmask as boolean) as boolean",
        kDesktopOnly),
    method(address(PictureHasMask), "HasMaskZVR as boolean", kConsole),
    method(
        address(ContrastAbsBrightnessPicture3),
        "ChangeContrastBrightnessAbsoluteZVR(ContrastRed as double, ContrastGreen as double, ContrastBlue as "
        "double, BrightnessRed as double, BrightnessGreen as double, BrightnessBlue as double) as picture",
        kConsole),
    method(
        address(ContrastLinBrightnessPicture3),
        "ChangeContrastBrightnessLinearZVR(ContrastRed as double, ContrastGreen as double, ContrastBlue as "
        "double, BrightnessRed as double, BrightnessGreen as double, BrightnessBlue as double) as picture",
        kConsole),
    method(address(ContrastAbsBrightnessPicture1),
           "ChangeContrastBrightnessAbsoluteZVR(Contrast as double, Brightness as double) as picture",
           kConsole),
    method(address(ContrastLinBrightnessPicture1),
           "ChangeContrastBrightnessLinearZVR(Contrast as double, Brightness as double) as picture",
           kConsole),
    method(address(AbsBrightnessPicture3),
           "ChangeBrightnessAbsoluteZVR(BrightnessRed as double, BrightnessGreen as double, BrightnessBlue "
           "as double) as picture",
           kConsole),
    method(address(LinBrightnessPicture3),
           "ChangeBrightnessLinearZVR(BrightnessRed as double, BrightnessGreen as double, BrightnessBlue as "
           "double) as picture",
           kConsole),
    method(address(AbsBrightnessPicture1), "ChangeBrightnessAbsoluteZVR(Brightness as double) as picture",
           kConsole),
    method(address(LinBrightnessPicture1), "ChangeBrightnessLinearZVR(Brightness as double) as picture",
           kConsole),
    method(address(ContrastPicture1), "ChangeContrastZVR(Contrast as double) as picture", kConsole),
    method(address(ContrastPicture3),
           "ChangeContrastZVR(ContrastRed as double, ContrastGreen as double, ContrastBlue as double) as "
           "picture",
           kConsole),
    method(address(TransformPicture), "ChangeCustomZVR(a as double, b as double) as picture", kConsole),
    method(address(InvertPicture),
           "InvertZVR(left as integer,top as integer,width as integer,height as integer) as picture",
           kConsole),
    method(address(InvertPicture2), "InvertZVR as picture", kConsole),
    method(address(InvertGrayPicture),
           "InvertGrayZVR(left as integer,top as integer,width as integer,height as integer) as picture",
           kConsole),
    method(address(InvertGrayPicture2), "InvertGrayZVR as picture", kConsole),
    method(
        address(ExtractColorRectangleMaskZVR),
        "ExtractColorRectangleMaskZVR(left as integer,top as integer,width as integer,height as integer) as "
        "picture",
        kConsole),
    method(address(ExtractColorRectangleMaskZVR2), "ExtractColorRectangleMaskZVR as picture", kConsole),
    method(address(GetEmbededMask), address(SetEmbededMask), "EmbeddedMaskZVR(swap as boolean) as picture",
           kConsole),
    method(address(CountColorZVR), "CountColorZVR(col as color) as integer", kConsole),
    method(address(CountColorsZVR),
           "CountColorsZVR(byref red as memoryblock, byref blue as memoryblock, byref green as memoryblock, "
           "byref count as integer)",
           kDesktopOnly),
    method(address(TransformColorsZVR),
           "TransformColorsZVR(red as memoryblock, blue as memoryblock, green as memoryblock, dest as "
           "picture = nil) as picture",
           kDesktopOnly),
    method(address(ReplaceColorZVR),
           "ReplaceColorZVR(SearchColor as color, ReplaceWithColor as color) as picture", kDesktopOnly),
    method(address(ExtractColorZVR),
           "ExtractColorZVR(SearchColor as color, ReplaceWithColor as color, BackGroundColor as color) as "
           "picture",
           kDesktopOnly),
    method(address(SaturationPicture), "ChangeSaturationZVR(Amount as integer) as picture", kConsole),
    method(address(ReplaceRedChannel), "ReplaceRedChannelZVR(RedChannel as picture) as picture", kConsole),
    method(address(ReplaceGreenChannel), "ReplaceGreenChannelZVR(GreenChannel as picture) as picture",
           kConsole),
    method(address(ReplaceBlueChannel), "ReplaceBlueChannelZVR(BlueChannel as picture) as picture", kConsole),
    method(address(FindPicture),
           "FindPictureZVR(pic as picture, byref x as integer, byref y as integer) as boolean", kConsole),
    method(address(isWhite2), "isWhiteZVR as boolean", kConsole),
    method(address(isWhite),
           "isWhiteZVR(left as integer,top as integer,width as integer,height as integer) as boolean",
           kConsole),
    method(address(isBlack2), "isBlackZVR as boolean", kConsole),
    method(address(isBlack),
           "isBlackZVR(left as integer,top as integer,width as integer,height as integer) as boolean",
           kConsole),
    method(address(isGray2), "isGrayZVR(tolerance as integer = 0) as boolean", kConsole),
    method(address(isGray),
           "isGrayZVR(tolerance as integer, left as integer,top as integer,width as integer,height as "
           "integer) as boolean",
           kConsole),
};

// ---- Global methods ----

REALmethodDefinition gGlobalMethods[] = {
    method(address(BinaryStringtoPicture), "BinaryStringtoPictureZVR(data as String) as Picture", kConsole),
    method(address(PicturetoBinaryString), "PicturetoBinaryStringZVR(p as picture) as string", kConsole),
    method(address(CombinePicturesZVR),
           "CombinePicturesZVR(red as picture, blue as picture, green as picture) as picture", kConsole),
    method(address(MergePicture), "MergePictureZVR(source1 as picture, source2 as picture) as picture",
           kConsole),
    method(address(TintPicture),
           "TintPictureZVR(source as picture, GreyBase as color, SepiaBase as color) as picture", kConsole),
    method(address(RenderSamples),
           "RenderSamplesZVR(Samples as memoryblock, SampleCount as integer, Smooth as integer, Width as "
           "integer, Height as integer, outlinewidth as integer, BackColor as color=&c88B5C4, ForeColor as "
           "color=&c274C5A, OutLineColor as color=&c203F4E, Bits as Integer = 8, AutoScale as boolean = "
           "false) as Picture",
           kConsole),
};

// ---- PictureLut3DZVR ----

// Max comes before Min, although the fields are in the opposite order.
REALproperty gLut3DProperties[] = {
    stored("SourcePicture", "Picture", offsetof(PictureLut3DData, source), kConsole),
    stored("DestinationPicture", "Picture", offsetof(PictureLut3DData, destination), kConsole),
    stored("MaxX", "Integer", offsetof(PictureLut3DData, maxX), kConsole),
    stored("MinX", "Integer", offsetof(PictureLut3DData, minX), kConsole),
    stored("MaxY", "Integer", offsetof(PictureLut3DData, maxY), kConsole),
    stored("MinY", "Integer", offsetof(PictureLut3DData, minY), kConsole),
};

REALmethodDefinition gLut3DMethods[] = {
    method(address(Lut3DClose), "Close", kConsole),
    method(address(Lut3DRun), "Run as boolean", kConsole),
    method(address(Lut3DGetTable), address(Lut3DSetTable),
           "Table(r as UInt32, g as UInt32, b as UInt32, x as UInt32) as double", kConsole),
};

// ---- PictureSepiaZVR ----

// The factors of blue and green are crossed, on purpose: "FactorBlue" is the weight of green and vice versa.
REALproperty gSepiaProperties[] = {
    stored("SourcePicture", "Picture", offsetof(PictureSepiaData, source), kDesktopOnly),
    stored("DestinationPicture", "Picture", offsetof(PictureSepiaData, destination), kDesktopOnly),
    stored("MaxX", "Integer", offsetof(PictureSepiaData, maxX), kDesktopOnly),
    stored("MinX", "Integer", offsetof(PictureSepiaData, minX), kDesktopOnly),
    stored("MaxY", "Integer", offsetof(PictureSepiaData, maxY), kDesktopOnly),
    stored("MinY", "Integer", offsetof(PictureSepiaData, minY), kDesktopOnly),
    stored("SepiaRed", "Integer", offsetof(PictureSepiaData, sepiaRed), kDesktopOnly),
    stored("SepiaGreen", "Integer", offsetof(PictureSepiaData, sepiaGreen), kDesktopOnly),
    stored("SepiaBlue", "Integer", offsetof(PictureSepiaData, sepiaBlue), kDesktopOnly),
    computed("FactorRed", "Double", address(GetFactorR), address(SetFactorR), kDesktopOnly),
    computed("FactorBlue", "Double", address(GetFactorG), address(SetFactorG), kDesktopOnly),
    computed("FactorGreen", "Double", address(GetFactorB), address(SetFactorB), kDesktopOnly),
};

REALmethodDefinition gSepiaMethods[] = {
    method(address(SepiaClose), "Close", kDesktopOnly),
    method(address(SepiaRun), "Run as boolean", kDesktopOnly),
};

// ---- Classes ----

REALclassDefinition classRecord(const char* name, uint32_t flags, REALmethodDefinition* methods,
                                int32_t methodCount) {
  REALclassDefinition record = {};
  record.version = kRecordVersion;
  record.name = name;
  record.flags = flags;
  record.methods = methods;
  record.methodCount = methodCount;
  return record;
}

template <typename Data>
REALclassDefinition filterClass(REALclassDefinition record, REALproperty* properties, int32_t propertyCount,
                                void* constructor, void* destructor) {
  record.dataSize = sizeof(Data);
  record.properties = properties;
  record.propertyCount = propertyCount;
  record.constructor = constructor;
  record.destructor = destructor;
  return record;
}

REALclassDefinition gPictureExtension =
    classRecord("Picture", kFlagConsoleSafe, gPictureMethods, countOf(gPictureMethods));

}  // namespace

REALclassDefinition gLut3DClass = filterClass<PictureLut3DData>(
    classRecord("PictureLut3DZVR", kFlagConsoleSafe, gLut3DMethods, countOf(gLut3DMethods)), gLut3DProperties,
    countOf(gLut3DProperties), address(Lut3DConstructor), address(Lut3DClose));

REALclassDefinition gSepiaClass = filterClass<PictureSepiaData>(
    classRecord("PictureSepiaZVR", 0, gSepiaMethods, countOf(gSepiaMethods)), gSepiaProperties,
    countOf(gSepiaProperties), address(SepiaConstructor), address(SepiaClose));

namespace {

// Registration changes the records in place. Each entry restores them to what is written here.
template <auto& records>
void restore() {
  static std::remove_reference_t<decltype(records)> written;
  static bool isKept;
  if (isKept) {
    memcpy(&records, &written, sizeof records);
  } else {
    memcpy(&written, &records, sizeof records);
  }
  isKept = true;
}

template <auto&... tables>
void restoreAll() {
  (restore<tables>(), ...);
}

}  // namespace

void PluginEntry() {
  restoreAll<gPictureMethods, gGlobalMethods, gLut3DProperties, gLut3DMethods, gSepiaProperties,
             gSepiaMethods, gPictureExtension, gLut3DClass, gSepiaClass>();
  MyPluginStart("Picture", "$$ Plugin version: 13.4 (2013) $$");
  FixConsoleFlags(&gSepiaClass);
  FixConsoleFlags(&gLut3DClass);
  FixConsoleFlags(&gPictureExtension);
  FixConsoleFlags(gGlobalMethods, countOf(gGlobalMethods));
  MyREALRegisterClass(&gSepiaClass);
  MyREALRegisterClass(&gLut3DClass);
  MyREALRegisterClassExtension(&gPictureExtension);
  MyREALRegisterMethodArray(gGlobalMethods, countOf(gGlobalMethods));
  MyPluginEnde();
}
