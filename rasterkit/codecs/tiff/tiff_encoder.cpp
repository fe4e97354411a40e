#include <algorithm>

#include <rasterkit/codecs/rows/geotiff_tags.h>
#include <rasterkit/codecs/rows/icc_profile.h>
#include <rasterkit/codecs/tiff/tiff_encoder.h>
#include <rasterkit/codecs/tiff/tiff_plan.h>
#include <rasterkit/codecs/tiff/tiff_strip_writer.h>
#include <rasterkit/runtime/files/atomic_file.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {

namespace {

using detail::TiffOutput;
using detail::TiffPlan;

constexpr int kMostThreads = 64;

void SetProfile(TiffOutput& output, const Raster& raster, const TiffPlan& plan) {
  const bool isGray =
      plan.photometric == PHOTOMETRIC_MINISBLACK || plan.photometric == PHOTOMETRIC_MINISWHITE;
  const auto space = isGray ? detail::ProfileSpace::gray : detail::ProfileSpace::rgb;
  if (!detail::ProfileFits(raster.profile, space)) return;
  output.Set(TIFFTAG_ICCPROFILE, static_cast<uint32_t>(raster.profile->size()),
             raster.profile->data());
}

void SetResolution(TiffOutput& output, const Resolution& resolution) {
  if (!resolution.IsKnown()) return;
  output.Set(TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
  output.Set(TIFFTAG_XRESOLUTION, resolution.x);
  output.Set(TIFFTAG_YRESOLUTION, resolution.y);
}

/// libtiff does not know the tags of GeoTIFF; each handle must be told.
void SetGeoTags(TiffOutput& output, const TiffGeoTags& geo) {
  static constexpr TIFFFieldInfo kFields[] = {
      {detail::kPixelScaleTag, -1, -1, TIFF_DOUBLE, FIELD_CUSTOM, 1, 1,
       const_cast<char*>("ModelPixelScaleTag")},
      {detail::kTiePointTag, -1, -1, TIFF_DOUBLE, FIELD_CUSTOM, 1, 1,
       const_cast<char*>("ModelTiepointTag")},
  };
  TIFFMergeFieldInfo(output.Tiff(), kFields, static_cast<uint32_t>(std::size(kFields)));
  output.Set(detail::kPixelScaleTag, static_cast<int>(geo.pixelScale.size()),
             geo.pixelScale.data());
  output.Set(detail::kTiePointTag, static_cast<int>(geo.tiePoint.size()), geo.tiePoint.data());
}

void Encode(const Raster& raster, TStream& stream, const TiffPlan& plan,
            const TiffWriteOptions& options) {
  TiffOutput output(stream, plan.isBig);
  detail::SetStripTags(output, plan);
  detail::SetColorTags(output, plan);
  SetProfile(output, raster, plan);
  SetResolution(output, raster.resolution);
  if (options.geo) SetGeoTags(output, *options.geo);
  detail::WriteStrips(output, raster, plan, std::clamp(options.threads, 1, kMostThreads));
  output.Finish();
}

}  // namespace

void EncodeTiff(const Raster& raster, TStream& stream, const TiffWriteOptions& options) {
  const LimitsScope limits;
  const TiffPlan plan = detail::PlanTiff(raster, options);
  if (IsSeekable(stream)) return Encode(raster, stream, plan, options);
  // The header is completed last.
  TMemoryStream memory;
  Encode(raster, memory, plan, options);
  stream.Write(memory.Bytes());
}

}  // namespace rasterkit
