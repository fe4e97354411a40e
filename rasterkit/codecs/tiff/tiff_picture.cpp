#include <algorithm>
#include <atomic>
#include <cstring>
#include <functional>
#include <map>
#include <mutex>

#include <fmt/format.h>

#include <rasterkit/codecs/rows/worker_threads.h>
#include <rasterkit/codecs/tiff/tiff_picture.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit::detail {

namespace {

/// Bytes per read of uncompressed rows: few enough to stay in the cache until they are converted.
constexpr size_t kPieceBytes = 256 << 10;

/// Most messages for the caller; every damaged block can have its own.
constexpr size_t kMostNotes = 8;

/// The place of a block in the picture.
struct Place {
  uint32_t x = 0, y = 0, width = 0, height = 0;
};

Place PlaceOf(const TiffLayout& layout, uint32_t position) {
  const TiffBlockGrid& grid = layout.grid;
  Place place;
  place.x = position % grid.across * grid.width;
  place.y = position / grid.across * grid.height;
  place.width = std::min(grid.width, layout.width - place.x);
  place.height = std::min(grid.height, layout.height - place.y);
  return place;
}

/// The errors of one block.
struct Fault {
  uint32_t missingRows = 0;
  std::vector<std::string> notes;
};

/// State that all threads share.
struct Job {
  const TiffLayout& layout;
  const TiffColors& colors;
  const TiffBlanks& blanks;
  const TiffTarget& target;
  std::atomic<uint32_t> next{0};
  std::atomic<bool> isStopped{false};
  std::mutex mutex{};
  std::map<uint32_t, Fault> faults{};
};

/// Reads blocks on one thread.
class BlockWorker {
 public:
  BlockWorker(TiffHandle& handle, Job& job)
      : job_(job),
        layout_(job.layout),
        reader_(handle, job.layout, job.blanks),
        writer_(MakeRowWriter(job.layout, job.colors)) {}

  void Run() {
    const uint32_t blocks = layout_.grid.PerPlane();
    for (uint32_t i = job_.next++; i < blocks && !job_.isStopped; i = job_.next++) ReadBlock(i);
  }

 private:
  void ReadBlock(uint32_t position);
  uint32_t ReadPiece(uint32_t position, const Place& place, uint32_t first, uint32_t rows);
  void WriteRows(const Place& place, uint32_t y, uint32_t rows);
  void FillRows(const Place& place, uint32_t y, uint32_t rows) const;
  uint8_t* Pixel(const Place& place, uint32_t y) const {
    const auto bits = static_cast<size_t>(job_.target.bitsPerPixel);
    return job_.target.Row(place.y + y) + place.x * bits / 8;
  }
  /// True if rows can be read straight into the target.
  bool IsDirect(const Place& place, uint32_t rows) const {
    return !layout_.grid.isTiled && place.x == 0 && WorksInPlace(layout_) &&
           (rows == 1 || layout_.grid.rowBytes == job_.target.stride);
  }

  Job& job_;
  const TiffLayout& layout_;
  TiffBlockReader reader_;
  std::unique_ptr<TiffRowWriter> writer_;
  /// Rows of each plane, one plane after the other.
  PixelMemory rows_;
  std::vector<const uint8_t*> planes_;
};

void BlockWorker::ReadBlock(uint32_t position) {
  const Place place = PlaceOf(layout_, position);
  uint32_t piece = place.height;
  if (reader_.IsPlain()) {
    const size_t rows = std::max<size_t>(1, kPieceBytes / layout_.grid.rowBytes);
    piece = static_cast<uint32_t>(std::min<size_t>(rows, place.height));
  }
  uint32_t y = 0;
  while (y < place.height) {
    RequireTime();
    const uint32_t rows = std::min(piece, place.height - y);
    const uint32_t there = ReadPiece(position, place, y, rows);
    WriteRows(place, y, there);
    y += there;
    if (there < rows) break;
  }
  FillRows(place, y, place.height - y);
  Fault fault{place.height - y, reader_.TakeErrors()};
  if (fault.missingRows == 0 && fault.notes.empty()) return;
  const std::lock_guard lock(job_.mutex);
  job_.faults.emplace(position, std::move(fault));
}

/// Reads the rows of all planes; returns how many every plane has.
uint32_t BlockWorker::ReadPiece(uint32_t position, const Place& place, uint32_t first,
                                uint32_t rows) {
  const TiffBlockGrid& grid = layout_.grid;
  planes_.clear();
  if (IsDirect(place, rows)) {
    uint8_t* target = Pixel(place, first);
    planes_.push_back(target);
    return reader_.Read(position, first, rows, target);
  }
  const size_t planeBytes = reader_.UnpackedRows(rows) * grid.rowBytes;
  const size_t bytes = planeBytes * layout_.planes.size();
  if (rows_.Size() < bytes) rows_ = PixelMemory(bytes);
  uint32_t there = rows;
  for (const uint16_t plane : layout_.planes) {
    uint8_t* target = rows_.Data() + planeBytes * planes_.size();
    planes_.push_back(target);
    if (there > 0) {
      there =
          std::min(there, reader_.Read(plane * grid.PerPlane() + position, first, rows, target));
    }
  }
  return there;
}

void BlockWorker::WriteRows(const Place& place, uint32_t y, uint32_t rows) {
  for (uint32_t i = 0; i < rows; i++) {
    writer_->Write(planes_.data(), place.width, Pixel(place, y + i));
    for (const uint8_t*& plane : planes_) plane += layout_.grid.rowBytes;
  }
}

void BlockWorker::FillRows(const Place& place, uint32_t y, uint32_t rows) const {
  const int bits = job_.target.bitsPerPixel;
  const size_t pixelBytes = job_.target.blankBytes > 0 ? job_.target.blankBytes
                                                       : static_cast<size_t>(std::max(1, bits / 8));
  const size_t bytes = (place.width * static_cast<size_t>(bits) + 7) / 8;
  const auto& blank = job_.target.blank;
  const bool isEven = std::all_of(blank.begin(), blank.begin() + pixelBytes,
                                  [&](uint8_t byte) { return byte == blank[0]; });
  for (uint32_t i = 0; i < rows; i++) {
    uint8_t* pixel = Pixel(place, y + i);
    if (isEven) std::memset(pixel, blank[0], bytes);
    for (size_t at = 0; !isEven && at < bytes; at += pixelBytes) {
      std::memcpy(pixel + at, blank.data(), pixelBytes);
    }
  }
}

/// At most one thread per block, and as many as the memory limit allows. Uncompressed rows gain
/// nothing from a second thread.
int UsefulThreads(const TiffLayout& layout, int threads) {
  const TiffBlockGrid& grid = layout.grid;
  if (layout.compression == COMPRESSION_NONE) return 1;
  const uint64_t block = uint64_t{grid.rowBytes} * grid.height * layout.planes.size();
  const uint64_t affordable = PictureMemoryLimit() / 4 / std::max<uint64_t>(1, block);
  const auto most = std::min<uint64_t>({grid.PerPlane(), std::max<uint64_t>(1, affordable), 64});
  return static_cast<int>(std::clamp<int64_t>(threads, 1, static_cast<int64_t>(most)));
}

TiffOutcome OutcomeOf(const Job& job) {
  const TiffLayout& layout = job.layout;
  TiffOutcome outcome;
  outcome.blocks = layout.grid.PerPlane();
  outcome.soundRows = layout.height;
  uint32_t emptyBlocks = 0;
  for (const auto& [position, fault] : job.faults) {
    for (const std::string& note : fault.notes) {
      if (outcome.notes.size() < kMostNotes &&
          std::find(outcome.notes.begin(), outcome.notes.end(), note) == outcome.notes.end()) {
        outcome.notes.push_back(note);
      }
    }
    if (fault.missingRows == 0) continue;
    const Place place = PlaceOf(layout, position);
    outcome.damagedBlocks++;
    outcome.soundRows = std::min(outcome.soundRows, place.y + place.height - fault.missingRows);
    if (fault.missingRows == place.height) emptyBlocks++;
  }
  outcome.hasRows = emptyBlocks < outcome.blocks;
  return outcome;
}

/// Notes of the decoder about blocks of which every pixel is there.
bool IsHarmless(const std::string& note) {
  return note.find("not terminated with EOI code") != std::string::npos;
}

}  // namespace

TiffOutcome ReadTiffBlocks(TiffHandle& handle, const TiffLayout& layout, const TiffColors& colors,
                           const TiffBlanks& blanks, const TiffTarget& target, int threads) {
  Job job{.layout = layout, .colors = colors, .blanks = blanks, .target = target};
  const auto guarded = [&](const std::function<void()>& work) {
    try {
      work();
    } catch (...) {
      job.isStopped = true;
      throw;
    }
  };
  const auto own = [&] { guarded([&] { BlockWorker(handle, job).Run(); }); };
  const auto other = [&] {
    guarded([&] {
      TiffHandle further(handle.Source());
      PrepareTiff(further);
      // The first handle has reported the errors of the directory.
      further.Messages() = {};
      BlockWorker(further, job).Run();
    });
  };
  RunOnThreads(UsefulThreads(layout, threads), own, other);
  return OutcomeOf(job);
}

void ReportOutcome(const TiffOutcome& outcome, uint32_t height, CodecReport& report) {
  if (!outcome.hasRows) {
    throw FormatError(
        "TIFF: " + (outcome.notes.empty() ? "nothing of the picture is there" : outcome.notes[0]));
  }
  const auto warn = [&](const std::string& text) { report.AddDamage("TIFF: " + text); };
  if (outcome.damagedBlocks > 0) {
    warn(outcome.soundRows > 0
             ? fmt::format("the data are damaged or end early, {} of {} rows are complete",
                           outcome.soundRows, height)
             : fmt::format("{} of {} strips or tiles are damaged", outcome.damagedBlocks,
                           outcome.blocks));
  }
  for (const std::string& note : outcome.notes) {
    if (outcome.damagedBlocks == 0 && IsHarmless(note)) {
      report.warnings.push_back("TIFF: " + note);
    } else {
      warn(note);
    }
  }
}

}  // namespace rasterkit::detail
