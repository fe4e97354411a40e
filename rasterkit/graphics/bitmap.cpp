#include <algorithm>
#include <cstring>
#include <utility>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/canvas.h>
#include <rasterkit/graphics/system_color.h>
#include <rasterkit/raster/convert.h>
#include <rasterkit/raster/fill.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

// pfDevice has no format of its own and is stored as 32-bit.
TPixelFormat StoredFormat(TPixelFormat format) {
  return format == pfDevice ? pf32bit : format;
}

void RequireFormat(TPixelFormat format) {
  if (format > pfCustom) throw RangeError("there is no pixel format " + std::to_string(format));
}

}  // namespace

TBitmap::TBitmap() = default;
TBitmap::~TBitmap() = default;

TBitmap::TBitmap(Raster raster) : raster_(std::move(raster)), format_(raster_.Format()) {
  if (!raster_.transparentColor) return;
  transparency_.isOn = true;
  SetTransparentColor(*std::exchange(raster_.transparentColor, std::nullopt));
}

TBitmap::TBitmap(TBitmap&& other) noexcept
    : TGraphic(std::move(other)),
      raster_(std::move(other.raster_)),
      format_(std::exchange(other.format_, pfDevice)) {
  TakeCanvas(other);
}

TBitmap& TBitmap::operator=(TBitmap&& other) noexcept {
  if (this == &other) return *this;
  // Moves the fields of the base only.
  TGraphic::operator=(static_cast<TGraphic&&>(other));
  raster_ = std::move(other.raster_);
  format_ = std::exchange(other.format_, pfDevice);
  TakeCanvas(other);
  return *this;
}

// An existing canvas stays, because references to it may exist, and takes over pen, brush and
// stretch mode only.
void TBitmap::TakeCanvas(TBitmap& other) noexcept {
  if (!other.canvas_) return;
  if (canvas_) {
    canvas_->Pen = other.canvas_->Pen;
    canvas_->Brush = other.canvas_->Brush;
    canvas_->StretchMode = other.canvas_->StretchMode;
  } else {
    canvas_ = std::move(other.canvas_);
    canvas_->bitmap_ = this;
  }
}

std::unique_ptr<TBitmap> TBitmap::Clone() const {
  auto copy = std::make_unique<TBitmap>();
  AssignToBitmap(*copy);
  if (canvas_) {
    copy->Canvas().Pen = canvas_->Pen;
    copy->Canvas().Brush = canvas_->Brush;
    copy->Canvas().StretchMode = canvas_->StretchMode;
  }
  copy->modified_ = modified_;
  return copy;
}

int TBitmap::Width() const {
  return raster_.Width();
}
int TBitmap::Height() const {
  return raster_.Height();
}

void TBitmap::SetSize(int width, int height) {
  if (width == Width() && height == Height()) return;
  Raster resized(raster_.Format(), width, height);
  resized.CopyProperties(raster_);
  const size_t rowBytes = std::min(raster_.RowBytes(), resized.RowBytes());
  const int rows = rowBytes == 0 ? 0 : std::min(height, Height());
  for (int y = 0; y < rows; ++y) std::memcpy(resized.Row(y), raster_.Row(y), rowBytes);
  FillNewArea(resized, Width(), Height());
  resized.ClearPadding();
  raster_ = std::move(resized);
  modified_ = true;
}

void TBitmap::FillNewArea(Raster& raster, int oldWidth, int oldHeight) const {
  const TColor color = ResolveColor(canvas_ ? canvas_->Brush.Color : clWhite);
  const int sharedHeight = std::min(oldHeight, raster.Height());
  FillRaster(raster, {oldWidth, 0, raster.Width(), sharedHeight}, color);
  FillRaster(raster, {0, sharedHeight, raster.Width(), raster.Height()}, color);
}

TPixelFormat TBitmap::PixelFormat() const {
  return format_;
}

void TBitmap::SetPixelFormat(TPixelFormat format) {
  RequireFormat(format);
  if (format == format_) return;
  if (format != pfCustom && StoredFormat(format) != raster_.Format()) {
    raster_ = ConvertRaster(raster_, StoredFormat(format));
  }
  format_ = format;
  modified_ = true;
}

void TBitmap::ResetPixels(TPixelFormat format, int width, int height) {
  RequireFormat(format);
  const TPixelFormat stored = format == pfCustom ? raster_.Format() : StoredFormat(format);
  if (stored != raster_.Format() || width != Width() || height != Height()) {
    Raster fresh(stored, width, height);
    const HPALETTE palette = stored == raster_.Format() ? raster_.palette : fresh.palette;
    const TAlphaFormat alpha = stored == raster_.Format() ? raster_.alphaFormat : afIgnored;
    fresh.CopyProperties(raster_);
    fresh.palette = palette;
    fresh.alphaFormat = alpha;
    fresh.ClearPadding();
    raster_ = std::move(fresh);
  }
  format_ = format;
  modified_ = true;
}

int TBitmap::StoredBits() const {
  return StoredBitsPerPixel(raster_.Format());
}

uint8_t* TBitmap::ScanLine(int y) {
  return const_cast<uint8_t*>(std::as_const(*this).ScanLine(y));
}

const uint8_t* TBitmap::ScanLine(int y) const {
  if (y < 0 || y >= Height()) {
    throw RangeError("there is no row " + std::to_string(y) + " in a bitmap of " +
                     std::to_string(Height()) + " rows");
  }
  return raster_.Row(y);
}

size_t TBitmap::Stride() const {
  return raster_.Stride();
}

HPALETTE TBitmap::Palette() const {
  return raster_.palette;
}

void TBitmap::SetPalette(HPALETTE palette) {
  raster_.palette = IsIndexed(raster_.Format()) ? std::move(palette) : HPALETTE();
  modified_ = true;
}

TAlphaFormat TBitmap::AlphaFormat() const {
  return raster_.alphaFormat;
}

void TBitmap::SetAlphaFormat(TAlphaFormat format) {
  raster_.alphaFormat = format;
  modified_ = true;
}

Resolution TBitmap::Dpi() const {
  return raster_.resolution;
}

void TBitmap::SetDpi(Resolution resolution) {
  raster_.resolution = resolution;
  modified_ = true;
}

ColorProfile TBitmap::Profile() const {
  return raster_.profile;
}

void TBitmap::SetProfile(ColorProfile profile) {
  raster_.profile = std::move(profile);
  modified_ = true;
}

void TBitmap::CarryFrom(const TBitmap& source, const Carry& carry) {
  const RasterProperties own = raster_.Properties();
  RasterProperties& properties = raster_.Properties();
  properties = source.raster_.Properties();
  const bool hasSameIndexes = IsIndexed(format_) && source.format_ == format_;
  if (!carry.palette || !hasSameIndexes) properties.palette = own.palette;
  if (!carry.resolution) properties.resolution = own.resolution;
  if (carry.resolution && carry.exchangedAxes) {
    std::swap(properties.resolution.x, properties.resolution.y);
  }
  if (!carry.profile) properties.profile = own.profile;
  if (!carry.alphaFormat) properties.alphaFormat = own.alphaFormat;
  // A bitmap keeps its transparency outside the raster.
  properties.transparentColor = own.transparentColor;
  CarryTransparency(source, carry.transparency);
  modified_ = true;
}

void TBitmap::CarryTransparency(const TBitmap& source, CarriedTransparency transparency) {
  switch (transparency) {
    case CarriedTransparency::none:
      return;
    case CarriedTransparency::same:
      return AssignTransparency(source);
    case CarriedTransparency::fixed:
      if (source.Transparent() || source.TransparentMode() == tmFixed) {
        SetTransparentColor(source.TransparentColor());
      }
      SetTransparent(source.Transparent());
  }
}

TColor TBitmap::PixelColor(int x, int y) const {
  if (x < 0 || y < 0 || x >= Width() || y >= Height()) return clBlack;
  return raster_.PixelColor(x, y);
}

TCanvas& TBitmap::Canvas() {
  if (!canvas_) canvas_ = std::make_unique<TCanvas>(*this);
  return *canvas_;
}

const Raster& TBitmap::Content() const {
  return raster_;
}

Raster TBitmap::TakeContent() {
  std::optional<TColor> transparent;
  if (Transparent()) transparent = ResolveColor(TransparentColor());
  Raster content = std::move(raster_);
  content.transparentColor = transparent;
  format_ = pfDevice;
  transparency_ = {};
  modified_ = true;
  return content;
}

void TBitmap::AssignToBitmap(TBitmap& target) const {
  if (&target == this) return;
  target.raster_ = raster_.Clone();
  target.format_ = format_;
  target.AssignTransparency(*this);
  target.modified_ = true;
}

void TBitmap::AssignFrom(const TGraphic& source) {
  source.AssignToBitmap(*this);
}

void TBitmap::Clear() {
  Raster empty(raster_.Format(), 0, 0);
  empty.palette = raster_.palette;
  raster_ = std::move(empty);
}

}  // namespace rasterkit
