#include "tests/bands/flow/flow_readers.h"

#include <algorithm>
#include <atomic>

#include <rasterkit/bands/stage/band.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::test {
namespace {

class LimitedReader : public RowReader {
 public:
  LimitedReader(const Pixels& source, const TestReader& how, ReadCount* count)
      : source_(source), how_(how), count_(count) {
    if (count_ != nullptr) *count_ = {std::vector<int>(static_cast<size_t>(Height())), 0};
  }

  int Width() const override { return WidthOf(source_); }
  int Height() const override { return HeightOf(source_); }
  RowAccess Access() const override { return how_.access; }
  int BlockRows() const override { return how_.blockRows; }
  const Pixels& Like() const override { return source_; }

  void Read(int left, int top, Pixels& target) override {
    if (isBusy_.exchange(true)) throw RangeError("two threads read");
    const int width = WidthOf(target), height = HeightOf(target);
    if (how_.access != RowAccess::anyParts && (left != 0 || width != Width())) {
      throw RangeError("parts of rows are read");
    }
    if (how_.access == RowAccess::rising && top < end_) throw RangeError("rows are read again");
    if (how_.onRead) how_.onRead(top);
    end_ = top + height;
    const bool fails = how_.failingRow >= top && how_.failingRow < end_;
    if (fails) throw FormatError("row " + std::to_string(how_.failingRow) + " is damaged");
    if (count_ != nullptr) {
      for (int y = top; y < end_; ++y) ++count_->rows.at(static_cast<size_t>(y));
      count_->pixels += int64_t{width} * height;
    }
    CopyPart(source_, {left, top, width, height}, target, 0, 0);
    isBusy_ = false;
  }

  void Finish(CodecReport& report) override { report.warnings.emplace_back("read"); }

 private:
  const Pixels& source_;
  const TestReader how_;
  ReadCount* const count_;
  int end_ = 0;
  std::atomic<bool> isBusy_{false};
};

}  // namespace

std::unique_ptr<RowReader> ReaderOf(const Pixels& source, const TestReader& how, ReadCount* count) {
  return std::make_unique<LimitedReader>(source, how, count);
}

}  // namespace rasterkit::test
