#include <fmt/format.h>

#include <rasterkit/codecs/rows/plausible_size.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/graphics/metafile.h>
#include <rasterkit/graphics/metafile_size.h>
#include <rasterkit/metafiles/play_metafile.h>
#include <rasterkit/metafiles/records/metafile_units.h>
#include <rasterkit/metafiles/wmf/wmf_to_emf.h>
#include <rasterkit/metafiles/wmf/wmf_writer.h>
#include <rasterkit/raster/convert.h>
#include <rasterkit/raster/fill.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {

std::span<const uint8_t> TMetafile::Bytes() const {
  return bytes_ ? std::span<const uint8_t>(*bytes_) : std::span<const uint8_t>();
}

void TMetafile::RequireRecords() const {
  if (!bytes_) throw UnsupportedError("a metafile without records cannot be drawn");
}

bool detail::IsDrawingPlausible(uint64_t width, uint64_t height, uint64_t fileBytes) {
  // Records paint areas of any size, so there is no largest ratio; drawings that fill such a sheet
  // have far more records.
  constexpr uint64_t kPixelBytes = 4, kPixelsPerByte = 1024;
  const uint64_t pixels = width * height;
  return !CurrentLimits().refuseImplausible || pixels <= detail::kAlwaysPlausible / kPixelBytes ||
         pixels / kPixelsPerByte <= fileBytes;
}

bool TMetafile::IsSizePlausible() const {
  return detail::IsDrawingPlausible(static_cast<uint64_t>(Width()), static_cast<uint64_t>(Height()),
                                    Bytes().size());
}

void TMetafile::RequirePlausibleSize() const {
  if (IsSizePlausible()) return;
  throw LimitError(fmt::format(
      "metafile: its own size of {} x {} pixels is far too large for a file of {} bytes", Width(),
      Height(), Bytes().size()));
}

void TMetafile::LoadFromStream(TStream& stream) {
  const LimitsScope limits;
  auto bytes = std::make_shared<const std::vector<uint8_t>>(stream.ReadToEnd());
  facts_ = ReadMetafileFacts(*bytes);
  bytes_ = std::move(bytes);
  enhanced_ = facts_.kind == MetafileKind::emf;
  modified_ = false;
}

void TMetafile::SaveToStream(TStream& stream) {
  if (!bytes_) throw FormatError("metafile: it has no records to save");
  const bool areEnhanced = facts_.kind == MetafileKind::emf;
  if (enhanced_ == areEnhanced) {
    stream.Write(*bytes_);
  } else if (enhanced_) {
    stream.Write(detail::ConvertWmfToEmf(*bytes_, facts_));
  } else {
    RequirePlausibleSize();
    stream.Write(detail::EncodeWmf(Draw(Width(), Height()), facts_.widthMm100, facts_.heightMm100));
  }
}

Raster TMetafile::Draw(int width, int height, TColor background,
                       const std::function<bool()>& keepGoing,
                       std::vector<std::string>* warnings) const {
  RequireRecords();
  if (width < 1 || height < 1) {
    throw RangeError("a metafile needs at least 1 x 1 pixels to be drawn");
  }
  Raster raster(pf32bit, width, height);
  FillRaster(raster, {0, 0, width, height}, background);
  const PlayReport report = PlayMetafile(*bytes_, facts_, raster, {0, 0, width, height}, keepGoing);
  if (warnings != nullptr) {
    warnings->insert(warnings->end(), report.warnings.begin(), report.warnings.end());
  }
  return raster;
}

void TMetafile::DrawTo(TCanvas& canvas, const TRect& place) const {
  if (bytes_) canvas.DrawMetafile(place, *bytes_, facts_);
}

void TMetafile::AssignToBitmap(TBitmap& target) const {
  RequireRecords();
  RequirePlausibleSize();
  TBitmap drawn(ConvertRaster(Draw(Width(), Height()), pf24bit));
  drawn.SetDpi({detail::kMetafileDpi, detail::kMetafileDpi});
  drawn.AssignTransparency(*this);
  target.Assign(&drawn);
}

void TMetafile::AssignFrom(const TGraphic& source) {
  const auto* metafile = dynamic_cast<const TMetafile*>(&source);
  if (metafile == nullptr) throw UnsupportedError("a picture cannot become a metafile");
  bytes_ = metafile->bytes_;
  facts_ = metafile->facts_;
}

void TMetafile::Clear() {
  bytes_.reset();
  facts_ = {};
}

}  // namespace rasterkit
