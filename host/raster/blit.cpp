#include <algorithm>
#include <cstring>
#include <vector>

#include <rasterkit/host/raster/blit.h>
#include <rasterkit/host/raster/nearest_color.h>
#include <rasterkit/host/raster/pixel_words.h>
#include <rasterkit/host/raster/row_conversion.h>

namespace rasterkit {
namespace {

// For target positions `first` to `last - 1` on one axis: the source position under each centre.
std::vector<int> SourcePositions(int start, int end, int first, int last, int sourceSize) {
  const bool mirrored = end < start;
  const int64_t low = std::min(start, end);
  // At least 1: an empty place has no positions, and the division below must know it.
  const int64_t size = std::max<int64_t>(std::max<int64_t>(start, end) - low, 1);
  std::vector<int> positions;
  positions.reserve(static_cast<size_t>(last - first));
  for (int64_t i = first; i < last; ++i) {
    const auto position = static_cast<int>((2 * (i - low) + 1) * sourceSize / (2 * size));
    positions.push_back(mirrored ? sourceSize - 1 - position : position);
  }
  return positions;
}

// The colour that pixels of the key have after they were read from a row of this format.
TColor KeyAsRead(TColor key, TPixelFormat format) {
  if (format == pf15bit) return ColorFromWord555(Word555FromColor(key));
  if (format == pf16bit) return ColorFromWord565(Word565FromColor(key));
  return key;
}

uint8_t Mix(int source, int target, int alpha) {
  return static_cast<uint8_t>((source * alpha + target * (255 - alpha) + 127) / 255);
}

// What to do with a source pixel that meets a target pixel.
class Mixer {
 public:
  Mixer(const Raster& source, std::optional<TColor> key)
      : blend_(source.Format() == pf32bit && source.alphaFormat == afDefined),
        hasKey_(key && !blend_) {
    if (!hasKey_) return;
    const TColor color = KeyAsRead(*key, source.Format());
    key_ = {static_cast<uint8_t>(color >> 16), static_cast<uint8_t>(color >> 8),
            static_cast<uint8_t>(color), 0};
  }

  bool NeedsTarget() const { return blend_ || hasKey_; }

  void Put(const RGBArec& source, RGBArec& target) const {
    if (blend_) {
      const int alpha = source.a;
      target = {Mix(source.b, target.b, alpha), Mix(source.g, target.g, alpha),
                Mix(source.r, target.r, alpha), Mix(255, target.a, alpha)};
    } else if (!IsLeftOut(source)) {
      target = {source.b, source.g, source.r, 255};
    }
  }

  // Whether the target pixel stays exactly as it is.
  bool IsLeftOut(const RGBArec& source) const {
    if (blend_) return source.a == 0;
    return hasKey_ && source.b == key_.b && source.g == key_.g && source.r == key_.r;
  }

 private:
  bool blend_, hasKey_;
  RGBArec key_{};
};

struct Span {
  int left, count;
  const std::vector<int>& columns;
};

class TrueColorWriter {
 public:
  TrueColorWriter(Raster& target, const Mixer& mixer, const Span& span)
      : target_(target), mixer_(mixer), span_(span), pixels_(static_cast<size_t>(span.count)) {}

  void Write(int y, const RGBArec* source) {
    const auto bytes = static_cast<size_t>(StoredBitsPerPixel(target_.Format()) / 8);
    uint8_t* row = target_.Row(y) + static_cast<size_t>(span_.left) * bytes;
    if (mixer_.NeedsTarget()) RowTo32(row, target_.Format(), span_.count, noTable_, pixels_.data());
    for (size_t i = 0; i < pixels_.size(); ++i) mixer_.Put(source[span_.columns[i]], pixels_[i]);
    RowFrom32(pixels_.data(), target_.Format(), span_.count, row);
  }

 private:
  Raster& target_;
  const Mixer& mixer_;
  Span span_;
  std::vector<RGBArec> pixels_;
  PixelTable noTable_{};
};

class IndexedWriter {
 public:
  IndexedWriter(Raster& target, const Mixer& mixer, const Span& span)
      : target_(target),
        mixer_(mixer),
        span_(span),
        table_(MakePixelTable(target.palette)),
        nearest_(EntriesInReach(target)),
        indexes_(static_cast<size_t>(target.Width())) {}

  void Write(int y, const RGBArec* source) {
    UnpackIndexes(target_.Row(y), target_.Format(), target_.Width(), indexes_.data());
    for (int i = 0; i < span_.count; ++i) {
      const RGBArec& from = source[span_.columns[static_cast<size_t>(i)]];
      if (mixer_.IsLeftOut(from)) continue;
      uint8_t& index = indexes_[static_cast<size_t>(span_.left + i)];
      RGBArec pixel = table_[index];
      mixer_.Put(from, pixel);
      index = nearest_.Of(pixel);
    }
    PackIndexes(indexes_.data(), target_.Format(), target_.Width(), target_.Row(y));
  }

 private:
  Raster& target_;
  const Mixer& mixer_;
  Span span_;
  PixelTable table_;
  NearestColor nearest_;
  std::vector<uint8_t> indexes_;
};

template <class Writer>
void WriteRows(Writer&& writer, int top, const std::vector<int>& rows, const Raster& source) {
  const PixelTable table = MakePixelTable(source.palette);
  std::vector<RGBArec> pixels(static_cast<size_t>(source.Width()));
  int loaded = -1;
  for (size_t i = 0; i < rows.size(); ++i) {
    if (rows[i] != loaded) {
      loaded = rows[i];
      RowTo32(source.Row(loaded), source.Format(), source.Width(), table, pixels.data());
    }
    writer.Write(top + static_cast<int>(i), pixels.data());
  }
}

// Indexes as they are, between rasters of one indexed format and palette.
void CopyIndexes(Raster& target, const Span& span, int top, const std::vector<int>& rows,
                 const Raster& source) {
  std::vector<uint8_t> from(static_cast<size_t>(source.Width())),
      to(static_cast<size_t>(target.Width()));
  for (size_t i = 0; i < rows.size(); ++i) {
    uint8_t* row = target.Row(top + static_cast<int>(i));
    UnpackIndexes(source.Row(rows[i]), source.Format(), source.Width(), from.data());
    UnpackIndexes(row, target.Format(), target.Width(), to.data());
    for (int x = 0; x < span.count; ++x)
      to[static_cast<size_t>(span.left + x)] =
          from[static_cast<size_t>(span.columns[static_cast<size_t>(x)])];
    PackIndexes(to.data(), target.Format(), target.Width(), row);
  }
}

// Rows that change neither format nor width nor pixels: moved as bytes.
bool CanMoveBytes(const Raster& target, const PixelRect& place, const Raster& source,
                  const Mixer& mixer) {
  const TPixelFormat format = target.Format();
  const bool samePixels =
      format == source.Format() && (format == pf15bit || format == pf16bit || format == pf24bit);
  return samePixels && !mixer.NeedsTarget() && int64_t{place.right} - place.left == source.Width();
}

void MoveBytes(Raster& target, const Span& span, int top, const std::vector<int>& rows,
               const Raster& source) {
  const auto bytes = static_cast<size_t>(StoredBitsPerPixel(target.Format()) / 8);
  const size_t from = static_cast<size_t>(span.columns.front()) * bytes;
  const size_t to = static_cast<size_t>(span.left) * bytes;
  for (size_t i = 0; i < rows.size(); ++i)
    std::memcpy(target.Row(top + static_cast<int>(i)) + to, source.Row(rows[i]) + from,
                static_cast<size_t>(span.count) * bytes);
}

}  // namespace

void BlitStretched(Raster& target, const PixelRect& place, const Raster& source,
                   std::optional<TColor> key) {
  if (source.Width() == 0 || source.Height() == 0) return;
  const PixelRect covered{std::min(place.left, place.right), std::min(place.top, place.bottom),
                          std::max(place.left, place.right), std::max(place.top, place.bottom)};
  const PixelRect inside = ClipRect(covered, target.Width(), target.Height());
  if (inside.left >= inside.right || inside.top >= inside.bottom) return;

  const std::vector<int> columns =
      SourcePositions(place.left, place.right, inside.left, inside.right, source.Width());
  const std::vector<int> rows =
      SourcePositions(place.top, place.bottom, inside.top, inside.bottom, source.Height());
  const Mixer mixer(source, key);
  const Span span{inside.left, inside.right - inside.left, columns};

  if (CanMoveBytes(target, place, source, mixer)) {
    MoveBytes(target, span, inside.top, rows, source);
  } else if (!IsIndexed(target.Format())) {
    WriteRows(TrueColorWriter(target, mixer, span), inside.top, rows, source);
  } else if (!mixer.NeedsTarget() && target.Format() == source.Format() &&
             target.palette == source.palette) {
    CopyIndexes(target, span, inside.top, rows, source);
  } else {
    WriteRows(IndexedWriter(target, mixer, span), inside.top, rows, source);
  }
}

}  // namespace rasterkit
