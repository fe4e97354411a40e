#pragma once

#include <atomic>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include <rasterkit/raster/palette.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/threads/critical_section.h>
#include <rasterkit/runtime/threads/thread.h>
#include <rasterkit/runtime/threads/timer.h>

namespace rasterkit {

class TBitmap;

/// Reports the percentage of work done, 0 to 100. May be empty. An exception that it throws ends
/// the operation, which then throws it to its caller; rows that are done stay changed. After that
/// the callback is not called again.
using TProgressEvent = std::function<void(float Prozent)>;

/// Shared state of one long pixel operation on several threads: bands of rows, the number of
/// finished rows, a timer that reports it, and the pixel-format fields of source and target, which
/// each worker copies when it is created.
///
/// It lives exactly as long as the operation, on the calling thread. Workers only read it, but for
/// `DoProgress` (any thread) and `ThreadDone` (which their termination event runs on the calling
/// thread). There are two ways to wait:
///
/// - workers that free themselves have `ThreadDone` as termination event, and the driver dispatches
///   its queue until `AnzThreads` is 0;
/// - workers that the driver owns are waited for by their handles, and then freed.
///
/// Worker i takes the rows `iBis[i]` to `iBis[i + 1] - 1`. The bands are not clipped to the
/// picture: as their height is rounded, a band can be empty, have its end before its begin (both
/// mean that there is nothing to do), or reach beyond the last row; a worker ends at the first
/// missing row, without effect on the others.
class RASTERKIT_EXPORT TManageThreads {
 public:
  /// Divides `MaxProgress` rows among the threads. With a callback, which is useful from 1001 rows
  /// on, starts the timer on the calling thread. Throws DivisionByZeroError as InitThreads does;
  /// `ThreadsCount` below 1 counts as 0.
  TManageThreads(int32_t ThreadsCount, int32_t MaxProgress, TProgressEvent AProgress);
  ~TManageThreads();
  TManageThreads(const TManageThreads&) = delete;
  TManageThreads& operator=(const TManageThreads&) = delete;

  /// Fixes the number of threads and fills `iBis`. Fewer rows than a quarter of the threads reduce
  /// the count to a quarter of the rows, halves to even: 8 threads for 1 row become none. Throws
  /// DivisionByZeroError if no thread is left.
  void InitThreads(int32_t AHeight);

  /// Sets source and target and fills the pixel-format fields. Returns true if pixels can be
  /// transferred: 15- and 16-bit formats are unsupported, and so are indexed targets with wider
  /// source pixels. Bitmaps without a format of their own are switched to 24- or 32-bit.
  bool InitByteBits(TBitmap& ATarBmp, TBitmap& ASrcBmp);

  /// Called by a worker at each row. While a single band is left, it also dispatches the caller's
  /// event loop (no-op on a worker's thread).
  void DoProgress();

  /// Calls `Progress` with the share of the rows counted so far, perhaps a little late. Runs on
  /// every tick of the timer, unless a worker is reporting, and at the end of a pixel worker on
  /// that worker's thread; callbacks must support both.
  void ProgressTimer(const TTimer* Sender = nullptr);

  /// Does the same for an operation that is under way, one thread at a time: keeps an exception of
  /// the callback, which ends the operation. Any thread.
  void ReportProgress() noexcept;
  /// True once the callback has thrown: workers end at their next row. Any thread.
  bool IsEnded() const { return isEnded_.load(std::memory_order_relaxed); }
  /// Throws the exception of the callback, if there was one. To be called when no worker is
  /// running.
  void RethrowProgressError() const;

  /// Termination event of workers that free themselves: one fewer is running.
  void ThreadDone(const TThread& Sender);

  /// Number of rows that is 100 %; set only with a callback.
  int32_t MaxProg = 0;
  /// Rows done so far, of all workers together; changed under `CS`.
  std::atomic<int32_t> AnzProg{0};
  TProgressEvent Progress;
  /// Guards the counting of rows.
  TCriticalSection CS;
  /// Ticks every 100 ms; null without a callback.
  std::unique_ptr<TTimer> Timer;
  /// Borrowed.
  TBitmap* TarBmp = nullptr;
  TBitmap* SrcBmp = nullptr;
  /// Bytes per pixel: 0 for 1 and 4 bits, 1, 2, 3 or 4. `n...Bit`: bits of a pixel that takes less
  /// than a byte, else 0.
  int32_t nSrcBytes = 0;
  int32_t nSrcBit = 0;
  int32_t nTarBytes = 0;
  int32_t nTarBit = 0;
  /// Palette entries of an indexed source and of an 8-bit target, and their numbers.
  int32_t SrcAnz = 0;
  int32_t TarAnz = 0;
  std::unique_ptr<TColorTable> SrcCol;
  std::unique_ptr<TColorTable> TarCol;
  /// Entry of an 8-bit target that is used as black: the first black one, else the nearest to it;
  /// -1 if none is nearer than 255.
  int32_t TarBlack = 0;
  /// First pure white entry, or -1.
  int32_t TarWhite = 0;
  int32_t SrcWhite = 0;
  /// The last entry if it is pure white, else -1.
  int32_t SrcLastWhite = 0;
  /// Number of workers; if they use `ThreadDone`, of those that are running.
  std::atomic<int32_t> AnzThreads{0};
  /// Band limits: AnzThreads + 1 entries, from 0 to the number of rows.
  std::vector<int32_t> iBis;

 private:
  void ReadSourcePalette();
  void ReadTargetPalette();
  void Report() noexcept;

  /// Held during the callback, which may dispatch the timer again.
  std::recursive_mutex reporting_;
  std::atomic<bool> isEnded_{false};
  /// Guarded by `CS`.
  std::exception_ptr progressError_;
};

}  // namespace rasterkit
