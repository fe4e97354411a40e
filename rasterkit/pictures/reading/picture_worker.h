#pragma once

#include <memory>

#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/worker/worker_answers.h>
#include <rasterkit/runtime/worker/worker_setup.h>

namespace rasterkit::detail {

/// The worker's side of reading pictures: answers the requests of isolated_reading.h about one
/// file.
class RASTERKIT_EXPORT PictureWorker : public WorkerAnswers {
 public:
  /// `reader` is any but `pdf`.
  explicit PictureWorker(WorkerReader reader);
  ~PictureWorker() override;
  PictureWorker(const PictureWorker&) = delete;
  PictureWorker& operator=(const PictureWorker&) = delete;

  /// Loads the tables of old charsets for metafiles, and libheif for HEIF files. Throws
  /// UnsupportedError if it is not installed.
  void Prepare() override;
  /// Returns the answer. An error of reading the file is part of it. Throws FormatError for an
  /// invalid request.
  WorkerMessage Answer(WorkerMessage request) override;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace rasterkit::detail
