#include <algorithm>

#include <fmt/format.h>

#include <rasterkit/codecs/jpeg/jpeg_limits.h>
#include <rasterkit/codecs/jpeg/lossless/jpeg_coefficients.h>
#include <rasterkit/codecs/jpeg/missing_scans.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit::detail {
namespace {

std::span<const uint8_t> Checked(std::span<const uint8_t> file, const JpegLayout& layout) {
  RequireSupportedCoding(layout.frame);
  if (layout.cutOff) throw FormatError("JPEG: the file is cut off, its last scans are missing");
  return file.first(layout.wholeBytes);
}

}  // namespace

JpegCoefficients::JpegCoefficients(std::span<const uint8_t> file, const JpegLayout& layout,
                                   uint64_t bytesBeside)
    : reader_(Checked(file, layout)) {
  jpeg_decompress_struct& codec = reader_.Codec();
  const long headerWarnings = reader_.Errors().Warnings();
  RequireMemory(layout, file.size(), bytesBeside);
  reader_.LimitScans(MostScans(codec));
  jvirt_barray_ptr* arrays = nullptr;
  reader_.Run([&] { arrays = jpeg_read_coefficients(&codec); });
  RequireWhole(headerWarnings);
  rows_.resize(static_cast<size_t>(codec.num_components));
  for (int i = 0; i < codec.num_components; i++) {
    rows_[static_cast<size_t>(i)].resize(codec.comp_info[i].height_in_blocks);
  }
  reader_.Run([&] {
    for (int i = 0; i < codec.num_components; i++) {
      CollectRows(codec, arrays[i], codec.comp_info[i], false, rows_[static_cast<size_t>(i)]);
    }
  });
}

void JpegCoefficients::RequireMemory(const JpegLayout& layout, size_t fileBytes,
                                     uint64_t bytesBeside) {
  jpeg_decompress_struct& codec = reader_.Codec();
  const uint64_t coefficients = CoefficientBytes(codec);
  const uint64_t need = coefficients + bytesBeside;
  const std::string what = fmt::format("JPEG picture of {} x {} pixels, with its coefficients",
                                       codec.image_width, codec.image_height);
  RequirePicture(codec.image_width, codec.image_height, need, what);
  if (!layout.frame.arithmetic) {
    RequirePlausible({need, StoredBlocks(codec), fileBytes, kBlocksPerByte}, what);
  }
  codec.mem->max_memory_to_use =
      static_cast<long>(std::min<uint64_t>(coefficients + kCodecSlack, LONG_MAX));
  memory_ = MemoryShare(need);
}

void JpegCoefficients::RequireWhole(long headerWarnings) const {
  const jpeg_decompress_struct& codec = reader_.Codec();
  if (reader_.Errors().Warnings() > headerWarnings || reader_.Errors().dataEnded) {
    CodecReport report;
    reader_.Errors().CopyTo(report);
    throw FormatError(report.warnings.empty() ? "JPEG: the picture data end early"
                                              : report.warnings.back());
  }
  if (const std::string missing = MissingScans(codec); !missing.empty()) throw FormatError(missing);
}

}  // namespace rasterkit::detail
