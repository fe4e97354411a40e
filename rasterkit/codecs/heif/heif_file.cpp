#include <algorithm>
#include <limits>

#include <fmt/format.h>

#include <rasterkit/codecs/heif/heif_file.h>
#include <rasterkit/codecs/rows/icc_profile.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {

std::string PlainText(std::string_view message) {
  // Behind some messages stand bytes that are no text.
  const auto end =
      std::find_if(message.begin(), message.end(), [](char c) { return c < ' ' || c > '~'; });
  return {message.begin(), end};
}

void RequireHeif(const heif_error& error) {
  if (error.code == heif_error_Ok) return;
  const std::string text = fmt::format(
      "HEIF: {}", error.message != nullptr ? PlainText(error.message) : "the file is damaged");
  if (error.code == heif_error_Memory_allocation_error) throw LimitError(text);
  if (error.code == heif_error_Unsupported_feature ||
      error.code == heif_error_Unsupported_filetype) {
    throw UnsupportedError(text);
  }
  throw FormatError(text);
}

HeifFile::HeifFile(TStream& stream) : library_(OpenedHeifLibrary()), bytes_(stream.ReadToEnd()) {
  context_.reset(library_.context_alloc());
  if (!context_) throw LimitError("HEIF: out of memory");
  constexpr auto kMost = static_cast<uint64_t>(std::numeric_limits<int>::max());
  const uint64_t side = std::min(CurrentLimits().side, kMost);
  // Larger pictures are refused by our own limits, with their reason.
  if (side == kMost) {
    library_.context_set_maximum_image_size_limit(context_.get(), static_cast<int>(kMost));
  }
  RequireHeif(library_.context_read_from_memory_without_copy(context_.get(), bytes_.data(),
                                                             bytes_.size(), nullptr));
  heif_image_handle* picture = nullptr;
  const heif_error error = library_.context_get_primary_image_handle(context_.get(), &picture);
  picture_.reset(picture);
  RequireHeif(error);
  width_ = library_.image_handle_get_width(picture);
  height_ = library_.image_handle_get_height(picture);
  if (width_ < 1 || height_ < 1) throw FormatError("HEIF: the file states no size");
}

PixelLayout HeifFile::Layout() const {
  constexpr int kByte = 8, kWord = 16;
  PixelLayout layout;
  const heif_image_handle* picture = picture_.get();
  layout.bits = std::max(library_.image_handle_get_luma_bits_per_pixel(picture),
                         library_.image_handle_get_chroma_bits_per_pixel(picture));
  if (layout.bits > kWord) throw UnsupportedError("HEIF: samples of more than 16 bits");
  layout.bits = std::max(layout.bits, kByte);
  layout.type = layout.bits > kByte ? NumberType::uint16 : NumberType::uint8;
  if (library_.image_handle_has_alpha_channel(picture) != 0) {
    layout.bands = 4;
    const bool isMultiplied = library_.image_handle_is_premultiplied_alpha(picture) != 0;
    layout.alpha = isMultiplied ? AlphaKind::associated : AlphaKind::straight;
  }
  layout.profile = Profile();
  return layout;
}

ColorProfile HeifFile::Profile() const {
  constexpr size_t kMostProfile = size_t{16} << 20;
  const size_t size = library_.image_handle_get_raw_color_profile_size(picture_.get());
  if (size == 0 || size > kMostProfile) return nullptr;
  std::vector<uint8_t> bytes(size);
  const heif_error error =
      library_.image_handle_get_raw_color_profile(picture_.get(), bytes.data());
  if (error.code != heif_error_Ok || !ProfileFits(bytes, ProfileSpace::rgb)) return nullptr;
  return std::make_shared<const std::vector<uint8_t>>(std::move(bytes));
}

}  // namespace rasterkit::detail
