#pragma once

#include <string_view>
#include <vector>

#include <rasterkit/metadata/metadata.h>
#include <rasterkit/runtime/export.h>

/// Blocks that old PNG files hold as hexadecimal digits in texts, and that have no chunk of their
/// own even now: IPTC records and image resources.
namespace rasterkit::detail {

/// The start of the keyword of such a text.
inline constexpr std::string_view kRawProfileKeyword = "Raw profile type ";

/// Puts the block of a text "Raw profile type ..." to its place in `metadata`, unless that has one
/// already. False if the text holds none of the known blocks: then it is a text like others.
RASTERKIT_EXPORT bool TakeRawProfile(const PictureText& text, Metadata& metadata);

/// The texts that hold IPTC records and image resources.
RASTERKIT_EXPORT std::vector<PictureText> RawProfileTexts(const Metadata& metadata);

}  // namespace rasterkit::detail
