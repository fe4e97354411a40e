#include <array>
#include <utility>

#include <rasterkit/bitmaptools/engine/pixel_thread.h>
#include <rasterkit/bitmaptools/engine/row_transfer.h>
#include <rasterkit/bitmaptools/engine/seen_indexes.h>
#include <rasterkit/bitmaptools/engine/transfer_palettes.h>

namespace rasterkit::detail {
namespace {

/// Change of a target index: the bits of `kept` stay, those of `added` are set.
struct Change {
  uint8_t kept;
  uint8_t added;
};
using Changes = std::array<Change, 256>;

/// Change of an 8-bit target by source index `index`.
uint8_t PutIndex(const TPixelThread& worker, int index) {
  return worker.PixTakeOver ? MappedIndex(worker, static_cast<uint8_t>(index))
                            : static_cast<uint8_t>(worker.TarBlack);
}

/// Transfer into an 8-bit target, regardless of its pixels.
class IndexPartTransfer : public RowTransfer {
 public:
  IndexPartTransfer(const TPixelThread& worker, const ColumnRun& run)
      : first_(run.first), count_(run.columns.size()), source_(worker, run.columns) {
    for (int i = 0; i < 256; ++i) {
      const bool isWhite = IsWhiteSourceIndex(worker, static_cast<uint8_t>(i));
      changes_[static_cast<size_t>(i)] = isWhite ? Change{0xFF, 0} : Change{0, PutIndex(worker, i)};
    }
  }

  void TransferRow(uint8_t* target, const uint8_t* source) override {
    const uint8_t* indexes = source_.Read(source);
    target += first_;
    for (size_t i = 0; i < count_; ++i) {
      const Change change = changes_[indexes[i]];
      target[i] = static_cast<uint8_t>((target[i] & change.kept) | change.added);
    }
  }

 private:
  int32_t first_;
  size_t count_;
  SeenIndexes source_;
  Changes changes_;
};

/// Transfer into the white pixels of an 8-bit target.
class IndexInWhiteTransfer : public RowTransfer {
 public:
  IndexInWhiteTransfer(const TPixelThread& worker, const ColumnRun& run)
      : first_(run.first), count_(run.columns.size()), source_(worker, run.columns) {
    for (int i = 0; i < 256; ++i) {
      const bool isWhite = IsWhiteTargetIndex(worker, static_cast<uint8_t>(i));
      put_[static_cast<size_t>(i)] = PutIndex(worker, i);
      places_[static_cast<size_t>(i)] =
          isWhite ? Change{0, 0xFF} : Change{static_cast<uint8_t>(i), 0};
    }
  }

  void TransferRow(uint8_t* target, const uint8_t* source) override {
    const uint8_t* indexes = source_.Read(source);
    target += first_;
    for (size_t i = 0; i < count_; ++i) {
      const Change place = places_[target[i]];
      target[i] = static_cast<uint8_t>(place.kept | (put_[indexes[i]] & place.added));
    }
  }

 private:
  int32_t first_;
  size_t count_;
  SeenIndexes source_;
  std::array<uint8_t, 256> put_;
  Changes places_;
};

}  // namespace

std::unique_ptr<RowTransfer> MakeIndexTransfer(const TPixelThread& worker, const ColumnRun& run) {
  if (worker.FPixelTask == ptAssignPart) return std::make_unique<IndexPartTransfer>(worker, run);
  return std::make_unique<IndexInWhiteTransfer>(worker, run);
}

}  // namespace rasterkit::detail
