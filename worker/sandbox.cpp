#include "worker/sandbox.h"

#include <rasterkit/runtime/errors.h>

#include "worker/call_filter.h"
#include "worker/font_folders.h"
#include "worker/landlock.h"
#include "worker/process_limits.h"

namespace rasterkit::worker {

detail::WorkerProtection LockIn(const detail::WorkerSetup& setup) {
  LimitProcess(setup);
  detail::WorkerProtection protection;
  protection.landlockVersion = RestrictFiles(FontFolders());
  protection.filtersCalls = FilterCalls();
  if (!protection.filtersCalls) {
    throw UnsupportedError(
        "the system has no filter of system calls (seccomp), which the process "
        "that reads the file needs");
  }
  return protection;
}

}  // namespace rasterkit::worker
