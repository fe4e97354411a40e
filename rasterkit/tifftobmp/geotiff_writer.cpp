#include <optional>

#include <rasterkit/codecs/tiff/tiff_encoder.h>
#include <rasterkit/graphics/name_errors.h>
#include <rasterkit/runtime/files/atomic_file.h>
#include <rasterkit/tifftobmp/geotiff_writer.h>

namespace rasterkit {

namespace {

/// Map pixels are larger than this, in map units: a size up to it means "not placed".
constexpr double kSmallestScale = 0.01;

/// The first comparison is negated so that with a NaN width only the height counts.
bool IsPlaced(double scaleX, double scaleY) {
  return !(scaleX <= kSmallestScale) && scaleY > kSmallestScale;
}

void WordsTo24(TBitmap& bitmap) {
  const TPixelFormat stored = bitmap.Content().Format();
  if (stored == pf15bit || stored == pf16bit) bitmap.SetPixelFormat(pf24bit);
}

TiffWriteOptions OptionsFor(bool rgbaData) {
  TiffWriteOptions options;
  options.exchangeRedBlue = rgbaData;
  if (rgbaData) options.compression = TiffCompression::none;
  return options;
}

}  // namespace

void WriteBitmapToTiff(TBitmap& bitmap, TStream& stream, bool rgbaData, double x0, double y0,
                       double scaleX, double scaleY) {
  WordsTo24(bitmap);
  TiffWriteOptions options = OptionsFor(rgbaData);
  if (IsPlaced(scaleX, scaleY)) {
    options.geo = TiffGeoTags{{scaleX, scaleY, 0}, {0, 0, 0, x0, y0, 0}};
  }
  EncodeTiff(bitmap.Content(), stream, options);
}

void WriteBitmapToTiff(TBitmap& bitmap, const std::string& fileName, bool rgbaData, double x0,
                       double y0, double scaleX, double scaleY) {
  detail::NameErrors(fileName, [&] {
    WordsTo24(bitmap);
    AtomicFile file(fileName);
    WriteBitmapToTiff(bitmap, file, rgbaData, x0, y0, scaleX, scaleY);
    file.Commit();
  });
}

}  // namespace rasterkit
