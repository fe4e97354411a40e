#include <algorithm>
#include <cstring>

#include <rasterkit/codecs/rows/worker_threads.h>
#include <rasterkit/codecs/tiff/rows/block_parts.h>
#include <rasterkit/codecs/tiff/rows/part_bits.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit::detail {

namespace {

constexpr int kMostThreads = 64;
/// Kept blocks take at most this much, or as much as a row or a column of tiles.
constexpr uint64_t kKeptBytes = uint64_t{32} << 20;

/// A handle of its own for each thread but the first one.
std::unique_ptr<TiffHandle> FurtherHandle(TiffSource& source) {
  auto handle = std::make_unique<TiffHandle>(source);
  PrepareTiff(*handle);
  // The first handle has reported the errors of the directory.
  handle->Messages() = {};
  return handle;
}

}  // namespace

/// Unpacks blocks on one thread.
class TiffParts::Worker {
 public:
  Worker(TiffHandle& handle, TiffParts& parts)
      : layout_(parts.layout_),
        faults_(parts.faults_),
        reader_(handle, parts.layout_, parts.blanks_),
        writer_(MakeRowWriter(parts.layout_, parts.colors_)) {}
  Worker(std::unique_ptr<TiffHandle> handle, TiffParts& parts) : Worker(*handle, parts) {
    own_ = std::move(handle);
  }

  /// Unpacks a block into rows of its own or into those of the target.
  /// Returns how many were unpacked: none of those that a sparse file leaves out.
  uint64_t Unpack(const Task& task, const TiffTarget& target);
  /// True if a row of the block can be unpacked; else what is wrong is added to `notes`.
  bool HasRows(uint32_t position, std::vector<std::string>& notes);

 private:
  uint32_t ReadSamples(uint32_t position, const TiffPart& place, const Task& task);
  bool IsSparse(uint32_t position) const;

  const TiffLayout& layout_;
  TiffFaults& faults_;
  std::unique_ptr<TiffHandle> own_;
  TiffBlockReader reader_;
  std::unique_ptr<TiffRowWriter> writer_;
  /// Rows of each plane, one plane after the other.
  PixelMemory samples_;
  std::vector<const uint8_t*> planes_;
};

bool TiffParts::Worker::IsSparse(uint32_t position) const {
  return std::all_of(layout_.planes.begin(), layout_.planes.end(), [&](uint16_t plane) {
    const auto [offset, count] = reader_.ExtentOf(plane * layout_.grid.PerPlane() + position);
    return offset == 0 && count == 0;
  });
}

/// Reads the rows of all planes; returns how many every plane has.
uint32_t TiffParts::Worker::ReadSamples(uint32_t position, const TiffPart& place,
                                        const Task& task) {
  const TiffBlockGrid& grid = layout_.grid;
  planes_.clear();
  const bool isDirect = task.rows != nullptr && !grid.isTiled && WorksInPlace(layout_) &&
                        (place.height == 1 || grid.rowBytes == task.stride);
  if (isDirect) {
    planes_.push_back(task.rows);
    return reader_.Read(position, 0, place.height, task.rows);
  }
  const size_t planeBytes = reader_.UnpackedRows(place.height) * grid.rowBytes;
  const size_t bytes = planeBytes * layout_.planes.size();
  if (samples_.Size() < bytes) samples_ = PixelMemory(bytes);
  uint32_t there = place.height;
  for (const uint16_t plane : layout_.planes) {
    uint8_t* rows = samples_.Data() + planeBytes * planes_.size();
    planes_.push_back(rows);
    if (there == 0) continue;
    const uint32_t block = plane * grid.PerPlane() + position;
    there = std::min(there, reader_.Read(block, 0, place.height, rows));
  }
  return there;
}

uint64_t TiffParts::Worker::Unpack(const Task& task, const TiffTarget& target) {
  RequireTime();
  TiffPart place = PlaceOfBlock(layout_, task.position);
  const uint32_t height = place.height;
  const bool isSparse = IsSparse(task.position);
  // All rows of a sparse block are equal.
  if (isSparse) place.height = 1;
  const uint32_t there = ReadSamples(task.position, place, task);
  uint8_t* row = task.rows;
  for (uint32_t i = 0; i < there; i++, row += task.stride) {
    writer_->Write(planes_.data(), place.width, row);
    for (const uint8_t*& plane : planes_) plane += layout_.grid.rowBytes;
  }
  for (uint32_t i = there; i < height; i++, row += task.stride) {
    if (isSparse) {
      std::memcpy(row, task.rows, target.BytesOf(place.width));
    } else {
      FillMissingPixels(target, place.width, row);
    }
  }
  faults_.Add(task.position, isSparse ? 0 : height - there, reader_.TakeErrors());
  return isSparse ? 0 : 1;
}

bool TiffParts::Worker::HasRows(uint32_t position, std::vector<std::string>& notes) {
  const uint32_t there = ReadSamples(position, PlaceOfBlock(layout_, position), {position});
  notes = reader_.TakeErrors();
  return there > 0;
}

TiffParts::TiffParts(TiffHandle& handle, const TiffLayout& layout, const TiffColors& colors,
                     const TiffBlanks& blanks, int threads)
    : handle_(handle),
      layout_(layout),
      colors_(colors),
      blanks_(blanks),
      threads_(std::clamp(threads, 1, kMostThreads)),
      wasRead_(layout.grid.PerPlane()) {
  if (layout.compression == COMPRESSION_NONE) {
    plain_ = std::make_unique<PlainParts>(handle, layout, colors, blanks, faults_);
  } else if (G4StripRows::Fits(handle, layout)) {
    g4_ = std::make_unique<G4StripRows>(handle, layout, colors, blanks);
  }
}

TiffParts::~TiffParts() = default;

void TiffParts::Read(const TiffPart& part, const TiffTarget& target) {
  reading_++;
  MarkRead(part);
  // All rows at once need no second look at the strip.
  if (g4_ && part.height < layout_.height && g4_->Read(part, target)) return;
  if (!plain_) return ReadPacked(part, target);
  const TiffBlockGrid& grid = layout_.grid;
  for (uint32_t y = part.top / grid.height; y <= (part.Bottom() - 1) / grid.height; y++) {
    for (uint32_t x = part.left / grid.width; x <= (part.Right() - 1) / grid.width; x++) {
      plain_->Read(y * grid.across + x, part, target);
    }
  }
}

void TiffParts::MarkRead(const TiffPart& part) {
  const TiffBlockGrid& grid = layout_.grid;
  const uint32_t left = part.left / grid.width, right = (part.Right() - 1) / grid.width;
  for (uint32_t y = part.top / grid.height; y <= (part.Bottom() - 1) / grid.height; y++) {
    const auto row = wasRead_.begin() + y * grid.across;
    std::fill(row + left, row + right + 1, true);
  }
}

bool TiffParts::HasRows(uint32_t position, std::vector<std::string>& notes) {
  RequireTime();
  if (plain_) return plain_->HasRows(position, notes);
  if (workers_.empty()) workers_.resize(1);
  if (!workers_[0]) workers_[0] = std::make_unique<Worker>(handle_, *this);
  return workers_[0]->HasRows(position, notes);
}

TiffOutcome TiffParts::Outcome() {
  TiffOutcome outcome = faults_.Outcome(layout_, wasRead_);
  if (outcome.hasRows) return outcome;
  std::map<uint32_t, std::vector<std::string>> others;
  for (uint32_t position = 0; position < wasRead_.size(); position++) {
    if (wasRead_[position]) continue;
    outcome.hasRows = HasRows(position, others[position]);
    if (outcome.hasRows) return outcome;
  }
  for (auto& [position, notes] : others) {
    faults_.Add(position, PlaceOfBlock(layout_, position).height, std::move(notes));
  }
  wasRead_.assign(wasRead_.size(), true);
  return faults_.Outcome(layout_, wasRead_);
}

uint64_t TiffParts::Budget(uint64_t blockBytes) const {
  const uint64_t longest = std::max<uint64_t>(
      layout_.grid.across, layout_.grid.isTiled ? layout_.grid.down : uint32_t{1});
  const uint64_t most = longest * blockBytes;
  return std::max(most, std::min(2 * most, kKeptBytes));
}

void TiffParts::ReadPacked(const TiffPart& part, const TiffTarget& target) {
  const TiffBlockGrid& grid = layout_.grid;
  const auto bits = static_cast<size_t>(target.bitsPerPixel);
  const size_t stride = target.BytesOf(grid.width);
  const uint64_t blockBytes = uint64_t{stride} * std::min(grid.height, layout_.height);
  const uint64_t budget = Budget(blockBytes);
  const uint32_t lastRow = (part.Bottom() - 1) / grid.height;
  uint32_t y = part.top / grid.height;
  while (y <= lastRow) {
    // Rows of blocks are read together as long as the blocks of which a part is needed can be kept.
    std::vector<Task> tasks;
    std::vector<uint32_t> partial;
    uint64_t keptBytes = 0;
    for (; y <= lastRow; y++) {
      std::vector<uint32_t> ofRow;
      const size_t tasksBefore = tasks.size();
      for (uint32_t x = part.left / grid.width; x <= (part.Right() - 1) / grid.width; x++) {
        const uint32_t position = y * grid.across + x;
        const TiffPart place = PlaceOfBlock(layout_, position);
        const size_t at = (size_t{place.left} - part.left) * bits;
        const bool isWhole = place.Common(part) == place && at % 8 == 0;
        if (isWhole && kept_.Find(position) == nullptr) {
          tasks.push_back({position, target.Row(place.top - part.top) + at / 8, target.stride});
        } else {
          ofRow.push_back(position);
        }
      }
      if (!partial.empty() && keptBytes + ofRow.size() * blockBytes > budget) {
        tasks.resize(tasksBefore);
        break;
      }
      keptBytes += ofRow.size() * blockBytes;
      partial.insert(partial.end(), ofRow.begin(), ofRow.end());
    }
    std::vector<uint32_t> missing;
    for (const uint32_t position : partial) {
      if (!kept_.Use(position, reading_)) missing.push_back(position);
    }
    kept_.MakeRoom(missing.size() * blockBytes, budget, reading_);
    for (const uint32_t position : missing) {
      const size_t rows = PlaceOfBlock(layout_, position).height;
      tasks.push_back({position, kept_.Add(position, stride, rows, reading_).rows.Data(), stride});
    }
    try {
      Unpack(tasks, target);
    } catch (...) {
      kept_.Clear();
      throw;
    }
    for (const uint32_t position : partial) PutKept(position, part, target);
    reading_++;
  }
}

/// At most one thread per block, and as many as the memory limit allows.
int TiffParts::UsefulThreads(size_t tasks) const {
  const TiffBlockGrid& grid = layout_.grid;
  const uint64_t block = uint64_t{grid.rowBytes} * grid.height * layout_.planes.size();
  const uint64_t affordable = PictureMemoryLimit() / 4 / std::max<uint64_t>(1, block);
  const auto most = std::min<uint64_t>(tasks, std::max<uint64_t>(1, affordable));
  return static_cast<int>(std::min<uint64_t>(static_cast<uint64_t>(threads_), most));
}

void TiffParts::Unpack(const std::vector<Task>& tasks, const TiffTarget& target) {
  if (tasks.empty()) return;
  const int useful = UsefulThreads(tasks.size());
  if (workers_.size() < static_cast<size_t>(useful)) workers_.resize(static_cast<size_t>(useful));
  std::atomic<size_t> next{0}, nextWorker{1};
  std::atomic<bool> isStopped{false};
  const auto run = [&](size_t index) {
    try {
      std::unique_ptr<Worker>& worker = workers_[index];
      if (!worker && index == 0) worker = std::make_unique<Worker>(handle_, *this);
      if (!worker) worker = std::make_unique<Worker>(FurtherHandle(handle_.Source()), *this);
      for (size_t i = next++; i < tasks.size() && !isStopped; i = next++) {
        unpacked_ += worker->Unpack(tasks[i], target);
      }
    } catch (...) {
      isStopped = true;
      throw;
    }
  };
  RunOnThreads(
      useful, [&] { run(0); }, [&] { run(nextWorker++); });
}

void TiffParts::PutKept(uint32_t position, const TiffPart& part, const TiffTarget& target) const {
  const BlockCache::Block& block = *kept_.Find(position);
  const TiffPart place = PlaceOfBlock(layout_, position);
  const TiffPart wanted = place.Common(part);
  const auto bits = static_cast<size_t>(target.bitsPerPixel);
  const size_t from = size_t{wanted.left - place.left} * bits;
  const size_t to = size_t{wanted.left - part.left} * bits;
  const uint8_t* source = block.rows.Data() + (wanted.top - place.top) * block.stride;
  uint8_t* row = target.Row(wanted.top - part.top);
  for (uint32_t i = 0; i < wanted.height; i++, source += block.stride, row += target.stride) {
    CopyPartBits(source, from, row, to, wanted.width * bits);
  }
}

TiffOutcome ReadTiffBlocks(TiffHandle& handle, const TiffLayout& layout, const TiffColors& colors,
                           const TiffBlanks& blanks, const TiffTarget& target, int threads) {
  TiffParts parts(handle, layout, colors, blanks, threads);
  parts.Read({0, 0, layout.width, layout.height}, target);
  return parts.Outcome();
}

}  // namespace rasterkit::detail
