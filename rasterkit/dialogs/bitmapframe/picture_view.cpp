#include <algorithm>
#include <cstring>

#include <rasterkit/dialogs/bitmapframe/picture_view.h>
#include <rasterkit/graphics/canvas.h>

namespace rasterkit {
namespace {

constexpr int kSamplesPerSide = 64;

bool SameRect(const TRect& a, const TRect& b) {
  return a.Left == b.Left && a.Top == b.Top && a.Right == b.Right && a.Bottom == b.Bottom;
}

bool SameWindow(const PictureView::Window& a, const PictureView::Window& b) {
  return a.width == b.width && a.height == b.height && a.background == b.background &&
         SameRect(a.place, b.place);
}

/// Returns the visible part of the place.
TRect Seen(const PictureView::Window& window) {
  return {std::max(window.place.Left, 0), std::max(window.place.Top, 0),
          std::min(window.place.Right, window.width), std::min(window.place.Bottom, window.height)};
}

/// Returns the source pixel under the center of window pixel `i` along one axis: the rule by which
/// canvases stretch.
int SourceUnder(int i, int start, int end, int sourceSize) {
  const int64_t length = int64_t{end} - start;
  return static_cast<int>((2 * (int64_t{i} - start) + 1) * sourceSize / (2 * length));
}

/// Halves each color channel; alpha stays.
uint32_t Halved(uint32_t pixel) {
  return ((pixel >> 1) & 0x007F7F7F) | (pixel & 0xFF000000);
}

}  // namespace

void PictureView::Show(const TBitmap* picture, unsigned version, const Window& window) {
  const bool isSame =
      isDrawn_ && picture == picture_ && version == version_ && SameWindow(window, window_);
  picture_ = picture;
  version_ = version;
  window_ = window;
  const uint64_t digest = SampleDigest();
  if (isSame && digest == digest_) return;
  digest_ = digest;
  Draw();
}

void PictureView::Forget() {
  isDrawn_ = false;
  picture_ = nullptr;
}

void PictureView::Draw() {
  darkening_.reset();
  brightnessKind_ = -1;
  refinedRows_ = 0;
  isDrawn_ = false;
  plain_.ResetPixels(pf32bit, window_.width, window_.height);
  TCanvas& canvas = plain_.Canvas();
  canvas.Brush.Color = window_.background;
  canvas.FillRect({0, 0, window_.width, window_.height});
  if (picture_ != nullptr) canvas.StretchDraw(window_.place, *picture_);
  isDrawn_ = true;
}

// FNV-1a over a grid of the visible pixels.
uint64_t PictureView::SampleDigest() const {
  uint64_t digest = 14695981039346656037u;
  const auto add = [&](uint64_t value) { digest = (digest ^ value) * 1099511628211u; };
  if (picture_ == nullptr || picture_->Empty()) return digest;
  add(static_cast<uint64_t>(picture_->Width()));
  add(static_cast<uint64_t>(picture_->Height()));
  add(static_cast<uint64_t>(picture_->PixelFormat()));
  const TRect seen = Seen(window_);
  const int width = seen.Right - seen.Left, height = seen.Bottom - seen.Top;
  if (width <= 0 || height <= 0) return digest;
  const TRect& place = window_.place;
  for (int j = 0; j < kSamplesPerSide; ++j) {
    const int row = seen.Top + static_cast<int>(int64_t{j} * height / kSamplesPerSide);
    const int y = SourceUnder(row, place.Top, place.Bottom, picture_->Height());
    for (int i = 0; i < kSamplesPerSide; ++i) {
      const int column = seen.Left + static_cast<int>(int64_t{i} * width / kSamplesPerSide);
      const int x = SourceUnder(column, place.Left, place.Right, picture_->Width());
      add(static_cast<uint64_t>(picture_->Content().PixelColor(x, y)));
    }
  }
  return digest;
}

bool PictureView::CanRefine() const {
  if (!isDrawn_ || picture_ == nullptr || picture_->Empty()) return false;
  const bool isOpaque = !picture_->Transparent() && picture_->AlphaFormat() != afDefined;
  const TRect& place = window_.place;
  return isOpaque && place.Right - place.Left < picture_->Width() &&
         place.Bottom - place.Top < picture_->Height();
}

TRect PictureView::RowsToRefine() const {
  TRect rest = Seen(window_);
  rest.Top = std::max(rest.Top, refinedRows_);
  return rest;
}

bool PictureView::NeedsRefining() const {
  const TRect rest = RowsToRefine();
  return CanRefine() && rest.Left < rest.Right && rest.Top < rest.Bottom;
}

bool PictureView::RefineRows(int count) {
  if (!NeedsRefining()) return false;
  const TRect seen = RowsToRefine();
  const int first = seen.Top, end = std::min(first + count, seen.Bottom);

  TBitmap band;
  band.ResetPixels(pf32bit, window_.width, end - first);
  TRect place = window_.place;
  place.Top -= first;
  place.Bottom -= first;
  band.Canvas().StretchMode = smHalftone;
  band.Canvas().StretchDraw(place, *picture_);
  const size_t start = static_cast<size_t>(seen.Left) * 4;
  const size_t bytes = static_cast<size_t>(seen.Right - seen.Left) * 4;
  for (int y = first; y < end; ++y) {
    std::memcpy(plain_.ScanLine(y) + start, band.ScanLine(y - first) + start, bytes);
  }
  refinedRows_ = end;
  if (darkening_) {
    for (int y = first; y < end; ++y) DarkenRow(y, *darkening_);
  }
  return end < seen.Bottom;
}

const TBitmap& PictureView::Darkened(const DarkedBitmap& darkening) {
  if (darkening_ == darkening) return darkened_;
  darkening_.reset();
  brightnessKind_ = -1;
  darkened_.ResetPixels(pf32bit, plain_.Width(), plain_.Height());
  for (int y = 0; y < plain_.Height(); ++y) DarkenRow(y, darkening);
  darkening_ = darkening;
  return darkened_;
}

void PictureView::DarkenRow(int y, const DarkedBitmap& darkening) {
  const auto* source = reinterpret_cast<const uint32_t*>(plain_.ScanLine(y));
  auto* target = reinterpret_cast<uint32_t*>(darkened_.ScanLine(y));
  const TRect seen = Seen(window_);
  if (picture_ == nullptr || picture_->Empty() || y < seen.Top || y >= seen.Bottom) {
    std::copy_n(source, plain_.Width(), target);
    return;
  }
  MakeBrightness(SourceUnder(y, window_.place.Top, window_.place.Bottom, picture_->Height()),
                 darkening);
  const uint32_t* const stays = brightness_.data();
  for (int x = 0; x < window_.width; ++x) {
    target[x] = (source[x] & stays[x]) | (Halved(source[x]) & ~stays[x]);
  }
}

void PictureView::MakeBrightness(int sourceY, const DarkedBitmap& darkening) {
  const int kind = darkening.RowKind(sourceY);
  if (kind == brightnessKind_) return;
  brightness_.assign(static_cast<size_t>(window_.width), ~uint32_t{0});
  const TRect seen = Seen(window_);
  for (int x = seen.Left; x < seen.Right; ++x) {
    const int sourceX = SourceUnder(x, window_.place.Left, window_.place.Right, picture_->Width());
    if (!darkening.IsLit(sourceX, sourceY)) brightness_[static_cast<size_t>(x)] = 0;
  }
  brightnessKind_ = kind;
}

}  // namespace rasterkit
