#include <algorithm>
#include <atomic>

#include <rasterkit/bands/stage/row_work.h>
#include <rasterkit/codecs/rows/worker_threads.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {
namespace {

constexpr size_t kBytesOfPiece = size_t{1} << 18;

/// Pieces that threads take one after the other.
class Pieces {
 public:
  Pieces(int count, int piece, const std::function<void(int, int)>& work)
      : count_(count), piece_(std::max(1, piece)), work_(work) {}

  int Count() const { return (count_ + piece_ - 1) / piece_; }

  /// Does one piece; false if there is none left or another thread has failed.
  bool DoOne() {
    if (hasFailed_) return false;
    const int number = next_++;
    if (number >= Count()) return false;
    try {
      RequireTime();
      const int first = number * piece_;
      work_(first, std::min(count_ - first, piece_) + first);
    } catch (...) {
      hasFailed_ = true;
      throw;
    }
    ++done_;
    return true;
  }

  void Fail() { hasFailed_ = true; }
  double Done() const { return Count() == 0 ? 1 : static_cast<double>(done_) / Count(); }

 private:
  const int count_, piece_;
  const std::function<void(int, int)>& work_;
  std::atomic<int> next_{0}, done_{0};
  std::atomic<bool> hasFailed_{false};
};

}  // namespace

void ForRows(int count, int piece, const StageRun& run, const ProgressShare& share,
             const std::function<void(int first, int last)>& work) {
  Pieces pieces(count, piece, work);
  const auto report = [&](double done) {
    if (run.progress) run.progress(share.from + (share.to - share.from) * done);
  };
  const auto own = [&] {
    try {
      while (pieces.DoOne()) report(pieces.Done());
    } catch (...) {
      pieces.Fail();
      throw;
    }
  };
  const auto other = [&] {
    while (pieces.DoOne()) {
    }
  };
  RunOnThreads(std::min(run.threads, pieces.Count()), own, other);
  report(1);
}

int PieceOf(int count, size_t bytesPerRow) {
  const size_t rows = kBytesOfPiece / std::max<size_t>(1, bytesPerRow);
  return std::clamp(static_cast<int>(std::min<size_t>(rows, size_t{1} << 20)), 1,
                    std::max(1, count));
}

}  // namespace rasterkit::detail
