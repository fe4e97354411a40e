#pragma once

#include <string>
#include <vector>

#include <rasterkit/pictures/open_options.h>
#include <rasterkit/pictures/reading/picture_bytes.h>
#include <rasterkit/pictures/sources/picture_source.h>

namespace rasterkit::detail {

/// Opens a file or its bytes. Throws as Picture::Open.
SourcePtr OpenSource(const std::string& file, const OpenOptions& options);
SourcePtr OpenSource(std::vector<uint8_t> bytes, const OpenOptions& options);

/// World files and other files beside a file state the position of its first page. Returns the name
/// that they go by; empty for another page.
std::string NameForPosition(const std::string& file, int page);

/// Throws RangeError if another page than the first is requested, for files without pages.
void RequireOnePage(const OpenOptions& options);

/// Opens a file that a worker process reads and copies: no byte of it is parsed here except the
/// signature.
SourcePtr OpenIsolated(PictureBytes bytes, PictureType type, const OpenOptions& options);

}  // namespace rasterkit::detail
