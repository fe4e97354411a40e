#include "tests/codecs/png/made_png.h"

#include <algorithm>

#include <zlib.h>

namespace rasterkit::test {
namespace {

int BandsOfType(int colorType) {
  constexpr int kBands[] = {1, 0, 3, 1, 2, 0, 4};
  return kBands[colorType];
}

ByteList Deflated(const ByteList& rows) {
  uLongf size = compressBound(static_cast<uLong>(rows.size()));
  ByteList packed(size);
  compress2(packed.data(), &size, rows.data(), static_cast<uLong>(rows.size()), 6);
  packed.resize(size);
  return packed;
}

}  // namespace

MadePng::MadePng(const MadeKind& kind, int width, int height, std::mt19937& random)
    : kind_(kind),
      width_(width),
      height_(height),
      stride_((static_cast<size_t>(width) * static_cast<size_t>(kind.bits) *
                   static_cast<size_t>(BandsOfType(kind.colorType)) +
               7) /
                  8 +
              1) {
  const auto number = [&](unsigned most) { return static_cast<uint8_t>(random() % most); };
  for (int y = 0; y < height; y++) {
    rows_.push_back(number(5));
    for (size_t i = 1; i < stride_; i++) rows_.push_back(number(random() % 3 == 0 ? 256 : 6));
  }
  if (kind.colorType == 3) {
    ByteList palette(3 * (1 + random() % (size_t{1} << kind.bits)));
    for (uint8_t& byte : palette) byte = number(256);
    before_ = PngChunk("PLTE", palette);
  }
  const bool hasKey = random() % 2 == 0 && kind.colorType < 4;
  if (!hasKey) return;
  ByteList key;
  if (kind.colorType == 3) {
    const size_t entries = (before_.size() - 12) / 3;
    for (size_t i = 1 + random() % entries; i > 0; i--) {
      key.push_back(random() % 3 == 0 ? number(256) : random() % 2 == 0 ? 255 : 0);
    }
  } else {
    for (int band = 0; band < BandsOfType(kind.colorType); band++) {
      key.push_back(kind.bits == 16 ? number(6) : uint8_t{0});
      key.push_back(number(kind.bits >= 8 ? 6u : 1u << kind.bits));
    }
  }
  before_ = before_ + PngChunk("tRNS", key);
}

void MadePng::SetFilters(uint8_t filter) {
  for (size_t at = 0; at < rows_.size(); at += stride_) rows_[at] = filter;
}

void MadePng::Split(size_t pieceBytes, bool withEmpty) {
  pieceBytes_ = pieceBytes;
  withEmpty_ = withEmpty;
}

void MadePng::AddFlaw(MadeFlaw flaw, std::mt19937& random) {
  hasFlaw_ = true;
  flaw_ = flaw;
  const size_t row = random() % static_cast<size_t>(height_);
  if (flaw == MadeFlaw::wrongFilter) rows_[row * stride_] = static_cast<uint8_t>(5 + row);
  if (flaw == MadeFlaw::fewerRows) rows_.resize(rows_.size() - 1 - row * stride_);
  if (flaw == MadeFlaw::moreRows) rows_.push_back(0);
}

ByteList MadePng::Packed() const {
  ByteList packed = Deflated(rows_);
  if (Has(MadeFlaw::wrongSum)) packed.back() ^= 1;
  if (Has(MadeFlaw::moreData)) packed.push_back(0);
  if (Has(MadeFlaw::cutData)) packed.resize(packed.size() - 5);
  if (Has(MadeFlaw::smallWindow)) {
    // A window of 256 bytes, with the check bits that belong to it.
    packed[0] = 0x08;
    packed[1] = 0x1D;
  }
  return packed;
}

ByteList MadePng::File() const {
  ByteList file = PngSignature() +
                  PngHeader(static_cast<uint32_t>(width_), static_cast<uint32_t>(height_),
                            kind_.bits, kind_.colorType) +
                  before_;
  const ByteList packed = Packed();
  const size_t step = pieceBytes_ == 0 ? (packed.size() + 1) / 2 : pieceBytes_;
  for (size_t at = 0; at < packed.size(); at += step) {
    const auto start = packed.begin() + static_cast<long>(at);
    ByteList data(start, start + static_cast<long>(std::min(step, packed.size() - at)));
    if (withEmpty_) file = file + PngChunk("IDAT", {});
    file = file + PngChunk("IDAT", data);
    if (Has(MadeFlaw::wrongChunkSum)) file.back() ^= 1;
    if (Has(MadeFlaw::chunkBetweenData)) file = file + PngChunk("tEXt", {'a', 0, 'b'});
  }
  if (Has(MadeFlaw::emptyDataBehind)) file = file + PngChunk("IDAT", {});
  if (Has(MadeFlaw::criticalChunkBehind)) file = file + PngChunk("ABCD", {1, 2});
  if (Has(MadeFlaw::wrongSumBehind)) {
    file = file + PngChunk("tIME", {1, 2, 3, 4, 5, 6, 7});
    file.back() ^= 1;
  }
  if (Has(MadeFlaw::fullEnd)) {
    file = file + PngChunk("IEND", {1});
  } else if (!Has(MadeFlaw::noEnd)) {
    file = file + PngEnd();
  }
  if (Has(MadeFlaw::cutFile)) file.resize(file.size() - packed.size() / 2 - 12);
  return file;
}

std::string MadePng::Name() const {
  return std::to_string(kind_.bits) + " bits, color type " + std::to_string(kind_.colorType) +
         ", " + std::to_string(width_) + " x " + std::to_string(height_);
}

}  // namespace rasterkit::test
