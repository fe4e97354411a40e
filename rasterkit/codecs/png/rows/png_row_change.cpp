#include <algorithm>
#include <bit>
#include <cstring>

#include <rasterkit/codecs/png/rows/png_row_change.h>
#include <rasterkit/kernels/rows/exchange_red_blue.h>

namespace rasterkit::detail {
namespace {

constexpr unsigned kByteBits = 8, kWordBits = 16;

/// Rounds value / 257 to nearest.
uint8_t ScaleWord(const uint8_t* word) {
  constexpr uint32_t kHalf = 32895;
  const uint32_t value = uint32_t{word[0]} << kByteBits | word[1];
  return static_cast<uint8_t>((value * 255 + kHalf) >> kWordBits);
}

uint16_t BigEndian16(const uint8_t* word) {
  return static_cast<uint16_t>(word[0] << kByteBits | word[1]);
}

}  // namespace

PngRowChange::PngRowChange(const PngReader& reader, const PngFacts& facts, PngRowKind kind)
    : facts_(facts),
      kind_(kind),
      width_(facts.width),
      rowBytes_((size_t{facts.width} * facts.SampleBits() + 7) / 8),
      bands_(facts.SampleBits() / static_cast<unsigned>(facts.bitDepth)) {
  png_bytep alphas = nullptr;
  int alphaCount = 0;
  png_color_16p color = nullptr;
  const bool hasAlphas =
      png_get_tRNS(reader.Png(), reader.Info(), &alphas, &alphaCount, &color) != 0;
  if (kind == PngRowKind::words && HasPngKeyColor(reader, facts) && color != nullptr) {
    hasKey_ = true;
    key_ = facts.IsGray() ? std::array<uint16_t, 3>{color->gray, 0, 0}
                          : std::array<uint16_t, 3>{color->red, color->green, color->blue};
  }
  if (kind == PngRowKind::paletteAlpha) {
    png_colorp colors = nullptr;
    int count = 0;
    png_get_PLTE(reader.Png(), reader.Info(), &colors, &count);
    for (size_t i = 0; i < table_.size(); i++) {
      table_[i] = {0, 0, 0, 0xFF};
      if (static_cast<int>(i) < count) {
        table_[i] = {colors[i].blue, colors[i].green, colors[i].red, 0xFF};
      }
      if (hasAlphas && alphas != nullptr && static_cast<int>(i) < alphaCount) {
        table_[i][3] = alphas[i];
      }
    }
  }
  if (kind == PngRowKind::colors && facts.bitDepth == 16) scaled_.resize(width_ * bands_);
}

void PngRowChange::Make(const uint8_t* row, uint8_t* target) {
  switch (kind_) {
    case PngRowKind::colors:
      return MakeColors(row, target);
    case PngRowKind::words:
      return MakeWords(row, target);
    case PngRowKind::paletteAlpha:
      return MakePaletteAlpha(row, target);
  }
}

void PngRowChange::MakeColors(const uint8_t* row, uint8_t* target) {
  if (facts_.bitDepth == 16) {
    for (size_t i = 0; i < scaled_.size(); i++) scaled_[i] = ScaleWord(row + 2 * i);
    row = scaled_.data();
  }
  constexpr size_t kGrayAlpha = 2, kColor = 3, kColorAlpha = 4;
  if (bands_ == kColor) {
    kernels::ExchangeRedBlue24(row, width_, target);
  } else if (bands_ == kColorAlpha) {
    kernels::ExchangeRedBlue32(row, width_, target);
  } else if (bands_ == kGrayAlpha) {
    for (size_t x = 0; x < width_; x++, row += 2, target += 4) {
      target[0] = target[1] = target[2] = row[0];
      target[3] = row[1];
    }
  } else {
    std::memcpy(target, row, facts_.bitDepth == 16 ? width_ : rowBytes_);
    if (facts_.bitDepth == 2) ExpandTwoBits(target, static_cast<int>(width_));
  }
}

void PngRowChange::MakeWords(const uint8_t* row, uint8_t* target) const {
  for (size_t x = 0; x < width_; x++) {
    bool isKey = hasKey_;
    for (size_t band = 0; band < bands_; band++, row += 2, target += 2) {
      const uint16_t value = BigEndian16(row);
      isKey = isKey && value == key_[std::min(band, key_.size() - 1)];
      std::memcpy(target, &value, sizeof value);
    }
    if (!hasKey_) continue;
    const uint16_t alpha = isKey ? 0 : 0xFFFF;
    std::memcpy(target, &alpha, sizeof alpha);
    target += 2;
  }
}

void PngRowChange::MakePaletteAlpha(const uint8_t* row, uint8_t* target) const {
  const auto bits = static_cast<unsigned>(facts_.bitDepth);
  const unsigned perByte = kByteBits / bits, mask = (1u << bits) - 1;
  for (size_t x = 0; x < width_; x++, target += 4) {
    const unsigned shift = kByteBits - bits * (static_cast<unsigned>(x % perByte) + 1);
    const unsigned index = unsigned{row[x / perByte]} >> shift & mask;
    std::memcpy(target, table_[index].data(), 4);
  }
}

}  // namespace rasterkit::detail
