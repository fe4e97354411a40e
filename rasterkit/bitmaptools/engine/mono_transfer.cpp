#include <cstddef>

#include <rasterkit/bitmaptools/engine/packed_indexes.h>
#include <rasterkit/bitmaptools/engine/pixel_thread.h>
#include <rasterkit/bitmaptools/engine/row_transfer.h>

namespace rasterkit::detail {
namespace {

/// Clears the bits of a 1-bit target where those of a 1-bit source are clear.
class MonoPartTransfer : public RowTransfer {
 public:
  explicit MonoPartTransfer(const ColumnRun& run)
      : first_(run.first),
        count_(static_cast<int32_t>(run.columns.size())),
        source_(run.columns, 1),
        bits_(run.columns.size()) {}

  void TransferRow(uint8_t* target, const uint8_t* source) override {
    source_.Read(source, bits_.data());
    for (int32_t i = 0; i < count_; ++i) {
      const int32_t x = first_ + i;
      const int bit = 128 >> x % 8;
      const int clears = bits_[static_cast<size_t>(i)] != 0 ? 0 : bit;
      target[x / 8] = static_cast<uint8_t>(target[x / 8] & ~clears);
    }
  }

 private:
  int32_t first_, count_;
  PackedIndexes source_;
  std::vector<uint8_t> bits_;
};

/// Does the same for rows that both begin at a byte and have consecutive columns.
class MonoBytesTransfer : public RowTransfer {
 public:
  explicit MonoBytesTransfer(const ColumnRun& run)
      : targetByte_(run.first / 8),
        sourceByte_(run.columns.front() / 8),
        bytes_(run.columns.size() / 8),
        lastBits_(static_cast<int>(run.columns.size() % 8)) {}

  void TransferRow(uint8_t* target, const uint8_t* source) override {
    target += targetByte_;
    source += sourceByte_;
    for (size_t i = 0; i < bytes_; ++i) target[i] &= source[i];
    if (lastBits_ > 0) {
      target[bytes_] = static_cast<uint8_t>(target[bytes_] & (source[bytes_] | 0xFF >> lastBits_));
    }
  }

 private:
  int32_t targetByte_, sourceByte_;
  size_t bytes_;
  int lastBits_;
};

bool IsByteByByte(const ColumnRun& run) {
  if (run.first % 8 != 0 || run.columns.front() % 8 != 0) return false;
  for (size_t i = 0; i < run.columns.size(); ++i) {
    if (run.columns[i] != run.columns.front() + static_cast<int32_t>(i)) return false;
  }
  return true;
}

}  // namespace

std::unique_ptr<RowTransfer> MakeMonoTransfer(const TPixelThread& worker, const ColumnRun& run) {
  if (worker.FPixelTask != ptAssignPart || !worker.PixTakeOver) return nullptr;
  if (IsByteByByte(run)) return std::make_unique<MonoBytesTransfer>(run);
  return std::make_unique<MonoPartTransfer>(run);
}

}  // namespace rasterkit::detail
