#pragma once

namespace rasterkit::worker {

/// Lets the kernel refuse every system call that reading files, drawing and answering do not need:
/// no processes, programs, sockets, writable files or code that is made at run time. The worst ones
/// end the process. Returns false if the kernel has no such filter.
bool FilterCalls();

}  // namespace rasterkit::worker
