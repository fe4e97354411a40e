#include <algorithm>
#include <iterator>

#include <rasterkit/metadata/edit/exif_tag_table.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit {
namespace {

using enum ExifDirectoryId;
using enum ExifForm;

constexpr ExifTagFact kTags[] = {
    {main, 256, "ImageWidth", "", fixed, 1},
    {main, 257, "ImageLength", "ImageHeight", fixed, 1},
    {main, 258, "BitsPerSample", "", fixed, 0},
    {main, 259, "Compression", "", fixed, 1},
    {main, 262, "PhotometricInterpretation", "", fixed, 1},
    {main, 269, "DocumentName", "", text, 0},
    {main, 270, "ImageDescription", "", text, 0},
    {main, 271, "Make", "", text, 0},
    {main, 272, "Model", "", text, 0},
    {main, 273, "StripOffsets", "", fixed, 0},
    {main, 274, "Orientation", "", word, 1},
    {main, 277, "SamplesPerPixel", "", fixed, 1},
    {main, 278, "RowsPerStrip", "", fixed, 1},
    {main, 279, "StripByteCounts", "", fixed, 0},
    {main, 282, "XResolution", "", fixed, 1},
    {main, 283, "YResolution", "", fixed, 1},
    {main, 285, "PageName", "", text, 0},
    {main, 296, "ResolutionUnit", "", fixed, 1},
    {main, 305, "Software", "", text, 0},
    {main, 306, "DateTime", "ModifyDate", moment, 0},
    {main, 315, "Artist", "", text, 0},
    {main, 316, "HostComputer", "", text, 0},
    {main, 318, "WhitePoint", "", fraction, 2},
    {main, 319, "PrimaryChromaticities", "", fraction, 6},
    {main, 513, "JPEGInterchangeFormat", "ThumbnailOffset", fixed, 1},
    {main, 514, "JPEGInterchangeFormatLength", "ThumbnailLength", fixed, 1},
    {main, 529, "YCbCrCoefficients", "", fixed, 3},
    {main, 531, "YCbCrPositioning", "", fixed, 1},
    {main, 532, "ReferenceBlackWhite", "", fixed, 6},
    {main, 18246, "Rating", "", word, 1},
    {main, 18249, "RatingPercent", "", word, 1},
    {main, 33432, "Copyright", "", text, 0},
    {main, 34665, "ExifIFDPointer", "", fixed, 1},
    {main, 34853, "GPSInfoIFDPointer", "", fixed, 1},
    {main, 40091, "XPTitle", "", wideText, 0},
    {main, 40092, "XPComment", "", wideText, 0},
    {main, 40093, "XPAuthor", "", wideText, 0},
    {main, 40094, "XPKeywords", "", wideText, 0},
    {main, 40095, "XPSubject", "", wideText, 0},

    {exif, 33434, "ExposureTime", "", fraction, 1},
    {exif, 33437, "FNumber", "", fraction, 1},
    {exif, 34850, "ExposureProgram", "", word, 1},
    {exif, 34852, "SpectralSensitivity", "", text, 0},
    {exif, 34855, "PhotographicSensitivity", "ISO", word, 0},
    {exif, 34864, "SensitivityType", "", word, 1},
    {exif, 34865, "StandardOutputSensitivity", "", longNumber, 1},
    {exif, 34866, "RecommendedExposureIndex", "", longNumber, 1},
    {exif, 34867, "ISOSpeed", "", longNumber, 1},
    {exif, 36864, "ExifVersion", "", version, 4},
    {exif, 36867, "DateTimeOriginal", "", moment, 0},
    {exif, 36868, "DateTimeDigitized", "CreateDate", moment, 0},
    {exif, 36880, "OffsetTime", "", offset, 0},
    {exif, 36881, "OffsetTimeOriginal", "", offset, 0},
    {exif, 36882, "OffsetTimeDigitized", "", offset, 0},
    {exif, 37121, "ComponentsConfiguration", "", fixed, 4},
    {exif, 37122, "CompressedBitsPerPixel", "", fraction, 1},
    {exif, 37377, "ShutterSpeedValue", "", signedFraction, 1},
    {exif, 37378, "ApertureValue", "", fraction, 1},
    {exif, 37379, "BrightnessValue", "", signedFraction, 1},
    {exif, 37380, "ExposureBiasValue", "ExposureCompensation", signedFraction, 1},
    {exif, 37381, "MaxApertureValue", "", fraction, 1},
    {exif, 37382, "SubjectDistance", "", fraction, 1},
    {exif, 37383, "MeteringMode", "", word, 1},
    {exif, 37384, "LightSource", "", word, 1},
    {exif, 37385, "Flash", "", word, 1},
    {exif, 37386, "FocalLength", "", fraction, 1},
    {exif, 37396, "SubjectArea", "", fixed, 0},
    {exif, 37500, "MakerNote", "", fixed, 0},
    {exif, 37510, "UserComment", "", comment, 0},
    {exif, 37520, "SubSecTime", "", text, 0},
    {exif, 37521, "SubSecTimeOriginal", "", text, 0},
    {exif, 37522, "SubSecTimeDigitized", "", text, 0},
    {exif, 37888, "AmbientTemperature", "Temperature", signedFraction, 1},
    {exif, 37889, "Humidity", "", fraction, 1},
    {exif, 37890, "Pressure", "", fraction, 1},
    {exif, 37891, "WaterDepth", "", signedFraction, 1},
    {exif, 37892, "Acceleration", "", fraction, 1},
    {exif, 37893, "CameraElevationAngle", "", signedFraction, 1},
    {exif, 40960, "FlashpixVersion", "", version, 4},
    {exif, 40961, "ColorSpace", "", word, 1},
    {exif, 40962, "PixelXDimension", "ExifImageWidth", fixed, 1},
    {exif, 40963, "PixelYDimension", "ExifImageHeight", fixed, 1},
    {exif, 40964, "RelatedSoundFile", "", text, 0},
    {exif, 40965, "InteroperabilityIFDPointer", "", fixed, 1},
    {exif, 41483, "FlashEnergy", "", fraction, 1},
    {exif, 41486, "FocalPlaneXResolution", "", fraction, 1},
    {exif, 41487, "FocalPlaneYResolution", "", fraction, 1},
    {exif, 41488, "FocalPlaneResolutionUnit", "", word, 1},
    {exif, 41492, "SubjectLocation", "", fixed, 2},
    {exif, 41493, "ExposureIndex", "", fraction, 1},
    {exif, 41495, "SensingMethod", "", word, 1},
    {exif, 41728, "FileSource", "", plainByte, 1},
    {exif, 41729, "SceneType", "", plainByte, 1},
    {exif, 41730, "CFAPattern", "", fixed, 0},
    {exif, 41985, "CustomRendered", "", word, 1},
    {exif, 41986, "ExposureMode", "", word, 1},
    {exif, 41987, "WhiteBalance", "", word, 1},
    {exif, 41988, "DigitalZoomRatio", "", fraction, 1},
    {exif, 41989, "FocalLengthIn35mmFilm", "FocalLengthIn35mmFormat", word, 1},
    {exif, 41990, "SceneCaptureType", "", word, 1},
    {exif, 41991, "GainControl", "", word, 1},
    {exif, 41992, "Contrast", "", word, 1},
    {exif, 41993, "Saturation", "", word, 1},
    {exif, 41994, "Sharpness", "", word, 1},
    {exif, 41995, "DeviceSettingDescription", "", fixed, 0},
    {exif, 41996, "SubjectDistanceRange", "", word, 1},
    {exif, 42016, "ImageUniqueID", "", text, 0},
    {exif, 42032, "CameraOwnerName", "OwnerName", text, 0},
    {exif, 42033, "BodySerialNumber", "SerialNumber", text, 0},
    {exif, 42034, "LensSpecification", "LensInfo", fraction, 4},
    {exif, 42035, "LensMake", "", text, 0},
    {exif, 42036, "LensModel", "", text, 0},
    {exif, 42037, "LensSerialNumber", "", text, 0},
    {exif, 42240, "Gamma", "", fraction, 1},

    {gps, 0, "GPSVersionID", "", byte, 4},
    {gps, 1, "GPSLatitudeRef", "", text, 0},
    {gps, 2, "GPSLatitude", "", degrees, 3},
    {gps, 3, "GPSLongitudeRef", "", text, 0},
    {gps, 4, "GPSLongitude", "", degrees, 3},
    {gps, 5, "GPSAltitudeRef", "", byte, 1},
    {gps, 6, "GPSAltitude", "", fraction, 1},
    {gps, 7, "GPSTimeStamp", "", time, 3},
    {gps, 8, "GPSSatellites", "", text, 0},
    {gps, 9, "GPSStatus", "", text, 0},
    {gps, 10, "GPSMeasureMode", "", text, 0},
    {gps, 11, "GPSDOP", "", fraction, 1},
    {gps, 12, "GPSSpeedRef", "", text, 0},
    {gps, 13, "GPSSpeed", "", fraction, 1},
    {gps, 14, "GPSTrackRef", "", text, 0},
    {gps, 15, "GPSTrack", "", fraction, 1},
    {gps, 16, "GPSImgDirectionRef", "", text, 0},
    {gps, 17, "GPSImgDirection", "", fraction, 1},
    {gps, 18, "GPSMapDatum", "", text, 0},
    {gps, 19, "GPSDestLatitudeRef", "", text, 0},
    {gps, 20, "GPSDestLatitude", "", degrees, 3},
    {gps, 21, "GPSDestLongitudeRef", "", text, 0},
    {gps, 22, "GPSDestLongitude", "", degrees, 3},
    {gps, 23, "GPSDestBearingRef", "", text, 0},
    {gps, 24, "GPSDestBearing", "", fraction, 1},
    {gps, 25, "GPSDestDistanceRef", "", text, 0},
    {gps, 26, "GPSDestDistance", "", fraction, 1},
    {gps, 27, "GPSProcessingMethod", "", comment, 0},
    {gps, 28, "GPSAreaInformation", "", comment, 0},
    {gps, 29, "GPSDateStamp", "", day, 0},
    {gps, 30, "GPSDifferential", "", word, 1},
    {gps, 31, "GPSHPositioningError", "", fraction, 1},

    {interop, 1, "InteroperabilityIndex", "InteropIndex", text, 0},
    {interop, 2, "InteroperabilityVersion", "InteropVersion", version, 4},
    {interop, 4096, "RelatedImageFileFormat", "", text, 0},
    {interop, 4097, "RelatedImageWidth", "", fixed, 1},
    {interop, 4098, "RelatedImageLength", "RelatedImageHeight", fixed, 1},
};

}  // namespace

std::span<const ExifTagFact> ExifTags() {
  return kTags;
}

const ExifTagFact* FindExifTag(ExifDirectoryId directory, uint16_t tag) {
  const ExifTagFact* elsewhere = nullptr;
  for (const ExifTagFact& fact : kTags) {
    if (fact.tag != tag) continue;
    if (fact.directory == directory) return &fact;
    // Writers mix up main and EXIF directory. Numbers of the others mean something else there.
    const bool isOfPhotos = fact.directory == main || fact.directory == exif;
    if (isOfPhotos && directory != gps) elsewhere = &fact;
  }
  return elsewhere;
}

const ExifTagFact* FindExifTag(std::string_view name) {
  const auto is = [&](std::string_view other) {
    return !other.empty() && CompareText(other, name) == 0;
  };
  const auto* found =
      std::find_if(std::begin(kTags), std::end(kTags),
                   [&](const ExifTagFact& fact) { return is(fact.name) || is(fact.otherName); });
  return found == std::end(kTags) ? nullptr : found;
}

}  // namespace rasterkit
