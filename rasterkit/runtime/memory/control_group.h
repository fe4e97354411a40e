#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

/// Memory limits of control groups.
namespace rasterkit::detail {

/// Returns the content of a file; nothing if it cannot be read.
using ReadText = std::function<std::optional<std::string>(const std::string& file)>;

/// Returns the least memory limit, in bytes, of the control groups of a process and of all their
/// parents, for groups of version 1 and 2; nothing if none is limited. `groups` is the text of
/// /proc/self/cgroup, `mounts` that of /proc/self/mountinfo.
std::optional<uint64_t> LeastGroupMemory(std::string_view groups, std::string_view mounts,
                                         const ReadText& read);

}  // namespace rasterkit::detail
