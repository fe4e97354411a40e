#include <algorithm>
#include <span>
#include <utility>

#include <rasterkit/codecs/decode_frame.h>
#include <rasterkit/codecs/heif/heif_picture.h>
#include <rasterkit/codecs/isolated_document.h>
#include <rasterkit/codecs/isolated_pixels.h>
#include <rasterkit/codecs/messages/frame_fields.h>
#include <rasterkit/codecs/messages/header_fields.h>
#include <rasterkit/codecs/messages/isolated_reading.h>
#include <rasterkit/metafiles/records/ansi_text.h>
#include <rasterkit/pictures/reading/picture_fields.h>
#include <rasterkit/pictures/reading/picture_worker.h>
#include <rasterkit/runtime/worker/worker_input.h>
#include <rasterkit/runtime/worker/worker_memory.h>

namespace rasterkit::detail {
namespace {

std::span<const uint8_t> PieceOf(std::span<const uint8_t> all, uint64_t position) {
  if (position > all.size()) ThrowBadMessage("a piece lies beyond the end");
  const auto rest = all.subspan(static_cast<size_t>(position));
  return rest.first(static_cast<size_t>(std::min<uint64_t>(rest.size(), kMostWorkerMemoryBytes)));
}

/// Runs a function and returns its exception; null if there is none.
template <class Reading>
std::exception_ptr ErrorOf(Reading reading) {
  try {
    reading();
    return nullptr;
  } catch (...) {
    return std::current_exception();
  }
}

}  // namespace

struct PictureWorker::State {
  WorkerReader reader = WorkerReader::pictures;
  std::vector<uint8_t> fields;
  /// The content is one of these.
  Pixels pixels;
  std::vector<uint8_t> bytes;

  std::span<const uint8_t> Content() const { return bytes.empty() ? BytesOf(pixels) : bytes; }

  void DecodeFrame(FieldReader& task, TStream& file);
  void ReadPicture(FieldReader& task, TStream& file);
  void ConvertMetafile(FieldReader& task, TStream& file);
  void ReadParts(WorkerTask task, FieldReader& options, TStream& file);
  WorkerMessage Read(WorkerMessage& request);
  WorkerMessage More(const WorkerMessage& request) const;
};

void PictureWorker::State::DecodeFrame(FieldReader& task, TStream& file) {
  FrameOptions options;
  options.threads = task.I32();
  task.RequireEnd();
  CodecReport report;
  ImagingFrame frame;
  const auto error = ErrorOf([&] { frame = rasterkit::DecodeFrame(file, options, &report); });
  FieldWriter answer;
  WriteReport(answer, report);
  WriteOutcome(answer, error);
  if (!error) WriteFrame(answer, frame);
  fields = answer.Take();
  pixels = std::move(frame.rows);
}

void PictureWorker::State::ReadPicture(FieldReader& task, TStream& file) {
  const PictureReading reading = ReadReading(task);
  task.RequireEnd();
  LoadedFrame picture;
  const auto error = ErrorOf([&] { rasterkit::ReadPicture(picture, file, reading); });
  if (error) picture.frame = {};
  FieldWriter answer;
  WriteOutcome(answer, error);
  WritePicture(answer, picture);
  fields = answer.Take();
  pixels = std::move(picture.frame.rows);
}

void PictureWorker::State::ConvertMetafile(FieldReader& task, TStream& file) {
  const bool toEnhanced = task.Bool();
  task.RequireEnd();
  ConvertedMetafile converted;
  const auto error = ErrorOf([&] { converted = rasterkit::ConvertMetafile(file, toEnhanced); });
  FieldWriter answer;
  WriteOutcome(answer, error);
  if (!error) WriteConvertedMetafile(answer, converted);
  fields = answer.Take();
  bytes = std::move(converted.bytes);
}

/// The header alone, the pixels alone, a copy with other metadata, or a file of several pages.
void PictureWorker::State::ReadParts(WorkerTask task, FieldReader& options, TStream& file) {
  FieldWriter answer;
  if (task == WorkerTask::header) {
    AnswerHeader(options, file, answer);
  } else if (task == WorkerTask::pixels) {
    pixels = AnswerPixels(options, file, answer);
  } else if (task == WorkerTask::document) {
    bytes = AnswerDocument(options, file, answer);
  } else {
    bytes = AnswerCopy(options, file, answer);
  }
  fields = answer.Take();
}

WorkerMessage PictureWorker::State::Read(WorkerMessage& request) {
  if (request.files.size() != 2) ThrowBadMessage("a request has no file");
  FieldReader body(request.body);
  const WorkerTask task = body.Enum(WorkerTask::document);
  body.RequireEnd();
  const std::vector<uint8_t> taskFields =
      WorkerInputStream(std::move(request.files[1]))->ReadToEnd();
  FieldReader options(taskFields);
  const auto file = WorkerInputStream(std::move(request.files[0]));
  if (task == WorkerTask::frame) {
    DecodeFrame(options, *file);
  } else if (task == WorkerTask::picture) {
    ReadPicture(options, *file);
  } else if (task == WorkerTask::metafile) {
    ConvertMetafile(options, *file);
  } else {
    ReadParts(task, options, *file);
  }
  FieldWriter sizes;
  sizes.U64(fields.size());
  sizes.U64(Content().size());
  WorkerMessage answer{kPictureRead, sizes.Take()};
  answer.files.push_back(WorkerMemoryOf(PieceOf(fields, 0)));
  answer.files.push_back(WorkerMemoryOf(PieceOf(Content(), 0)));
  return answer;
}

WorkerMessage PictureWorker::State::More(const WorkerMessage& request) const {
  FieldReader body(request.body);
  const bool isContent = body.Bool();
  const uint64_t position = body.U64();
  body.RequireEnd();
  WorkerMessage answer{kPiece};
  answer.files.push_back(
      WorkerMemoryOf(PieceOf(isContent ? Content() : std::span(fields), position)));
  return answer;
}

PictureWorker::PictureWorker(WorkerReader reader) : state_(std::make_unique<State>()) {
  state_->reader = reader;
}
PictureWorker::~PictureWorker() = default;

void PictureWorker::Prepare() {
  if (state_->reader == WorkerReader::metafiles) LoadAnsiTables();
  if (state_->reader == WorkerReader::heif) OpenHeifLibrary();
}

WorkerMessage PictureWorker::Answer(WorkerMessage request) {
  if (request.kind == kReadPicture) return state_->Read(request);
  if (request.kind == kMorePicture) return state_->More(request);
  ThrowBadMessage("it is no request about pictures");
}

}  // namespace rasterkit::detail
