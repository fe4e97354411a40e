#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include <rasterkit/codecs/jpeg/jpeg_layout.h>
#include <rasterkit/codecs/jpeg/jpeg_reader.h>
#include <rasterkit/codecs/jpeg/rows/jpeg_stream_input.h>
#include <rasterkit/codecs/rows/row_reader.h>
#include <rasterkit/runtime/memory/memory_share.h>

namespace rasterkit::detail {

/// How a JPEG file is decoded.
struct JpegReading {
  /// Inks are given as samples, and missing scans are reported; else all colors become a raster.
  bool asStored = true;
  /// Each pixel stands for so many pixels of the file in both directions: 1, 2, 4 or 8.
  int denominator = 1;
  /// All rows are held at the same time, which the limits count.
  bool isWhole = false;
};

/// Decodes a JPEG file row by row. Files of one scan are read piece by piece; of those with many
/// scans, bytes and coefficients are held.
class JpegRowReader : public RowReader {
 public:
  /// The bytes must outlive the reader.
  JpegRowReader(std::span<const uint8_t> bytes, const JpegReading& reading);
  /// Reads from the stream's position on.
  JpegRowReader(TStream& stream, const JpegReading& reading);
  ~JpegRowReader() override;

  int Width() const override { return width_; }
  int Height() const override { return height_; }
  RowAccess Access() const override { return RowAccess::rising; }
  int BlockRows() const override { return blockRows_; }
  const Pixels& Like() const override { return like_; }
  void Read(int left, int top, Pixels& target) override;
  void Finish(CodecReport& report) override;

  /// Reads the coefficients of a file of many scans, which comes before the first row otherwise.
  void Start();
  /// As the header states it. Segments after the pixels can change it.
  Resolution StatedResolution() const;

 private:
  void Open(uint64_t fileBytes);
  void RequireMemory(uint64_t fileBytes);
  void MakeLike();
  ColorProfile TakeProfile();
  int FirstMissingRow() const;
  int DecodeRows(uint8_t* first, size_t stride);
  void DecodeToBuffer();
  void Deliver(int top, Pixels& target);
  void FillWhite(int first, Pixels& target) const;
  void Conclude();
  void ReportEnd();

  bool GivesInks() const { return reading_.asStored && Codec().num_components == 4; }
  bool HasCut() const {
    return reader_->Errors().dataEnded &&
           !(layout_.manyScans && !reader_->Errors().endedInFirstScan);
  }
  jpeg_decompress_struct& Codec() { return reader_->Codec(); }
  const jpeg_decompress_struct& Codec() const { return reader_->Codec(); }

  const JpegReading reading_;
  std::vector<uint8_t> held_;
  JpegLayout layout_;
  std::unique_ptr<JpegStreamInput> input_;
  std::unique_ptr<JpegReader> reader_;
  Pixels like_;
  int width_ = 0, height_ = 0, blockRows_ = 1;
  size_t stride_ = 0;
  /// Bytes of input that rows of blocks can take.
  size_t keptInput_ = 0;
  bool isStarted_ = false, isConcluded_ = false, isReported_ = false;
  MemoryShare coefficients_;
  /// Rows from the library, from `decoded_ - buffered_` on.
  std::vector<uint8_t> buffer_, inkRows_;
  int buffered_ = 0;
  /// Rows that the library has given, and those that are handed out.
  int decoded_ = 0, next_ = 0;
  std::string profileWarning_, missing_;
  CodecReport noticed_;
};

}  // namespace rasterkit::detail

namespace rasterkit {

/// Begins to decode a file row by row, with the pixels of DecodeJpegPixels.
RASTERKIT_EXPORT std::unique_ptr<RowReader> OpenJpegRows(TStream& stream);

/// The same for a smaller picture: each pixel stands for `denominator` pixels of the file in both
/// directions (2, 4 or 8), the last ones for fewer.
RASTERKIT_EXPORT std::unique_ptr<RowReader> OpenSmallerJpegRows(TStream& stream, int denominator);

}  // namespace rasterkit
