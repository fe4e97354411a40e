#include "worker/sandbox.h"

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
  return protection;
}

}  // namespace rasterkit::worker
