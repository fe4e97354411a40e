#include <algorithm>
#include <mutex>

#include <tiff.h>

#include <rasterkit/codecs/rows/worker_threads.h>
#include <rasterkit/codecs/tiff/pages/block_coder.h>
#include <rasterkit/codecs/tiff/pages/block_rows.h>
#include <rasterkit/codecs/tiff/pages/page_output.h>
#include <rasterkit/codecs/tiff/tiff_strip_write_queue.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit::detail {

namespace {

constexpr int kMostThreads = 64;
/// Blocks in work or waiting for an earlier one, per thread.
constexpr uint32_t kBlocksPerThread = 4;

/// At most one thread per block, and as many as the memory limit allows. Uncompressed rows gain
/// nothing from a second thread.
int UsefulThreads(const PagePlan& plan, int threads) {
  if (plan.form.compression == COMPRESSION_NONE) return 1;
  const uint64_t block = std::max<uint64_t>(1, plan.BlockRowBytes() * plan.BlockHeight());
  const uint64_t affordable = PictureMemoryLimit() / (4 * kBlocksPerThread) / block;
  const uint64_t most = std::min<uint64_t>(plan.Blocks(), std::max<uint64_t>(1, affordable));
  return static_cast<int>(
      std::min(most, static_cast<uint64_t>(std::clamp(threads, 1, kMostThreads))));
}

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

TagMap WriteBlocks(const Pixels& pixels, const PagePlan& plan, int threads, TagFileWriter& file) {
  std::vector<uint64_t> places(plan.Blocks()), counts(plan.Blocks());
  std::vector<uint8_t> tables;
  const int useful = UsefulThreads(plan, threads);
  const TiffStripQueue::Sink sink = [&](uint32_t block, std::span<const uint8_t> bytes) {
    places[block] = file.Append(bytes);
    counts[block] = bytes.size();
  };
  TiffStripQueue queue(sink, plan.Blocks(), kBlocksPerThread * static_cast<uint32_t>(useful));
  std::mutex mutex;
  const auto work = [&] {
    try {
      BlockRows rows(pixels, plan);
      BlockCoder coder(plan);
      while (const auto block = queue.Next()) {
        RequireTime();
        queue.Put(*block, coder.Encode(*block, rows.Block(*block)));
      }
      // A thread that came too late for a block knows no tables.
      std::vector<uint8_t> found = coder.JpegTables();
      const std::lock_guard lock(mutex);
      if (tables.empty()) tables = std::move(found);
    } catch (...) {
      queue.Stop();
      throw;
    }
  };
  RunOnThreads(useful, work, work);
  TagMap tags = StructureOf(plan);
  const uint16_t placesTag = plan.IsTiled() ? TIFFTAG_TILEOFFSETS : TIFFTAG_STRIPOFFSETS;
  const uint16_t countsTag = plan.IsTiled() ? TIFFTAG_TILEBYTECOUNTS : TIFFTAG_STRIPBYTECOUNTS;
  tags[placesTag] = file.PlacesTag(placesTag, places);
  tags[countsTag] = file.PlacesTag(countsTag, counts);
  if (!tables.empty()) {
    tags[TIFFTAG_JPEGTABLES] = BytesTag(TIFFTAG_JPEGTABLES, TIFF_UNDEFINED, tables);
  }
  return tags;
}

}  // namespace rasterkit::detail
