#pragma once

#include <string>
#include <vector>

namespace rasterkit::worker {

/// Forbids this process to open files, except for reading below `readable`, and, as far as the
/// kernel knows how, to use the network and to reach other processes. Folders that are missing are
/// skipped. Requires PR_SET_NO_NEW_PRIVS and a process of one thread.
///
/// Returns the version of the kernel's Landlock, 0 if there is none.
int RestrictFiles(const std::vector<std::string>& readable);

}  // namespace rasterkit::worker
