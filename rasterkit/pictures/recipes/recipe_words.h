#pragma once

#include <rasterkit/pictures/recipes/recipe.h>

/// The words of recipes for values of enumerations: those that the options of the command line
/// have.
namespace rasterkit::detail {

template <class Value>
struct Word {
  const char* name;
  Value value;
};

inline constexpr Word<LengthUnit> kUnitWords[] = {{"px", LengthUnit::pixels},
                                                  {"percent", LengthUnit::percent},
                                                  {"mm", LengthUnit::millimeters},
                                                  {"map", LengthUnit::map}};
inline constexpr Word<LengthUnit> kSizeUnitWords[] = {
    {"px", LengthUnit::pixels}, {"percent", LengthUnit::percent}, {"mm", LengthUnit::millimeters}};
inline constexpr Word<Outside> kOutsideWords[] = {{"refuse", Outside::refuse},
                                                  {"clip", Outside::clip}};
inline constexpr Word<MirrorAxis> kAxisWords[] = {{"left-right", MirrorAxis::leftRight},
                                                  {"top-bottom", MirrorAxis::topBottom}};
inline constexpr Word<Filter> kFilterWords[] = {{"auto", Filter::automatic},
                                                {"nearest", Filter::nearest},
                                                {"linear", Filter::linear},
                                                {"area", Filter::area}};
inline constexpr Word<Fill::Kind> kFillWords[] = {
    {"color", Fill::Kind::color},    {"transparent", Fill::Kind::transparent},
    {"nodata", Fill::Kind::noData},  {"edge", Fill::Kind::edge},
    {"auto", Fill::Kind::automatic}, {"usual", Fill::Kind::usual}};
inline constexpr Word<CombineMode> kCombineWords[] = {
    {"auto", CombineMode::automatic},          {"key", CombineMode::key},
    {"transparent", CombineMode::transparent}, {"shadow", CombineMode::shadow},
    {"overwrite", CombineMode::overwrite},     {"into-white", CombineMode::intoWhite},
    {"watermark", CombineMode::watermark},     {"grid", CombineMode::grid}};
inline constexpr Word<CombineAlign> kAlignWords[] = {
    {"auto", CombineAlign::automatic}, {"map", CombineAlign::map}, {"none", CombineAlign::none}};
inline constexpr Word<NumberStretch::Kind> kStretchWords[] = {
    {"auto", NumberStretch::Kind::automatic},
    {"minmax", NumberStretch::Kind::minMax},
    {"percent", NumberStretch::Kind::percent},
    {"fixed", NumberStretch::Kind::fixed},
    {"full", NumberStretch::Kind::full}};
inline constexpr Word<TiffCompression> kCompressionWords[] = {
    {"standard", TiffCompression::standard}, {"none", TiffCompression::none},
    {"lzw", TiffCompression::lzw},           {"deflate", TiffCompression::deflate},
    {"packbits", TiffCompression::packBits}, {"g4", TiffCompression::group4}};
inline constexpr Word<Lossless> kLosslessWords[] = {
    {"exact", Lossless::exact}, {"trim", Lossless::trim}, {"off", Lossless::off}};
inline constexpr Word<RecipeSave::Keep> kKeepWords[] = {
    {"keep", RecipeSave::Keep::all},
    {"without-gps", RecipeSave::Keep::withoutGps},
    {"nothing", RecipeSave::Keep::nothing}};
/// Of the types that can be written.
inline constexpr Word<PictureType> kTypeWords[] = {{"bmp", PictureType::bmp},
                                                   {"jpeg", PictureType::jpeg},
                                                   {"png", PictureType::png},
                                                   {"tiff", PictureType::tiff}};

/// Sampling of the colors of JPEG files.
struct Sampling {
  int x = 0, y = 0;
  friend bool operator==(const Sampling&, const Sampling&) = default;
};
inline constexpr Word<Sampling> kSamplingWords[] = {
    {"4:4:4", {1, 1}}, {"4:2:2", {2, 1}}, {"4:2:0", {2, 2}}, {"4:4:0", {1, 2}}, {"4:1:1", {4, 1}}};

}  // namespace rasterkit::detail
