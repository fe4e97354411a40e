#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <limits>
#include <memory>
#include <string>

#include <zlib.h>

#include <rasterkit/codecs/png/rows/png_stripes.h>
#include <rasterkit/codecs/rows/worker_threads.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {
namespace {

constexpr size_t kStripeBytes = size_t{1} << 20, kDictionaryBytes = size_t{1} << 15;
constexpr int kMostLevel = 9;
/// zlib counts in 32 bits, and a row can be longer.
constexpr size_t kMostAtATime = size_t{1} << 30;

int RowsOfStripe(const PngRowShape& shape) {
  return static_cast<int>(std::max<size_t>(1, kStripeBytes / (shape.bytes + 1)));
}

int RowsOfBatch(const PngRowShape& shape, int threads) {
  const int64_t rows = int64_t{RowsOfStripe(shape)} * threads;
  return static_cast<int>(std::min<int64_t>(rows, shape.count));
}

struct EndDeflate {
  void operator()(z_stream* packer) const { deflateEnd(packer); }
};

/// The two bytes in front of the packed data: the method with its window, and the level.
std::array<uint8_t, 2> HeaderOf(int level) {
  constexpr unsigned kMethod = 0x78, kDivisor = 31;
  const unsigned grade = level < 2 ? 0 : level < 6 ? 1 : level == 6 ? 2 : 3;
  unsigned flags = grade << 6;
  flags += kDivisor - (kMethod * 256 + flags) % kDivisor;
  return {static_cast<uint8_t>(kMethod), static_cast<uint8_t>(flags)};
}

/// Calls `work` with 0 to `count - 1` on several threads.
void ForEach(int threads, size_t count, const std::function<void(size_t)>& work) {
  std::atomic<size_t> next{0};
  const auto doAll = [&] {
    for (size_t i = next++; i < count; i = next++) {
      try {
        RequireTime();
        work(i);
      } catch (...) {
        next = count;
        throw;
      }
    }
  };
  RunOnThreads(static_cast<int>(std::min<size_t>(static_cast<size_t>(threads), count)), doAll,
               doAll);
}

}  // namespace

PngStripes::PngStripes(const PngRowShape& shape, const PngPacking& packing, int threads,
                       std::function<void(std::span<const uint8_t>)> write)
    : shape_(shape),
      packing_(packing),
      threads_(std::max(1, threads)),
      stripeRows_(RowsOfStripe(shape)),
      batchRows_(RowsOfBatch(shape, threads_)),
      write_(std::move(write)),
      raw_((static_cast<size_t>(batchRows_) + 1) * shape.bytes),
      filtered_(kDictionaryBytes + static_cast<size_t>(batchRows_) * (shape.bytes + 1)) {
  std::memset(Raw(-1), 0, shape_.bytes);
}

void PngStripes::Add(const uint8_t* row) {
  std::memcpy(Raw(held_), row, shape_.bytes);
  held_++;
  if (held_ == batchRows_ || done_ + held_ == shape_.count) PackAll();
}

void PngStripes::PackAll() {
  std::vector<Stripe> stripes;
  for (int first = 0; first < held_; first += stripeRows_) {
    stripes.push_back({first, std::min(stripeRows_, held_ - first), {}, 1});
  }
  const bool isLast = done_ + held_ == shape_.count;
  ForEach(threads_, stripes.size(), [&](size_t i) { Filter(stripes[i]); });
  ForEach(threads_, stripes.size(),
          [&](size_t i) { Pack(stripes[i], isLast && i + 1 == stripes.size()); });
  WriteAll(stripes);
  const size_t bytes = static_cast<size_t>(held_) * (shape_.bytes + 1);
  const size_t kept = std::min(kDictionaryBytes, dictionaryBytes_ + bytes);
  uint8_t* start = filtered_.Data() + kDictionaryBytes;
  std::memmove(start - kept, start + bytes - kept, kept);
  dictionaryBytes_ = kept;
  std::memcpy(Raw(-1), Raw(held_ - 1), shape_.bytes);
  done_ += held_;
  held_ = 0;
}

void PngStripes::Filter(const Stripe& stripe) {
  std::vector<uint8_t> candidate(shape_.bytes);
  uint8_t* target =
      filtered_.Data() + kDictionaryBytes + static_cast<size_t>(stripe.first) * (shape_.bytes + 1);
  for (int y = stripe.first; y < stripe.first + stripe.count; y++, target += shape_.bytes + 1) {
    RequireTime();
    FilterPngRow(packing_.filtering, Raw(y), Raw(y - 1), shape_.bytes, shape_.pixelBytes,
                 candidate.data(), target);
  }
}

void PngStripes::Pack(Stripe& stripe, bool isLast) const {
  const size_t at = static_cast<size_t>(stripe.first) * (shape_.bytes + 1);
  const uint8_t* rows = filtered_.Data() + kDictionaryBytes + at;
  size_t left = static_cast<size_t>(stripe.count) * (shape_.bytes + 1);
  z_stream packer{};
  constexpr int kRawWindow = -15, kMemoryLevel = 9;
  const int level = PngLevelFor(packing_, {rows, left}, shape_.bytes + 1);
  if (deflateInit2(&packer, std::min(level, kMostLevel), Z_DEFLATED, kRawWindow, kMemoryLevel,
                   Z_DEFAULT_STRATEGY) != Z_OK) {
    throw LimitError("PNG: the packer has no memory");
  }
  const std::unique_ptr<z_stream, EndDeflate> end(&packer);
  const size_t before = std::min(kDictionaryBytes, dictionaryBytes_ + at);
  if (before > 0) deflateSetDictionary(&packer, rows - before, static_cast<uInt>(before));
  constexpr size_t kPiece = size_t{1} << 18;
  // Bytes are packed in pieces, so that a call can end in between.
  do {
    RequireTime();
    const auto count = static_cast<uInt>(std::min(left, kPiece));
    stripe.sum = static_cast<uint32_t>(adler32_z(stripe.sum, rows, count));
    packer.next_in = const_cast<Bytef*>(rows);
    packer.avail_in = count;
    rows += count;
    left -= count;
    const int flush = left > 0 ? Z_NO_FLUSH : isLast ? Z_FINISH : Z_SYNC_FLUSH;
    do {
      const size_t used = packer.total_out;
      stripe.packed.resize(std::max(stripe.packed.size(), used + kPiece));
      packer.next_out = stripe.packed.data() + used;
      packer.avail_out = static_cast<uInt>(std::min(stripe.packed.size() - used, kMostAtATime));
      deflate(&packer, flush);
    } while (packer.avail_out == 0);
  } while (left > 0);
  stripe.packed.resize(packer.total_out);
}

void PngStripes::WriteAll(std::vector<Stripe>& stripes) {
  for (Stripe& stripe : stripes) {
    std::vector<uint8_t>& packed = stripe.packed;
    const bool isFirst = done_ + stripe.first == 0;
    const bool isLast = done_ + stripe.first + stripe.count == shape_.count;
    const size_t bytes = static_cast<size_t>(stripe.count) * (shape_.bytes + 1);
    sum_ = static_cast<uint32_t>(adler32_combine(sum_, stripe.sum, static_cast<z_off_t>(bytes)));
    if (isFirst) {
      const auto header = HeaderOf(std::min(packing_.level.value_or(0), kMostLevel));
      packed.insert(packed.begin(), header.begin(), header.end());
    }
    for (int shift = 24; isLast && shift >= 0; shift -= 8) {
      packed.push_back(static_cast<uint8_t>(sum_ >> shift));
    }
    write_(packed);
  }
}

}  // namespace rasterkit::detail
