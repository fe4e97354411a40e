#include <algorithm>
#include <atomic>
#include <cstring>

#include <tiffio.h>

#include <rasterkit/codecs/rows/worker_threads.h>
#include <rasterkit/codecs/tiff/pages/block_coder.h>
#include <rasterkit/codecs/tiff/pages/block_rows.h>
#include <rasterkit/codecs/tiff/pages/page_output.h>
#include <rasterkit/codecs/tiff/tiff_block_reader.h>
#include <rasterkit/codecs/tiff/tiff_strip_write_queue.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit::detail {

namespace {

constexpr int kMostThreads = 64;
/// Blocks in work or waiting for an earlier one, per thread.
constexpr uint32_t kBlocksPerThread = 4;
/// Bytes of plain rows per write: few enough to stay in the cache after they are converted.
constexpr size_t kPieceBytes = 256 << 10;

std::vector<uint16_t> Repeated(uint16_t word, uint16_t count) {
  return std::vector<uint16_t>(count, word);
}

void AddColorTags(const PagePlan& plan, TagMap& tags) {
  const auto add = [&](TagValue value) { tags[value.tag] = std::move(value); };
  if (!plan.extraSamples.empty()) add(WordsTag(TIFFTAG_EXTRASAMPLES, plan.extraSamples));
  if (!plan.colorMap.empty()) add(WordsTag(TIFFTAG_COLORMAP, plan.colorMap));
  if (plan.layout.model == ColorModel::cmyk) add(WordTag(TIFFTAG_INKSET, INKSET_CMYK));
  if (!plan.IsJpegOfColor()) return;
  const uint16_t factors[] = {static_cast<uint16_t>(plan.form.subsamplingX),
                              static_cast<uint16_t>(plan.form.subsamplingY)};
  add(WordsTag(TIFFTAG_YCBCRSUBSAMPLING, factors));
  // Black and white of Y, Cb and Cr as JPEG has them.
  TagValue range{TIFFTAG_REFERENCEBLACKWHITE, TIFF_RATIONAL, 6, {}};
  for (const uint8_t number : {0, 255, 128, 255, 128, 255}) {
    for (const uint8_t byte : {number, uint8_t{0}, uint8_t{0}, uint8_t{0}, uint8_t{1}, uint8_t{0},
                               uint8_t{0}, uint8_t{0}}) {
      range.bytes.push_back(byte);
    }
  }
  add(std::move(range));
}

TagMap StructureOf(const PagePlan& plan) {
  const TiffForm& form = plan.form;
  TagMap tags;
  const auto add = [&](TagValue value) { tags[value.tag] = std::move(value); };
  add(LongTag(TIFFTAG_IMAGEWIDTH, plan.width));
  add(LongTag(TIFFTAG_IMAGELENGTH, plan.height));
  add(WordsTag(TIFFTAG_BITSPERSAMPLE, Repeated(plan.bits, plan.samples)));
  add(WordTag(TIFFTAG_COMPRESSION, form.compression));
  add(WordTag(TIFFTAG_PHOTOMETRIC, form.photometric));
  if (form.fillOrder != FILLORDER_MSB2LSB) add(WordTag(TIFFTAG_FILLORDER, form.fillOrder));
  add(WordTag(TIFFTAG_SAMPLESPERPIXEL, plan.samples));
  add(WordTag(TIFFTAG_PLANARCONFIG, form.isPlanar ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG));
  if (form.predictor != PREDICTOR_NONE) add(WordTag(TIFFTAG_PREDICTOR, form.predictor));
  if (plan.IsTiled()) {
    add(LongTag(TIFFTAG_TILEWIDTH, form.tileWidth));
    add(LongTag(TIFFTAG_TILELENGTH, form.tileHeight));
  } else {
    add(LongTag(TIFFTAG_ROWSPERSTRIP, form.rowsPerStrip));
  }
  if (plan.sampleFormat != SAMPLEFORMAT_UINT) {
    add(WordsTag(TIFFTAG_SAMPLEFORMAT, Repeated(plan.sampleFormat, plan.samples)));
  }
  AddColorTags(plan, tags);
  return tags;
}

}  // namespace

struct PageOutput::Worker {
  explicit Worker(const PagePlan& plan) : rows(plan), coder(plan) {}
  BlockRows rows;
  BlockCoder coder;
};

PageOutput::PageOutput(const PagePlan& plan, int threads, TagFileWriter& file)
    : plan_(plan),
      threads_(std::clamp(threads, 1, kMostThreads)),
      file_(file),
      places_(plan.Blocks()),
      counts_(plan.Blocks()) {}

PageOutput::~PageOutput() = default;

bool PageOutput::IsPlain() const {
  return plan_.form.compression == COMPRESSION_NONE && !plan_.IsTiled() && !plan_.form.isPlanar;
}

/// True if the bytes of samples are in another order in the file than in memory.
bool PageOutput::IsTurned() const {
  const uint16_t one = 1;
  uint8_t first = 0;
  std::memcpy(&first, &one, 1);
  return file_.IsBigEndian() == (first == 1) && plan_.bits > 8;
}

void PageOutput::Write(const Pixels& rows) {
  const auto count = static_cast<uint32_t>(HeightOf(rows));
  if (count > plan_.height - given_ || static_cast<uint32_t>(WidthOf(rows)) != plan_.width ||
      (plan_.form.isPlanar && count != plan_.height)) {
    throw RangeError("the rows do not fit the TIFF page");
  }
  if (count == 0) return;
  if (IsPlain()) {
    WritePlain(rows, count);
  } else if (plan_.form.isPlanar) {
    Encode({{&rows, 0, 0, plan_.Blocks()}});
  } else {
    WriteBlocks(rows, count);
  }
  given_ += count;
}

/// The row as it stands in a strip; null if it must be converted.
const uint8_t* PageOutput::StoredRow(const Pixels& rows, uint32_t y) const {
  if (IsTurned() || plan_.form.fillOrder != FILLORDER_MSB2LSB) return nullptr;
  const auto row = static_cast<int>(y);
  if (const auto* samples = std::get_if<Samples>(&rows)) {
    const bool isSame = samples->Planes() == 1 && samples->Stride() == plan_.BlockRowBytes();
    return isSame ? samples->Row(row) : nullptr;
  }
  const auto& raster = std::get<Raster>(rows);
  const bool isSame =
      plan_.samples == 1 && !plan_.isInverted && raster.Stride() == plan_.BlockRowBytes();
  return isSame ? raster.Row(row) : nullptr;
}

void PageOutput::FlushPlain() {
  if (waitingBytes_ == 0) return;
  if (IsTurned()) TurnSamples(waiting_.data(), waitingBytes_, plan_.bits);
  if (plan_.form.fillOrder == FILLORDER_LSB2MSB) {
    TIFFReverseBits(waiting_.data(), static_cast<tmsize_t>(waitingBytes_));
  }
  file_.Continue({waiting_.data(), waitingBytes_});
  waitingBytes_ = 0;
}

void PageOutput::WritePlain(const Pixels& rows, uint32_t count) {
  const auto rowBytes = static_cast<size_t>(plan_.BlockRowBytes());
  const uint32_t rowsPerStrip = plan_.BlockHeight();
  BlockRows source(plan_);
  source.TakeFrom(rows, given_);
  uint32_t y = given_;
  const uint32_t end = given_ + count;
  while (y < end) {
    RequireTime();
    const uint32_t strip = y / rowsPerStrip;
    if (y % rowsPerStrip == 0) {
      // Strips begin at even places.
      if ((file_.Size() + waitingBytes_) % 2 != 0) FlushPlain();
      places_[strip] = waitingBytes_ > 0 ? file_.Size() + waitingBytes_ : file_.End();
    }
    const uint32_t ofStrip = std::min(end, (strip + 1) * rowsPerStrip) - y;
    const uint8_t* stored = StoredRow(rows, y - given_);
    if (stored != nullptr && ofStrip * rowBytes >= kPieceBytes / 4) {
      FlushPlain();
      const auto piece =
          static_cast<uint32_t>(std::clamp<size_t>(4 * kPieceBytes / rowBytes, 1, ofStrip));
      file_.Continue({stored, piece * rowBytes});
      counts_[strip] += piece * rowBytes;
      y += piece;
      continue;
    }
    const size_t room = std::max(kPieceBytes, rowBytes) - waitingBytes_;
    if (room < rowBytes) {
      FlushPlain();
      continue;
    }
    const auto piece = static_cast<uint32_t>(std::min<size_t>(room / rowBytes, ofStrip));
    waiting_.resize(std::max(kPieceBytes, rowBytes));
    for (uint32_t i = 0; i < piece; i++, waitingBytes_ += rowBytes) {
      source.StripRow(y + i, waiting_.data() + waitingBytes_);
    }
    counts_[strip] += piece * rowBytes;
    y += piece;
  }
}

void PageOutput::Hold(const Pixels& rows, uint32_t first, uint32_t count) {
  if (count == 0) return;
  if (!held_) {
    const uint32_t most = std::min(plan_.BlockHeight(), plan_.height);
    held_ = NewPixels(rows, static_cast<int>(plan_.width), static_cast<int>(most));
  }
  const auto copy = [&](const uint8_t* source, uint8_t* target, size_t bytes) {
    std::memcpy(target, source, bytes);
  };
  for (uint32_t i = 0; i < count; i++) {
    const auto from = static_cast<int>(first + i), to = static_cast<int>(heldRows_ + i);
    if (const auto* samples = std::get_if<Samples>(&rows)) {
      auto& held = std::get<Samples>(*held_);
      for (int plane = 0; plane < samples->Planes(); plane++) {
        copy(samples->Row(from, plane), held.Row(to, plane), samples->Stride());
      }
    } else {
      const auto& raster = std::get<Raster>(rows);
      copy(raster.Row(from), std::get<Raster>(*held_).Row(to), raster.Stride());
    }
  }
  heldRows_ += count;
}

/// Encodes the rows of blocks that are complete and keeps the rest.
void PageOutput::WriteBlocks(const Pixels& rows, uint32_t count) {
  const uint32_t blockHeight = plan_.BlockHeight(), across = plan_.Across();
  const uint32_t end = given_ + count;
  std::vector<Run> runs;
  uint32_t first = given_;
  if (heldRows_ > 0) {
    const uint32_t bottom = std::min(heldTop_ + blockHeight, plan_.height);
    const uint32_t more = std::min(end, bottom) - given_;
    Hold(rows, 0, more);
    first += more;
    if (first < bottom) return;
    runs.push_back({&*held_, heldTop_, heldTop_ / blockHeight * across, across});
  }
  const uint32_t last = end == plan_.height ? plan_.Down() : end / blockHeight;
  const uint32_t firstRow = first / blockHeight;
  if (first < end && last > firstRow) {
    runs.push_back({&rows, given_, firstRow * across, (last - firstRow) * across});
    first = std::min(last * blockHeight, plan_.height);
  }
  Encode(runs);
  if (!runs.empty()) heldRows_ = 0;
  if (first >= end) return;
  heldTop_ = first;
  Hold(rows, first - given_, end - first);
}

/// At most one thread per block, and as many as the memory limit allows. Uncompressed rows gain
/// nothing from a second thread.
int PageOutput::UsefulThreads(uint32_t blocks) const {
  if (plan_.form.compression == COMPRESSION_NONE) return 1;
  const uint64_t block = std::max<uint64_t>(1, plan_.BlockRowBytes() * plan_.BlockHeight());
  const uint64_t affordable = PictureMemoryLimit() / (4 * kBlocksPerThread) / block;
  const uint64_t most = std::min<uint64_t>(blocks, std::max<uint64_t>(1, affordable));
  return static_cast<int>(std::min(most, static_cast<uint64_t>(threads_)));
}

PageOutput::Worker& PageOutput::WorkerAt(size_t index) {
  std::unique_ptr<Worker>& worker = workers_[index];
  if (!worker) worker = std::make_unique<Worker>(plan_);
  return *worker;
}

void PageOutput::Encode(const std::vector<Run>& runs) {
  uint32_t blocks = 0;
  for (const Run& run : runs) blocks += run.blocks;
  if (blocks == 0) return;
  const uint32_t firstBlock = runs.front().firstBlock;
  const int useful = UsefulThreads(blocks);
  if (workers_.size() < static_cast<size_t>(useful)) workers_.resize(static_cast<size_t>(useful));
  const TiffStripQueue::Sink sink = [&](uint32_t index, std::span<const uint8_t> bytes) {
    places_[firstBlock + index] = file_.Append(bytes);
    counts_[firstBlock + index] = bytes.size();
  };
  TiffStripQueue queue(sink, blocks, kBlocksPerThread * static_cast<uint32_t>(useful));
  std::atomic<size_t> next{0};
  const auto work = [&] {
    try {
      Worker& worker = WorkerAt(next++);
      while (const auto index = queue.Next()) {
        RequireTime();
        const uint32_t block = firstBlock + *index;
        const Run& run =
            runs.size() > 1 && block >= runs.back().firstBlock ? runs.back() : runs.front();
        worker.rows.TakeFrom(*run.rows, run.top);
        queue.Put(*index, worker.coder.Encode(block, worker.rows.Block(block)));
      }
    } catch (...) {
      queue.Stop();
      throw;
    }
  };
  RunOnThreads(useful, work, work);
}

TagMap PageOutput::Finish() {
  if (given_ != plan_.height) throw RangeError("rows of the TIFF page are missing");
  FlushPlain();
  TagMap tags = StructureOf(plan_);
  const uint16_t placesTag = plan_.IsTiled() ? TIFFTAG_TILEOFFSETS : TIFFTAG_STRIPOFFSETS;
  const uint16_t countsTag = plan_.IsTiled() ? TIFFTAG_TILEBYTECOUNTS : TIFFTAG_STRIPBYTECOUNTS;
  tags[placesTag] = file_.PlacesTag(placesTag, places_);
  tags[countsTag] = file_.PlacesTag(countsTag, counts_);
  // A thread that came too late for a block knows no tables.
  for (const auto& worker : workers_) {
    const std::vector<uint8_t> tables =
        worker ? worker->coder.JpegTables() : std::vector<uint8_t>();
    if (tables.empty()) continue;
    tags[TIFFTAG_JPEGTABLES] = BytesTag(TIFFTAG_JPEGTABLES, TIFF_UNDEFINED, tables);
    break;
  }
  return tags;
}

TagMap WriteBlocks(const Pixels& pixels, const PagePlan& plan, int threads, TagFileWriter& file) {
  PageOutput output(plan, threads, file);
  output.Write(pixels);
  return output.Finish();
}

}  // namespace rasterkit::detail
