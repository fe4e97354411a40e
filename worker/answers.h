#pragma once

#include <rasterkit/runtime/worker/worker_answers.h>
#include <rasterkit/runtime/worker/worker_setup.h>

namespace rasterkit::worker {

/// Returns what answers requests for such files; it lives until the process ends. Loads
/// librasterkit-pdf for PDF files alone. Throws UnsupportedError if it is not installed.
detail::WorkerAnswers& AnswersFor(detail::WorkerReader reader);

}  // namespace rasterkit::worker
