#include <algorithm>
#include <cstring>

#include <rasterkit/codecs/tiff/pages/block_rows.h>
#include <rasterkit/codecs/tiff/tiff_numbers.h>
#include <rasterkit/kernels/rows/convert_rows.h>
#include <rasterkit/kernels/rows/exchange_red_blue.h>

namespace rasterkit::detail {

namespace {

/// Copies samples of `bytes` bytes between places that are `from` and `to` bytes apart.
template <size_t bytes>
void CopySpread(const uint8_t* source, size_t from, uint8_t* target, size_t to, size_t count) {
  for (size_t i = 0; i < count; i++, source += from, target += to) {
    std::memcpy(target, source, bytes);
  }
}

void CopySamples(size_t bytes, const uint8_t* source, size_t from, uint8_t* target, size_t to,
                 size_t count) {
  if (from == bytes && to == bytes) {
    std::memcpy(target, source, count * bytes);
    return;
  }
  switch (bytes) {
    case 1:
      return CopySpread<1>(source, from, target, to, count);
    case 2:
      return CopySpread<2>(source, from, target, to, count);
    case 4:
      return CopySpread<4>(source, from, target, to, count);
    default:
      return CopySpread<8>(source, from, target, to, count);
  }
}

uint32_t LoadNumber(const uint8_t* bytes, size_t count) {
  switch (count) {
    case 1:
      return *bytes;
    case 2: {
      uint16_t word;
      std::memcpy(&word, bytes, sizeof word);
      return word;
    }
    default: {
      uint32_t number;
      std::memcpy(&number, bytes, sizeof number);
      return number;
    }
  }
}

/// Writes the low bits of numbers one after the other, the high bit first; the last byte is filled
/// with zeros.
void PackBits(const uint8_t* numbers, size_t bytes, int bits, size_t count, uint8_t* target) {
  uint64_t waiting = 0;
  int held = 0;
  for (size_t i = 0; i < count; i++, numbers += bytes) {
    const uint64_t mask = (uint64_t{1} << bits) - 1;
    waiting = waiting << bits | (LoadNumber(numbers, bytes) & mask);
    for (held += bits; held >= 8; held -= 8) {
      *target++ = static_cast<uint8_t>(waiting >> (held - 8));
    }
  }
  if (held > 0) *target = static_cast<uint8_t>(waiting << (8 - held));
}

}  // namespace

std::span<uint8_t> BlockRows::Block(uint32_t block) {
  const uint32_t plane = block / plan_.BlocksOfPlane(), place = block % plan_.BlocksOfPlane();
  const uint32_t x = place % plan_.Across() * plan_.BlockWidth();
  const uint32_t y = place / plan_.Across() * plan_.BlockHeight();
  const uint32_t columns = std::min(plan_.BlockWidth(), plan_.width - x);
  const uint32_t there = std::min(plan_.BlockHeight(), plan_.height - y);
  const uint32_t rows = plan_.IsTiled() ? plan_.BlockHeight() : there;
  const auto rowBytes = static_cast<size_t>(plan_.BlockRowBytes());
  const size_t bytes = rowBytes * rows;
  if (rows_.Size() < bytes) rows_ = PixelMemory(bytes);
  uint8_t* target = rows_.Data();
  for (uint32_t i = 0; i < rows; i++, target += rowBytes) {
    if (i >= there) {
      std::memcpy(target, target - rowBytes, rowBytes);
      continue;
    }
    WriteRow(y + i, plane, x, columns, target);
    ExtendRow(columns, target);
  }
  return {rows_.Data(), bytes};
}

/// Fills a row of a tile beyond the edge of the picture.
void BlockRows::ExtendRow(uint32_t count, uint8_t* row) const {
  const size_t bits = size_t{plan_.BlockSamples()} * plan_.bits;
  const auto rowBytes = static_cast<size_t>(plan_.BlockRowBytes());
  const size_t used = (count * bits + 7) / 8;
  if (used == rowBytes) return;
  if (bits % 8 != 0) {
    std::memset(row + used, 0, rowBytes - used);
    return;
  }
  const size_t pixelBytes = bits / 8;
  for (size_t at = used; at < rowBytes; at++) row[at] = row[at - pixelBytes];
}

void BlockRows::WriteRow(uint32_t y, uint32_t plane, uint32_t x, uint32_t count, uint8_t* target) {
  y -= top_;
  if (const auto* raster = std::get_if<Raster>(pixels_)) {
    WriteRasterRow(*raster, y, plane, x, count, target);
  } else {
    WriteSampleRow(std::get<Samples>(*pixels_), y, plane, x, count, target);
  }
}

void BlockRows::WriteRasterRow(const Raster& raster, uint32_t y, uint32_t plane, uint32_t x,
                               uint32_t count, uint8_t* target) {
  const uint8_t* row = raster.Row(static_cast<int>(y));
  if (plan_.samples == 1) {
    // Tiles begin at whole bytes: they are a multiple of 16 wide.
    const size_t bytes = (size_t{count} * plan_.bits + 7) / 8;
    std::memcpy(target, row + size_t{x} * plan_.bits / 8, bytes);
    if (!plan_.isInverted) return;
    for (size_t i = 0; i < bytes; i++) target[i] = static_cast<uint8_t>(~target[i]);
    const size_t unused = bytes * 8 - size_t{count} * plan_.bits;
    target[bytes - 1] = static_cast<uint8_t>(target[bytes - 1] >> unused << unused);
    return;
  }
  const size_t step = raster.Format() == pf32bit ? 4 : 3;
  row += x * step;
  const size_t samples = plan_.samples;
  const auto place = [](size_t sample) { return sample < 3 ? 2 - sample : sample; };
  if (plan_.form.isPlanar) return CopySamples(1, row + place(plane), step, target, 1, count);
  if (samples == 4) return kernels::ExchangeRedBlue32(row, count, target);
  if (step == 3) return kernels::ExchangeRedBlue24(row, count, target);
  kernels::Row32To24(row, count, target);
  kernels::ExchangeRedBlue24(target, count, target);
}

void BlockRows::WriteSampleRow(const Samples& samples, uint32_t y, uint32_t plane, uint32_t x,
                               uint32_t count, uint8_t* target) {
  const size_t bytes = BytesOf(samples.Layout().type);
  const size_t wanted = plan_.BlockSamples();
  const bool isWhole = plan_.bits == 8 * bytes;
  uint8_t* whole = target;
  if (!isWhole) {
    gathered_.resize(count * wanted * bytes);
    whole = gathered_.data();
  }
  const auto row = static_cast<int>(y);
  const size_t step = samples.PixelBytes();
  const bool isInPlanes = samples.Planes() > 1;
  if (!plan_.form.isPlanar && !isInPlanes) {
    std::memcpy(whole, samples.Row(row) + x * step, count * step);
  } else {
    for (size_t i = 0; i < wanted; i++) {
      const size_t band = plan_.form.isPlanar ? plane : i;
      const uint8_t* source =
          isInPlanes ? samples.Row(row, static_cast<int>(band)) : samples.Row(row) + band * bytes;
      CopySamples(bytes, source + x * step, step, whole + i * bytes, wanted * bytes, count);
    }
  }
  if (isWhole) return;
  if (plan_.bits != 24) return PackBits(whole, bytes, plan_.bits, count * wanted, target);
  for (size_t i = 0; i < count * wanted; i++) {
    StoreTriple(LoadNumber(whole + i * bytes, bytes), target + 3 * i);
  }
}

}  // namespace rasterkit::detail
