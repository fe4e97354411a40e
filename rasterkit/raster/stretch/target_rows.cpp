#include <cstring>
#include <vector>

#include <rasterkit/kernels/rows/convert_rows.h>
#include <rasterkit/raster/fill.h>
#include <rasterkit/raster/nearest_color.h>
#include <rasterkit/raster/pixel_words.h>
#include <rasterkit/raster/row_conversion.h>
#include <rasterkit/raster/stretch/target_rows.h>

namespace rasterkit::detail {
namespace {

using Kind = PixelRule::Kind;

bool SameColor(const RGBArec& a, const RGBArec& b) {
  return a.b == b.b && a.g == b.g && a.r == b.r;
}

const uint8_t* BytesOf(const RGBArec* pixels) {
  return reinterpret_cast<const uint8_t*>(pixels);
}

void PutKeyed(const RGBArec* pixels, size_t count, const RGBArec& key, RGBArec* target) {
  for (size_t i = 0; i < count; ++i) {
    if (!SameColor(pixels[i], key)) target[i] = {pixels[i].b, pixels[i].g, pixels[i].r, 255};
  }
}

void PutOpaque(const RGBArec* pixels, size_t count, RGBArec* target) {
  for (size_t i = 0; i < count; ++i) {
    RGBArec pixel = pixels[i];
    pixel.a = 255;
    target[i] = pixel;
  }
}

void Put32(const RGBArec* pixels, size_t count, const PixelRule& rule, RGBArec* target) {
  switch (rule.kind) {
    case Kind::copy:
      std::memcpy(target, pixels, count * sizeof(RGBArec));
      break;
    case Kind::opaque:
      PutOpaque(pixels, count, target);
      break;
    case Kind::keyed:
      PutKeyed(pixels, count, rule.key, target);
      break;
    case Kind::blend:
      kernels::Blend32Over32(BytesOf(pixels), count, rule.opacity,
                             reinterpret_cast<uint8_t*>(target));
      break;
  }
}

class Rows32 : public TargetRows {
 public:
  Rows32(Raster& target, const PixelRule& rule) : target_(target), rule_(rule) {}

  void Write(int y, int left, int count, const RGBArec* pixels) override {
    Put32(pixels, static_cast<size_t>(count), rule_,
          reinterpret_cast<RGBArec*>(target_.Row(y)) + left);
  }

 private:
  Raster& target_;
  const PixelRule rule_;
};

/// Rows of 15, 16 and 24 bits. Rules that read the target use a row of 32-bit pixels.
class RowsWithoutAlpha : public TargetRows {
 public:
  RowsWithoutAlpha(Raster& target, const PixelRule& rule) : target_(target), rule_(rule) {}

  void Write(int y, int left, int count, const RGBArec* pixels) override {
    const TPixelFormat format = target_.Format();
    uint8_t* row = target_.Row(y) +
                   static_cast<size_t>(left) * static_cast<size_t>(StoredBitsPerPixel(format) / 8);
    if (rule_.kind == Kind::copy || rule_.kind == Kind::opaque) {
      RowFrom32(pixels, format, count, row);
    } else if (rule_.kind == Kind::blend && format == pf24bit) {
      kernels::Blend32Over24(BytesOf(pixels), static_cast<size_t>(count), rule_.opacity, row);
    } else {
      there_.resize(static_cast<size_t>(count));
      RowTo32(row, format, count, noTable_, there_.data());
      Put32(pixels, there_.size(), rule_, there_.data());
      RowFrom32(there_.data(), format, count, row);
    }
  }

 private:
  Raster& target_;
  const PixelRule rule_;
  std::vector<RGBArec> there_;
  PixelTable noTable_{};
};

class IndexedRows : public TargetRows {
 public:
  IndexedRows(Raster& target, const PixelRule& rule)
      : target_(target),
        rule_(rule),
        table_(MakePixelTable(target.palette)),
        nearest_(EntriesInReach(target)),
        indexes_(static_cast<size_t>(target.Width())) {}

  void Write(int y, int left, int count, const RGBArec* pixels) override {
    UnpackIndexes(target_.Row(y), target_.Format(), target_.Width(), indexes_.data());
    uint8_t* index = indexes_.data() + left;
    for (const RGBArec* end = pixels + count; pixels != end; ++pixels, ++index) {
      if (IsLeftOut(*pixels)) continue;
      RGBArec pixel = table_[*index];
      Put32(pixels, 1, rule_, &pixel);
      *index = nearest_.Of(pixel);
    }
    PackIndexes(indexes_.data(), target_.Format(), target_.Width(), target_.Row(y));
  }

 private:
  bool IsLeftOut(const RGBArec& pixel) const {
    if (rule_.kind == Kind::keyed) return SameColor(pixel, rule_.key);
    if (rule_.kind != Kind::blend) return false;
    return rule_.opacity.constant == 0 || (rule_.opacity.pixelAlpha && pixel.a == 0);
  }

  Raster& target_;
  const PixelRule rule_;
  const PixelTable table_;
  NearestColor nearest_;
  std::vector<uint8_t> indexes_;
};

}  // namespace

RGBArec KeyPixel(TColor key, TPixelFormat format) {
  if (format == pf15bit) key = ColorFromWord555(Word555FromColor(key));
  if (format == pf16bit) key = ColorFromWord565(Word565FromColor(key));
  return {static_cast<uint8_t>(key >> 16), static_cast<uint8_t>(key >> 8),
          static_cast<uint8_t>(key), 0};
}

std::unique_ptr<TargetRows> MakeTargetRows(Raster& target, const PixelRule& rule) {
  if (IsIndexed(target.Format())) return std::make_unique<IndexedRows>(target, rule);
  if (target.Format() == pf32bit) return std::make_unique<Rows32>(target, rule);
  return std::make_unique<RowsWithoutAlpha>(target, rule);
}

}  // namespace rasterkit::detail
