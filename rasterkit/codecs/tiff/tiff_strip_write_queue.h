#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <span>
#include <vector>

#include <rasterkit/codecs/tiff/tiff_output.h>

namespace rasterkit::detail {

/// Gives strips to several threads and writes their results in the order of the strips.
class TiffStripQueue {
 public:
  /// Takes the bytes of a strip, in the order of the strips, on any of the threads, one at a time.
  using Sink = std::function<void(uint32_t strip, std::span<const uint8_t> bytes)>;

  /// `window`: how many strips may be in work or wait for an earlier one, to limit memory; at least
  /// the number of threads.
  TiffStripQueue(TiffOutput& output, uint32_t strips, uint32_t window)
      : TiffStripQueue(
            [&output](uint32_t strip, std::span<const uint8_t> bytes) {
              output.WritePacked(strip, bytes);
            },
            strips, window) {}
  /// The same for strips and tiles that go elsewhere.
  TiffStripQueue(Sink sink, uint32_t strips, uint32_t window)
      : sink_(std::move(sink)), strips_(strips), window_(window) {}

  /// Gives the next strip to compress; waits while too many are in work. Nothing if all are given
  /// out or one failed.
  std::optional<uint32_t> Next();
  /// Takes the bytes of a strip and writes all strips that are due. Throws the errors of the
  /// output.
  void Put(uint32_t strip, std::vector<uint8_t> bytes);
  /// Ends the work: gives out no further strip.
  void Stop();

 private:
  const Sink sink_;
  const uint32_t strips_, window_;
  std::mutex mutex_;
  std::condition_variable hasRoom_;
  std::map<uint32_t, std::vector<uint8_t>> waiting_;
  uint32_t next_ = 0, written_ = 0;
  bool isStopped_ = false;
};

}  // namespace rasterkit::detail
