#include <algorithm>
#include <array>

#include <rasterkit/tifftobmp/wic_formats.h>

namespace rasterkit::detail {
namespace {

struct FormatRow {
  WICPixelFormat format;
  BitmapTraits traits;
};

constexpr FrameMark none = FrameMark::none;
constexpr FrameMark gray = FrameMark::gray;
constexpr FrameMark alpha = FrameMark::alpha;

constexpr std::array kFormatTable = {
    FormatRow{GUID_WICPixelFormatBlackWhite, {1, none, ffNoFloat}},
    FormatRow{GUID_WICPixelFormat1bppIndexed, {1, none, ffNoFloat}},
    FormatRow{GUID_WICPixelFormat4bppIndexed, {4, none, ffNoFloat}},
    FormatRow{GUID_WICPixelFormat8bppIndexed, {8, none, ffNoFloat}},
    FormatRow{GUID_WICPixelFormat24bppBGR, {24, none, ffNoFloat}},
    FormatRow{GUID_WICPixelFormat24bppRGB, {24, none, ffNoFloat}},
    FormatRow{GUID_WICPixelFormat32bppBGR, {32, none, ffNoFloat}},
    FormatRow{GUID_WICPixelFormat32bppBGRA, {32, alpha, ffNoFloat}},
    FormatRow{GUID_WICPixelFormat32bppGrayFloat, {32, none, ffSingle}},
    FormatRow{GUID_WICPixelFormat4bppGray, {4, gray, ffNoFloat}},
    FormatRow{GUID_WICPixelFormat8bppGray, {8, gray, ffNoFloat}},
    FormatRow{GUID_WICPixelFormat16bppBGR555, {16, none, ffNoFloat}},
    FormatRow{GUID_WICPixelFormat16bppBGR565, {16, none, ffNoFloat}},
    FormatRow{GUID_WICPixelFormat16bppGray, {16, none, ffWord}},
    FormatRow{GUID_WICPixelFormat16bppGrayFixedPoint, {16, none, ffSmallInt}},
    FormatRow{GUID_WICPixelFormat16bppGrayHalf, {16, none, ffSmallInt}},
};

}  // namespace

BitmapTraits TraitsOf(WICPixelFormat format) {
  const auto* row = std::find_if(kFormatTable.begin(), kFormatTable.end(),
                                 [format](const FormatRow& r) { return r.format == format; });
  return row == kFormatTable.end() ? kConvertedFrame : row->traits;
}

}  // namespace rasterkit::detail
