#include "worker/answers.h"

#include <rasterkit/pictures/reading/picture_worker.h>
#include <rasterkit/runtime/files/dynamic_library.h>

namespace rasterkit::worker {

detail::WorkerAnswers& AnswersFor(detail::WorkerReader reader) {
  if (reader == detail::WorkerReader::pdf) {
    static const DynamicLibrary library("rasterkit-pdf", 0,
                                        "the component for PDF files is not installed");
    return *library.Entry<detail::WorkerAnswers*()>("RasterkitPdfAnswers")();
  }
  static detail::PictureWorker pictures(reader);
  return pictures;
}

}  // namespace rasterkit::worker
