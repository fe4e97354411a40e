#pragma once

namespace rasterkit::worker {

/// Sends an error through the socket if this process ends for lack of memory, in code that cannot
/// report it. Call once.
void PrepareLastWords(int socket);

}  // namespace rasterkit::worker
