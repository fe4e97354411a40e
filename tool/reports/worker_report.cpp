#include "tool/reports/worker_report.h"

#include <fmt/core.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/worker/worker_program.h>
#include <rasterkit/runtime/worker/worker_session.h>

namespace rasterkit::tool {

std::string WorkerReport() {
  try {
    const std::string program = detail::WorkerProgram();
    detail::WorkerSession session(detail::WorkerReader::pictures, "worker");
    detail::WorkerTurn turn(session, {});
    const detail::WorkerProtection protection = turn.Protection();
    const std::string landlock =
        protection.landlockVersion > 0
            ? fmt::format("version {}", protection.landlockVersion)
            : std::string("none: the worker can open files of the user for reading");
    return fmt::format("worker: {}\nLandlock: {}\nsystem call filter: yes\n", program, landlock);
  } catch (const Error& error) {
    return fmt::format("worker: {}\n", error.what());
  }
}

}  // namespace rasterkit::tool
