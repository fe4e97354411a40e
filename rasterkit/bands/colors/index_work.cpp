#include <algorithm>
#include <cstring>
#include <mutex>
#include <utility>
#include <vector>

#include <rasterkit/bands/colors/index_work.h>
#include <rasterkit/bands/stage/row_work.h>
#include <rasterkit/graphics/system_color.h>
#include <rasterkit/kernels/rows/convert_rows.h>
#include <rasterkit/raster/index_convert.h>
#include <rasterkit/raster/row_conversion.h>

namespace rasterkit::detail {
namespace {

/// The bytes of a pixel of the result for each index.
using PixelsOfIndexes = std::array<std::array<uint8_t, 4>, 256>;

size_t IndexesOf(TPixelFormat format) {
  return size_t{1} << StoredBitsPerPixel(format);
}

/// A pixel of a raster; a packed one as a number.
std::array<uint8_t, 4> PixelOf(const Raster& raster, int x, int y) {
  std::array<uint8_t, 4> pixel{};
  const auto bits = static_cast<size_t>(StoredBitsPerPixel(raster.Format()));
  const size_t first = static_cast<size_t>(x) * bits;
  const uint8_t* const place = raster.Row(y) + first / 8;
  if (bits >= 8) {
    std::memcpy(pixel.data(), place, bits / 8);
  } else {
    pixel[0] = static_cast<uint8_t>(*place >> (8 - bits - first % 8) & ((1u << bits) - 1));
  }
  return pixel;
}

void PutPixel(const std::array<uint8_t, 4>& pixel, TPixelFormat format, uint8_t* row) {
  const auto bits = static_cast<unsigned>(StoredBitsPerPixel(format));
  if (bits >= 8) {
    std::memcpy(row, pixel.data(), bits / 8);
    return;
  }
  const unsigned shift = 8 - bits;
  row[0] =
      static_cast<uint8_t>((row[0] & (0xFFu >> bits)) | static_cast<unsigned>(pixel[0]) << shift);
}

/// Packed pixels of one format to those of another index each: byte by byte.
RowRule RuleOfBytes(TPixelFormat format, int width, const PixelsOfIndexes& pixels) {
  const size_t bits = static_cast<size_t>(StoredBitsPerPixel(format));
  const size_t bytes = (static_cast<size_t>(width) * bits + 7) / 8;
  bool isSame = true;
  for (size_t i = 0; i < IndexesOf(format); ++i) isSame = isSame && pixels[i][0] == i;
  if (isSame) {
    return [bytes](const uint8_t* source, uint8_t* target, uint8_t*) {
      std::memcpy(target, source, bytes);
    };
  }
  std::array<uint8_t, 256> map{};
  const unsigned mask = (1u << bits) - 1;
  for (unsigned byte = 0; byte < map.size(); ++byte) {
    unsigned made = 0;
    for (size_t shift = 0; shift < 8; shift += bits) {
      made |= static_cast<unsigned>(pixels[byte >> shift & mask][0]) << shift;
    }
    map[byte] = static_cast<uint8_t>(made);
  }
  return [bytes, map](const uint8_t* source, uint8_t* target, uint8_t*) {
    for (size_t i = 0; i < bytes; ++i) target[i] = map[source[i]];
  };
}

RowRule RuleOfWords(TPixelFormat from, int width, const PixelsOfIndexes& pixels) {
  return [=](const uint8_t* source, uint8_t* target, uint8_t* scratch) {
    UnpackIndexes(source, from, width, scratch);
    for (size_t x = 0; x < static_cast<size_t>(width); ++x) {
      std::memcpy(target + 2 * x, pixels[scratch[x]].data(), 2);
    }
  };
}

/// Bytes to bits. Where all indexes above one become ones, as by a threshold of grays, no table is
/// needed.
RowRule RuleOfBits(int width, const PixelsOfIndexes& pixels) {
  constexpr uint8_t kOne = 255, kMiddle = 127;
  std::array<uint8_t, 256> map{};
  size_t zeros = 0;
  while (zeros < map.size() && pixels[zeros][0] == 0) ++zeros;
  bool isStep = zeros > 0;
  for (size_t i = 0; i < map.size(); ++i) {
    map[i] = pixels[i][0] == 0 ? uint8_t{0} : kOne;
    isStep = isStep && (i < zeros || map[i] == kOne);
  }
  const auto count = static_cast<size_t>(width);
  if (isStep) {
    return [count, last = static_cast<uint8_t>(zeros - 1)](const uint8_t* source, uint8_t* target,
                                                           uint8_t*) {
      kernels::BitsAbove(source, count, last, target);
    };
  }
  return [count, map](const uint8_t* source, uint8_t* target, uint8_t* scratch) {
    for (size_t x = 0; x < count; ++x) scratch[x] = map[source[x]];
    kernels::BitsAbove(scratch, count, kMiddle, target);
  };
}

RowRule RuleOfIndexes(TPixelFormat from, TPixelFormat to, int width,
                      const PixelsOfIndexes& pixels) {
  if (from == to) return RuleOfBytes(from, width, pixels);
  if (to == pf15bit || to == pf16bit) return RuleOfWords(from, width, pixels);
  if (from == pf8bit && to == pf1bit) return RuleOfBits(width, pixels);
  if (IsIndexed(to)) {
    return [=](const uint8_t* source, uint8_t* target, uint8_t* scratch) {
      UnpackIndexes(source, from, width, scratch);
      for (size_t x = 0; x < static_cast<size_t>(width); ++x) scratch[x] = pixels[scratch[x]][0];
      PackIndexes(scratch, to, width, target);
    };
  }
  PixelTable table;
  for (size_t i = 0; i < table.size(); ++i) std::memcpy(&table[i], pixels[i].data(), 4);
  return [=](const uint8_t* source, uint8_t* target, uint8_t*) {
    if (to == pf24bit)
      return RowTo24(source, from, width, table, reinterpret_cast<RGBrec*>(target));
    RowTo32(source, from, width, table, reinterpret_cast<RGBArec*>(target));
  };
}

/// Counts indexes of rows on several threads.
class IndexCounter {
 public:
  void Count(const Raster& rows, const StageRun& run) {
    ForRows(rows.Height(), PieceOf(rows.Height(), rows.Stride()), run, {},
            [&](int first, int last) { Add(CountsOf(rows, first, last)); });
  }
  const IndexCounts& Counts() const { return counts_; }

 private:
  static IndexCounts CountsOf(const Raster& rows, int first, int last) {
    const auto bits = static_cast<unsigned>(StoredBitsPerPixel(rows.Format()));
    const unsigned perByte = 8 / bits, mask = (1u << bits) - 1;
    const auto width = static_cast<unsigned>(rows.Width());
    const size_t whole = width / perByte;
    IndexCounts bytes{}, counts{};
    for (int y = first; y < last; ++y) {
      const uint8_t* const row = rows.Row(y);
      for (size_t i = 0; i < whole; ++i) ++bytes[row[i]];
      for (unsigned x = 0; x < width % perByte; ++x) {
        ++counts[static_cast<unsigned>(row[whole]) >> (8 - bits * (x + 1)) & mask];
      }
    }
    for (unsigned byte = 0; byte < bytes.size(); ++byte) {
      for (unsigned shift = 0; shift < 8; shift += bits)
        counts[byte >> shift & mask] += bytes[byte];
    }
    return counts;
  }

  void Add(const IndexCounts& counts) {
    const std::lock_guard lock(mutex_);
    for (size_t i = 0; i < counts.size(); ++i) counts_[i] += counts[i];
  }

  std::mutex mutex_;
  IndexCounts counts_{};
};

class IndexWork : public RuleWork {
 public:
  IndexWork(const Raster& like, Sides size, SmallChange change, IndexLook look, bool hasNewCorner)
      : RuleWork({}, size, {}),
        source_(SmallLike(like, 1, 1)),
        change_(std::move(change)),
        look_(look),
        hasNewCorner_(hasNewCorner) {
    if (look == IndexLook::nothing) Try();
  }

  RowRange Looks() const override {
    switch (look_) {
      case IndexLook::first:
        return {0, 1};
      case IndexLook::corner:
        return {Size().height - 1, 1};
      case IndexLook::used:
        return {0, Size().height};
      default:
        return {};
    }
  }

  void Look(const Band& rows, const StageRun& run) override {
    const auto& raster = std::get<Raster>(rows.pixels);
    if (rows.top == 0) first_ = PixelOf(raster, 0, 0)[0];
    if (rows.top + raster.Height() == Size().height) {
      corner_ = PixelOf(raster, 0, raster.Height() - 1)[0];
    }
    if (look_ == IndexLook::used) counter_.Count(raster, run);
  }

  void Decide() override {
    Try();
    look_ = IndexLook::nothing;
  }

 private:
  std::vector<uint8_t> Known() const {
    std::vector<uint8_t> known;
    if (look_ == IndexLook::first) known.push_back(first_);
    for (size_t i = 0; i < IndexesOf(source_.Format()); ++i) {
      if (look_ != IndexLook::used || counter_.Counts()[i] > 0) {
        known.push_back(static_cast<uint8_t>(i));
      }
    }
    return known;
  }

  /// Changes a picture of two rows: the known indexes, and below them that of the corner.
  void Try() {
    const std::vector<uint8_t> known = Known();
    const auto width = static_cast<int>(known.size());
    Raster small = SmallLike(source_, width, 2);
    PackIndexes(known.data(), small.Format(), width, small.Row(0));
    const std::vector<uint8_t> corners(known.size(), corner_);
    PackIndexes(corners.data(), small.Format(), width, small.Row(1));
    Raster made = change_(std::move(small));
    PixelsOfIndexes pixels{};
    for (size_t i = known.size(); i-- > 0;)
      pixels[known[i]] = PixelOf(made, static_cast<int>(i), 0);
    newCorner_ = PixelOf(made, 0, 1);
    target_ = made.Format();
    Set(SmallLike(made, 1, 1), RuleOfIndexes(source_.Format(), target_, Size().width, pixels));
  }

  void Mend(int y, uint8_t* row) const override {
    if (hasNewCorner_ && y == Size().height - 1) PutPixel(newCorner_, target_, row);
  }

  const Raster source_;
  const SmallChange change_;
  IndexLook look_;
  const bool hasNewCorner_;
  IndexCounter counter_;
  uint8_t first_ = 0, corner_ = 0;
  std::array<uint8_t, 4> newCorner_{};
  TPixelFormat target_ = pf1bit;
};

class IndexConversion : public RuleWork {
 public:
  IndexConversion(const Raster& like, Sides size, TPixelFormat format)
      : RuleWork({}, size, {}), source_(SmallLike(like, 1, 1)), format_(format) {}

  RowRange Looks() const override { return isDecided_ ? RowRange{} : RowRange{0, Size().height}; }
  void Look(const Band& rows, const StageRun& run) override {
    counter_.Count(std::get<Raster>(rows.pixels), run);
  }
  void Decide() override {
    Plan();
    isDecided_ = true;
  }

 private:
  void Plan() {
    const IndexPlan plan =
        PlanOfIndexes(counter_.Counts(), source_.palette, source_.Format(), format_);
    Raster made(format_, 1, 1);
    made.CopyProperties(source_);
    made.palette = plan.palette;
    if (plan.isThreshold) made.alphaFormat = afIgnored;
    if (made.transparentColor) made.transparentColor = ResolveColor(*made.transparentColor);
    PixelsOfIndexes pixels{};
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i][0] = plan.map[i];
    Set(std::move(made), RuleOfIndexes(source_.Format(), format_, Size().width, pixels));
  }

  const Raster source_;
  const TPixelFormat format_;
  IndexCounter counter_;
  bool isDecided_ = false;
};

}  // namespace

std::unique_ptr<BandWork> MakeIndexWork(const Raster& like, Sides size, SmallChange change,
                                        IndexLook look) {
  return std::make_unique<IndexWork>(like, size, std::move(change), look, false);
}

std::unique_ptr<BandWork> MakeIndexWorkWithCorner(const Raster& like, Sides size,
                                                  SmallChange change, IndexLook look) {
  return std::make_unique<IndexWork>(like, size, std::move(change), look, true);
}

std::unique_ptr<BandWork> MakeIndexConversion(const Raster& like, Sides size, TPixelFormat format) {
  return std::make_unique<IndexConversion>(like, size, format);
}

}  // namespace rasterkit::detail
