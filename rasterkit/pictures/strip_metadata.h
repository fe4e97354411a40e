#pragma once

#include <rasterkit/metadata/metadata.h>
#include <rasterkit/pictures/steps.h>

namespace rasterkit::detail {

/// Removes what the written file shall not have. Profile and resolution stay: they belong to the
/// pixels.
void StripMetadata(Metadata& metadata, const MetadataEdit& edit);

}  // namespace rasterkit::detail
