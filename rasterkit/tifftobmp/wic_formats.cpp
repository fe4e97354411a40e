#include <algorithm>
#include <array>

#include <rasterkit/tifftobmp/wic_formats.h>

namespace rasterkit::detail {
namespace {

struct FormatRow {
  WICPixelFormat format;
  BitmapTraits traits;
};

constexpr FrameMark kNone = FrameMark::none;
constexpr FrameMark kGray = FrameMark::gray;
constexpr FrameMark kAlpha = FrameMark::alpha;

constexpr std::array kFormatTable = {
    FormatRow{GUID_WICPixelFormatBlackWhite, {1, kNone, ffNoFloat}},
    FormatRow{GUID_WICPixelFormat1bppIndexed, {1, kNone, ffNoFloat}},
    FormatRow{GUID_WICPixelFormat4bppIndexed, {4, kNone, ffNoFloat}},
    FormatRow{GUID_WICPixelFormat8bppIndexed, {8, kNone, ffNoFloat}},
    FormatRow{GUID_WICPixelFormat24bppBGR, {24, kNone, ffNoFloat}},
    FormatRow{GUID_WICPixelFormat24bppRGB, {24, kNone, ffNoFloat}},
    FormatRow{GUID_WICPixelFormat32bppBGR, {32, kNone, ffNoFloat}},
    FormatRow{GUID_WICPixelFormat32bppBGRA, {32, kAlpha, ffNoFloat}},
    FormatRow{GUID_WICPixelFormat32bppGrayFloat, {32, kNone, ffSingle}},
    FormatRow{GUID_WICPixelFormat4bppGray, {4, kGray, ffNoFloat}},
    FormatRow{GUID_WICPixelFormat8bppGray, {8, kGray, ffNoFloat}},
    FormatRow{GUID_WICPixelFormat16bppBGR555, {16, kNone, ffNoFloat}},
    FormatRow{GUID_WICPixelFormat16bppBGR565, {16, kNone, ffNoFloat}},
    FormatRow{GUID_WICPixelFormat16bppGray, {16, kNone, ffWord}},
    FormatRow{GUID_WICPixelFormat16bppGrayFixedPoint, {16, kNone, ffSmallInt}},
    FormatRow{GUID_WICPixelFormat16bppGrayHalf, {16, kNone, ffSmallInt}},
};

}  // namespace

BitmapTraits TraitsOf(WICPixelFormat format) {
  const auto* row = std::find_if(kFormatTable.begin(), kFormatTable.end(),
                                 [format](const FormatRow& r) { return r.format == format; });
  return row == kFormatTable.end() ? kConvertedFrame : row->traits;
}

}  // namespace rasterkit::detail
