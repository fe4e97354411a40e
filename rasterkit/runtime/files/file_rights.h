#pragma once

#include <string>
#include <vector>

#include <sys/stat.h>

#include <rasterkit/runtime/files/system_file.h>

namespace rasterkit::detail {

/// Gives `file`, which is new and belongs to this process, what users gave the file that it
/// replaces: owner, group, mode bits, access control list, extended attributes `user.*`. What the
/// system does not allow is skipped, and rights are reduced so that no other user gains any.
/// Returns a warning for each loss, without the file name. Throws FileError for `name` if rights
/// cannot be reduced.
///
/// `old` is the replaced file, open for reading or writing. `file` must have mode 0600.
std::vector<std::string> KeepRights(const SystemFile& old, const SystemFile& file,
                                    const std::string& name);

}  // namespace rasterkit::detail
