#include <algorithm>
#include <string_view>

#include <fmt/format.h>
#include <webp/decode.h>

#include <rasterkit/codecs/rows/byte_marks.h>
#include <rasterkit/codecs/rows/stated_facts.h>
#include <rasterkit/codecs/webp/webp_chunks.h>
#include <rasterkit/codecs/webp/webp_picture.h>
#include <rasterkit/codecs/webp/webp_signature.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit {
namespace {

using Bytes = std::span<const uint8_t>;
using detail::WebpChunks;

class HeaderReader {
 public:
  explicit HeaderReader(Bytes file) : file_(file) {}

  PictureHeader Read() {
    if (!detail::IsWebp(file_)) throw FormatError("WebP: the file has no WebP header");
    ReadSize();
    for (WebpChunks chunks(file_); chunks.Next();) {
      if (chunks.IsWhole()) Add(chunks);
    }
    if (detail::IsWebpCutOff(file_)) Warn("the file is cut off");
    NameRest();
    header_.frames = std::max(1, frames_);
    header_.layout.profile = header_.metadata.profile;
    detail::TakeStatedFacts(header_, {}, "WebP");
    return std::move(header_);
  }

 private:
  /// Sizes and alpha stand in the chunk of the canvas, else in the pixels' own header.
  void ReadSize() {
    WebPBitstreamFeatures features;
    if (WebPGetFeatures(file_.data(), file_.size(), &features) != VP8_STATUS_OK ||
        features.width <= 0 || features.height <= 0) {
      throw FormatError("WebP: the header of the picture is damaged");
    }
    header_.width = features.width;
    header_.height = features.height;
    if (features.has_alpha != 0) {
      header_.layout.bands = 4;
      header_.layout.alpha = AlphaKind::straight;
    }
  }

  void Add(const WebpChunks& chunks) {
    Metadata& metadata = header_.metadata;
    const Bytes data = chunks.Data();
    if (chunks.IsNamed("EXIF")) {
      AddExif(data);
    } else if (chunks.IsNamed("XMP ")) {
      if (metadata.xmp.empty()) metadata.xmp.assign(data.begin(), data.end());
    } else if (chunks.IsNamed("ICCP")) {
      if (!metadata.profile && !data.empty()) {
        metadata.profile = std::make_shared<const std::vector<uint8_t>>(data.begin(), data.end());
      }
    } else if (chunks.IsNamed("ANMF")) {
      frames_++;
    }
  }

  void AddExif(Bytes data) {
    using std::string_view_literals::operator""sv;
    constexpr std::string_view kJpegPrefix = "Exif\0\0"sv;
    // Some writers put the prefix of a JPEG segment in front.
    if (detail::StartsWith(data, kJpegPrefix)) data = data.subspan(kJpegPrefix.size());
    if (header_.metadata.exif.empty()) header_.metadata.exif.assign(data.begin(), data.end());
  }

  /// The file's header states its length.
  void NameRest() {
    constexpr size_t kLengthAt = 4, kHeaderBytes = 8;
    const uint64_t stated = uint64_t{file_[kLengthAt]} | uint64_t{file_[kLengthAt + 1]} << 8 |
                            uint64_t{file_[kLengthAt + 2]} << 16 |
                            uint64_t{file_[kLengthAt + 3]} << 24;
    const uint64_t end = stated + kHeaderBytes + stated % 2;
    if (end < file_.size()) {
      header_.hiddenOthers.push_back(
          fmt::format("{} bytes after the end of the picture", file_.size() - end));
    }
  }

  void Warn(const char* text) { header_.warnings.push_back(fmt::format("WebP: {}", text)); }

  Bytes file_;
  PictureHeader header_;
  int frames_ = 0;
};

}  // namespace

PictureHeader ReadWebpHeader(Bytes file) {
  return HeaderReader(file).Read();
}

}  // namespace rasterkit
