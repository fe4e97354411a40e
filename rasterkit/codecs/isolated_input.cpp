#include <rasterkit/codecs/isolated_input.h>
#include <rasterkit/codecs/unsized_picture.h>
#include <rasterkit/runtime/worker/worker_input.h>

namespace rasterkit::detail {

SystemFile OpenForWorker(const std::string& fileName) {
  TFileStream stream(fileName);
  return stream.Size() > 0 ? OpenWorkerInput(fileName) : WorkerInputOf(ReadUnsizedPicture(stream));
}

SystemFile CopyForWorker(TStream& stream) {
  const bool hasSize = stream.Size() > stream.Position();
  return WorkerInputOf(hasSize ? stream.ReadToEnd() : ReadUnsizedPicture(stream));
}

}  // namespace rasterkit::detail
