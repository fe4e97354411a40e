#include <algorithm>
#include <optional>
#include <string_view>

#include <fmt/format.h>

#include <rasterkit/codecs/heif/heif_file.h>
#include <rasterkit/codecs/heif/heif_picture.h>
#include <rasterkit/codecs/rows/byte_marks.h>
#include <rasterkit/codecs/rows/stated_facts.h>
#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/follow_pixels.h>
#include <rasterkit/metadata/ifd.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

constexpr size_t kMostBlock = size_t{64} << 20;
constexpr int kMostBlocks = 1000, kFirstExchanging = 5;

/// Leads from places of the stored picture to those of the upright one; see PixelChange.
std::array<double, 6> TurnOf(int orientation, double width, double height) {
  switch (orientation) {
    case 2:
      return {-1, 0, width, 0, 1, 0};
    case 3:
      return {-1, 0, width, 0, -1, height};
    case 4:
      return {1, 0, 0, 0, -1, height};
    case 5:
      return {0, 1, 0, 1, 0, 0};
    case 6:
      return {0, -1, height, 1, 0, 0};
    case 7:
      return {0, -1, height, -1, 0, width};
    case 8:
      return {0, 1, 0, -1, 0, width};
    default:
      return {1, 0, 0, 0, 1, 0};
  }
}

class HeaderReader {
 public:
  explicit HeaderReader(TStream& stream) : file_(stream), library_(file_.Library()) {}

  PictureHeader Read() {
    header_.width = file_.Width();
    header_.height = file_.Height();
    header_.layout = file_.Layout();
    header_.frames = std::max(1, library_.context_get_number_of_top_level_images(
                                     const_cast<heif_context*>(file_.Context())));
    header_.metadata.profile = header_.layout.profile;
    if (!header_.layout.profile) NameColors();
    ReadBlocks();
    NameHidden();
    detail::TakeStatedFacts(header_, {}, "HEIF");
    MakeUpright();
    return std::move(header_);
  }

 private:
  void Warn(std::string_view text) { header_.warnings.push_back(fmt::format("HEIF: {}", text)); }

  void ReadBlocks() {
    const heif_image_handle* picture = file_.Picture();
    int count = library_.image_handle_get_number_of_metadata_blocks(picture, nullptr);
    count = std::clamp(count, 0, kMostBlocks);
    std::vector<heif_item_id> blocks(static_cast<size_t>(count));
    count = library_.image_handle_get_list_of_metadata_block_IDs(picture, nullptr, blocks.data(),
                                                                 count);
    blocks.resize(static_cast<size_t>(std::max(count, 0)));
    for (const heif_item_id id : blocks) {
      RequireTime();
      ReadBlock(id);
    }
  }

  static std::string_view TextOf(const char* text) {
    return text == nullptr ? std::string_view() : std::string_view(text);
  }

  void ReadBlock(heif_item_id id) {
    const heif_image_handle* picture = file_.Picture();
    const std::string_view type = TextOf(library_.image_handle_get_metadata_type(picture, id));
    const std::string_view content =
        TextOf(library_.image_handle_get_metadata_content_type(picture, id));
    const size_t size = library_.image_handle_get_metadata_size(picture, id);
    if (size > kMostBlock) return Warn("a block of metadata is too long and is ignored");
    std::vector<uint8_t> bytes(size);
    if (size == 0 ||
        library_.image_handle_get_metadata(picture, id, bytes.data()).code != heif_error_Ok) {
      return Warn("a block of metadata is damaged and is ignored");
    }
    if (type == "Exif") {
      TakeExif(bytes);
    } else if (type == "mime" && content == "application/rdf+xml") {
      if (header_.metadata.xmp.empty()) header_.metadata.xmp.assign(bytes.begin(), bytes.end());
    } else {
      header_.hiddenOthers.push_back(fmt::format("a private block of {} bytes", size));
    }
  }

  /// A number of bytes to skip stands in front of the block.
  void TakeExif(std::span<const uint8_t> bytes) {
    using std::string_view_literals::operator""sv;
    constexpr std::string_view kJpegPrefix = "Exif\0\0"sv;
    constexpr size_t kSkipBytes = 4;
    if (bytes.size() < kSkipBytes) return Warn("the EXIF block is damaged and is ignored");
    const size_t skipped = detail::OrderedBytes(bytes, true).Long(0);
    bytes = bytes.subspan(kSkipBytes);
    if (skipped >= bytes.size()) return Warn("the EXIF block is damaged and is ignored");
    bytes = bytes.subspan(skipped);
    if (detail::StartsWith(bytes, kJpegPrefix)) bytes = bytes.subspan(kJpegPrefix.size());
    if (header_.metadata.exif.empty()) header_.metadata.exif.assign(bytes.begin(), bytes.end());
  }

  void NameHidden() {
    const heif_image_handle* picture = file_.Picture();
    const int thumbnails = library_.image_handle_get_number_of_thumbnails(picture);
    if (thumbnails > 0) header_.hiddenCopies.emplace_back("a thumbnail of the HEIF file");
    const int depths = library_.image_handle_get_number_of_depth_images(picture);
    if (depths > 0) header_.hiddenOthers.emplace_back("a depth map");
    constexpr int kNeitherAlphaNorDepth =
        LIBHEIF_AUX_IMAGE_FILTER_OMIT_ALPHA | LIBHEIF_AUX_IMAGE_FILTER_OMIT_DEPTH;
    const int others =
        library_.image_handle_get_number_of_auxiliary_images(picture, kNeitherAlphaNorDepth);
    if (others > 0) {
      header_.hiddenOthers.push_back(
          others == 1 ? "an auxiliary picture, such as a gain map"
                      : fmt::format("{} auxiliary pictures, such as gain maps", others));
    }
  }

  /// Numbers of a color space that are not those of sRGB have no place in other formats.
  void NameColors() {
    heif_color_profile_nclx* numbers = nullptr;
    const heif_error error =
        library_.image_handle_get_nclx_color_profile(file_.Picture(), &numbers);
    if (error.code != heif_error_Ok || numbers == nullptr) return;
    const int primaries = numbers->color_primaries, transfer = numbers->transfer_characteristics;
    library_.nclx_color_profile_free(numbers);
    constexpr int kBt709 = 1, kUnknown = 2, kBt601 = 6, kSrgb = 13;
    const bool isUsualColor = primaries == kBt709 || primaries == kUnknown;
    const bool isUsualCurve =
        transfer == kBt709 || transfer == kUnknown || transfer == kBt601 || transfer == kSrgb;
    if (isUsualColor && isUsualCurve) return;
    Warn(
        fmt::format("the colors are stored in another space than sRGB (primaries {}, transfer {}) "
                    "and are taken as they are",
                    primaries, transfer));
  }

  /// True if the sides in EXIF are those of the upright picture, so that its places are too.
  bool IsExifUpright(bool exchanges) const {
    constexpr uint16_t kWidth = 40962, kHeight = 40963;
    const ExifBlock block(header_.metadata.exif);
    const auto is = [&](uint16_t tag, int side) {
      return block.Number(ExifDirectoryId::exif, tag) == static_cast<uint32_t>(side);
    };
    return exchanges && header_.width != header_.height && is(kWidth, header_.width) &&
           is(kHeight, header_.height);
  }

  /// The boxes of the file have turned the pixels. EXIF states the same turn, and its places are
  /// those of the picture that was not turned.
  void MakeUpright() {
    int orientation = header_.orientation.value_or(1);
    header_.orientation.reset();
    if (IsExifUpright(orientation >= kFirstExchanging)) orientation = 1;
    const bool exchanges = orientation >= kFirstExchanging;
    PixelChange change;
    change.width = header_.width;
    change.height = header_.height;
    change.oldWidth = exchanges ? change.height : change.width;
    change.oldHeight = exchanges ? change.width : change.height;
    change.toNew = TurnOf(orientation, change.oldWidth, change.oldHeight);
    change.pixelsChanged = change.placesChanged = orientation != 1;
    change.keepsValues = true;
    Resolution& resolution = header_.metadata.resolution;
    if (exchanges) std::swap(resolution.x, resolution.y);
    change.resolution = resolution;
    Changes changes;
    FollowPixels(header_.metadata, change, changes);
    for (const Loss& loss : changes.losses) Warn(fmt::format("{}: {}", loss.what, loss.why));
  }

  detail::HeifFile file_;
  const detail::HeifLibrary& library_;
  PictureHeader header_;
};

}  // namespace

PictureHeader ReadHeifHeader(TStream& stream) {
  const LimitsScope limits;
  return HeaderReader(stream).Read();
}

}  // namespace rasterkit
