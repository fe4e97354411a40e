#include <array>
#include <new>
#include <span>
#include <string>
#include <vector>

#include <rasterkit/codecs/bmp/bmp_decoder.h>
#include <rasterkit/codecs/bmp/bmp_header.h>
#include <rasterkit/codecs/bmp/bmp_plain_rows.h>
#include <rasterkit/codecs/bmp/bmp_rle.h>
#include <rasterkit/codecs/jpeg/jpeg_decoder.h>
#include <rasterkit/codecs/png/png_decoder.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

using namespace detail;

class BmpDecoder {
 public:
  BmpDecoder(TStream& stream, CodecReport& report)
      : stream_(stream),
        start_(stream.Position()),
        report_(report),
        header_(ReadBmpHeader(stream, start_, report)) {}

  Raster Decode();

 private:
  Raster DecodeEmbedded();
  Raster DecodePixels();

  TStream& stream_;
  const uint64_t start_;
  CodecReport& report_;
  const BmpHeader header_;
};

Raster BmpDecoder::Decode() {
  Raster raster = IsEmbeddedBmp(header_) ? DecodeEmbedded() : DecodePixels();
  if (!raster.resolution.IsKnown()) raster.resolution = header_.resolution;
  if (!raster.profile) raster.profile = ReadBmpProfile(stream_, start_, header_);
  return raster;
}

Raster BmpDecoder::DecodeEmbedded() {
  const std::vector<uint8_t> bytes =
      ReadBmpPart(stream_, start_ + header_.pixelOffset, header_.pixelBytes);
  return header_.compression == BmpCompression::jpeg ? DecodeJpeg(bytes, &report_)
                                                     : DecodePng(bytes, &report_);
}

Raster BmpDecoder::DecodePixels() {
  BmpPlainRows rows(stream_, start_, header_);
  rows.RequireMemory(header_.height);
  Raster raster(rows.Format(), header_.width, header_.height);
  if (IsIndexed(rows.Format())) raster.palette = rows.Palette();
  if (IsBmpRle(header_)) {
    stream_.SetPosition(start_ + header_.pixelOffset);
    ReadBmpRle(stream_, header_, raster, report_);
  } else {
    rows.Read({}, raster);
    rows.MarkAlpha(raster);
    rows.Report(report_);
  }
  return raster;
}

Raster DecodeStream(TStream& stream, CodecReport& report) {
  if (stream.Size() > stream.Position()) return BmpDecoder(stream, report).Decode();
  // Pipes have no size and no random access.
  const std::vector<uint8_t> bytes = stream.ReadToEnd();
  if (bytes.empty()) throw FormatError("BMP: there are no data");
  TSpanStream memory(bytes);
  return BmpDecoder(memory, report).Decode();
}

}  // namespace

bool detail::IsEmptyBmp(TStream& stream) {
  const uint64_t start = stream.Position();
  std::array<uint8_t, kBmpFileHeaderBytes + bmp_field::kCompression + 4> head{};
  if (stream.Size() < start + head.size()) return false;
  const bool isWhole = stream.Read(head) == head.size();
  stream.SetPosition(start);
  const auto field = [&](uint32_t offset) {
    return BmpLong(std::span(head).subspan(kBmpFileHeaderBytes), offset);
  };
  // An embedded JPEG or PNG picture has its size in its own header.
  const bool isPlain =
      field(bmp_field::kCompression) == static_cast<uint32_t>(BmpCompression::none);
  return isWhole && isPlain && head[0] == 'B' && head[1] == 'M' &&
         field(bmp_field::kSize) == kBmpInfoHeader && field(bmp_field::kWidth) == 0 &&
         field(bmp_field::kHeight) == 0;
}

Raster DecodeBmp(TStream& stream, CodecReport* report) {
  const LimitsScope limits;
  CodecReport unread;
  try {
    return DecodeStream(stream, report != nullptr ? *report : unread);
  } catch (const std::bad_alloc&) {
    throw LimitError("BMP: out of memory");
  }
}

}  // namespace rasterkit
