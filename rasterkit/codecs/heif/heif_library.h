#pragma once

#include <libheif/heif.h>

namespace rasterkit::detail {

/// Functions of libheif. Only its header is used when Rasterkit is built: Debian's library brings
/// an encoder along whose license is the GPL, so that only the worker process opens it.
struct HeifLibrary {
#define RASTERKIT_HEIF_FUNCTIONS(USE)              \
  USE(context_alloc)                               \
  USE(context_free)                                \
  USE(context_read_from_memory_without_copy)       \
  USE(context_set_maximum_image_size_limit)        \
  USE(context_get_number_of_top_level_images)      \
  USE(context_get_primary_image_handle)            \
  USE(image_handle_release)                        \
  USE(image_handle_get_width)                      \
  USE(image_handle_get_height)                     \
  USE(image_handle_has_alpha_channel)              \
  USE(image_handle_is_premultiplied_alpha)         \
  USE(image_handle_get_luma_bits_per_pixel)        \
  USE(image_handle_get_chroma_bits_per_pixel)      \
  USE(image_handle_get_number_of_thumbnails)       \
  USE(image_handle_get_number_of_depth_images)     \
  USE(image_handle_get_number_of_auxiliary_images) \
  USE(image_handle_get_number_of_metadata_blocks)  \
  USE(image_handle_get_list_of_metadata_block_IDs) \
  USE(image_handle_get_metadata_type)              \
  USE(image_handle_get_metadata_content_type)      \
  USE(image_handle_get_metadata_size)              \
  USE(image_handle_get_metadata)                   \
  USE(image_handle_get_raw_color_profile_size)     \
  USE(image_handle_get_raw_color_profile)          \
  USE(image_handle_get_nclx_color_profile)         \
  USE(nclx_color_profile_free)                     \
  USE(decoding_options_alloc)                      \
  USE(decoding_options_free)                       \
  USE(decode_image)                                \
  USE(image_release)                               \
  USE(image_get_plane_readonly)                    \
  USE(image_get_width)                             \
  USE(image_get_height)                            \
  USE(image_get_bits_per_pixel_range)              \
  USE(image_get_decoding_warnings)
#define RASTERKIT_HEIF_MEMBER(name) decltype(&heif_##name) name = nullptr;
  RASTERKIT_HEIF_FUNCTIONS(RASTERKIT_HEIF_MEMBER)
#undef RASTERKIT_HEIF_MEMBER
};

/// The opened library. Throws UnsupportedError if this process has not opened it; see
/// OpenHeifLibrary.
const HeifLibrary& OpenedHeifLibrary();

}  // namespace rasterkit::detail
