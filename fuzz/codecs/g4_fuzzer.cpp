// Any bytes as a strip of ITU-T T.6: rows that are decoded are those of libtiff; if all rows are,
// libtiff has nothing to say. Any bytes as rows: encoded to the bytes of libtiff, and back.
//
// Byte 0: bit 0 is the order of bits, bit 1 says that rows follow. Bytes 1 and 2: the width.

#include <algorithm>

#include <rasterkit/codecs/g4/g4_decoder.h>
#include <rasterkit/codecs/g4/g4_encoder.h>

#include "fuzz/require.h"
#include "tests/codecs/g4/g4_peer.h"

namespace {

using namespace rasterkit;

constexpr size_t kHead = 3;
constexpr int kMostWidth = 6000;
constexpr size_t kMostRows = 40;
constexpr size_t kMostBytes = 4096;

using Bytes = std::vector<uint8_t>;

Bytes Decoded(const Bytes& strip, int width, size_t rows, const detail::G4Bits& bits,
              size_t* regular) {
  const size_t rowBytes = (static_cast<size_t>(width) + 7) / 8;
  Bytes decoded(rows * rowBytes);
  detail::G4Decoder decoder(strip, width, bits);
  *regular = decoder.Decode(decoded.data(), rowBytes, rows);
  return decoded;
}

/// The strip in pieces of a few bytes gives the same rows.
void RequireSamePieces(const Bytes& strip, int width, const detail::G4Bits& bits, const Bytes& rows,
                       size_t regular) {
  const size_t rowBytes = (static_cast<size_t>(width) + 7) / 8;
  size_t at = 0;
  Bytes piece;
  const auto next = [&]() -> std::span<const uint8_t> {
    const size_t count = std::min(strip.size() - at, 1 + at % 11);
    piece.assign(strip.begin() + static_cast<std::ptrdiff_t>(at),
                 strip.begin() + static_cast<std::ptrdiff_t>(at + count));
    piece.shrink_to_fit();
    at += count;
    return piece;
  };
  detail::G4Decoder decoder(next, width, bits);
  Bytes row(rowBytes);
  for (size_t y = 0; y < rows.size() / rowBytes; y++) {
    const bool isRegular = decoder.Decode(row.data());
    Require(isRegular == (y < regular));
    if (!isRegular) return;
    Require(std::equal(row.begin(), row.end(),
                       rows.begin() + static_cast<std::ptrdiff_t>(y * rowBytes)));
  }
}

void DecodeBoth(const Bytes& strip, int width, const detail::G4Bits& bits) {
  const size_t rowBytes = (static_cast<size_t>(width) + 7) / 8;
  size_t regular = 0;
  const Bytes all = Decoded(strip, width, kMostRows, bits, &regular);
  RequireSamePieces(strip, width, bits, all, regular);
  // All regular rows, and one more.
  for (const size_t rows : {regular, std::min(regular + 1, kMostRows)}) {
    if (rows == 0) continue;
    peer::LibtiffDecoder libtiff(width, static_cast<uint32_t>(rows), bits.isLowBitFirst);
    const peer::LibtiffRows peer = libtiff.Decode(strip);
    Require(std::equal(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(regular * rowBytes),
                       peer.rows.begin()));
    if (rows == regular) Require(peer.isWhole && peer.messages == 0);
  }
}

void EncodeBoth(Bytes bytes, int width, const detail::G4Bits& bits) {
  const size_t rowBytes = (static_cast<size_t>(width) + 7) / 8;
  bytes.resize((bytes.size() + rowBytes - 1) / rowBytes * rowBytes);
  const size_t rows = bytes.size() / rowBytes;
  detail::G4Encoder encoder(width, bits);
  encoder.Encode(bytes.data(), rowBytes, rows);
  const Bytes strip = encoder.EndStrip();
  Require(strip == peer::EncodeByLibtiff(bytes, width, bits.isLowBitFirst));
  size_t regular = 0;
  const Bytes decoded = Decoded(strip, width, rows, bits, &regular);
  Require(regular == rows);
  const auto behind = static_cast<uint8_t>(width % 8 != 0 ? 0xFF >> width % 8 : 0);
  for (size_t y = 0; y < rows; y++) {
    uint8_t& last = bytes[(y + 1) * rowBytes - 1];
    last = static_cast<uint8_t>(last & ~behind);
  }
  Require(decoded == bytes);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size <= kHead || size > kMostBytes) return 0;
  const detail::G4Bits bits{(data[0] & 1) != 0, false};
  const int width = 1 + (data[1] << 8 | data[2]) % kMostWidth;
  const Bytes bytes(data + kHead, data + size);
  if ((data[0] & 2) != 0) {
    EncodeBoth(bytes, width, bits);
  } else {
    DecodeBoth(bytes, width, bits);
  }
  return 0;
}
