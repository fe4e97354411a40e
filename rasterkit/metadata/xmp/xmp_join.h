#pragma once

#include <optional>
#include <string>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Joins a packet and its extended part to one packet, for file formats without a limit of its
/// length. Nothing if one of them is damaged.
RASTERKIT_EXPORT std::optional<std::string> JoinXmp(const std::string& packet,
                                                    const std::string& extended);

}  // namespace rasterkit
