#include <algorithm>
#include <utility>

#include <rasterkit/codecs/messages/isolated_reading.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_share.h>
#include <rasterkit/runtime/worker/worker_errors.h>
#include <rasterkit/runtime/worker/worker_input.h>
#include <rasterkit/runtime/worker/worker_memory.h>
#include <rasterkit/runtime/worker/worker_session.h>

namespace rasterkit::detail {
namespace {

/// Facts of a file, of which a color profile and the tie points of a map can be long.
constexpr uint64_t kMostFieldBytes = uint64_t{64} << 20;
constexpr size_t kMostErrorBytes = kMostWorkerBodyBytes;

uint64_t PieceBytes(uint64_t total, uint64_t position) {
  return std::min(total - position, kMostWorkerMemoryBytes);
}

/// One answer of a worker, which arrives in pieces.
class AnswerReader {
 public:
  AnswerReader(WorkerTurn& turn, const WorkerMessage& request)
      : turn_(turn), answer_(turn.Ask(request, kPictureRead, 2)) {
    FieldReader sizes(answer_.body);
    fieldBytes_ = sizes.U64();
    contentBytes_ = sizes.U64();
    sizes.RequireEnd();
    if (fieldBytes_ > kMostFieldBytes) ThrowBadMessage("the facts are too long");
  }

  uint64_t FieldBytes() const { return fieldBytes_; }
  uint64_t ContentBytes() const { return contentBytes_; }

  std::vector<uint8_t> Fields() {
    std::vector<uint8_t> fields;
    while (fields.size() < fieldBytes_) {
      const size_t position = fields.size();
      const auto size = static_cast<size_t>(PieceBytes(fieldBytes_, position));
      fields.resize(position + size);
      Fill(false, position, std::span(fields).subspan(position));
    }
    return fields;
  }

  void Content(std::span<uint8_t> target) {
    for (size_t position = 0; position < target.size();) {
      const auto size = static_cast<size_t>(PieceBytes(target.size(), position));
      Fill(true, position, target.subspan(position, size));
      position += size;
    }
  }

 private:
  void Fill(bool isContent, uint64_t position, std::span<uint8_t> target) {
    if (position == 0) return ReadWorkerMemory(answer_.files[isContent ? 1 : 0], target);
    FieldWriter fields;
    fields.Bool(isContent);
    fields.U64(position);
    const WorkerMessage piece = turn_.Ask({kMorePicture, fields.Take()}, kPiece, 1);
    if (!piece.body.empty()) ThrowBadMessage("a piece has fields");
    ReadWorkerMemory(piece.files[0], target);
  }

  WorkerTurn& turn_;
  const WorkerMessage answer_;
  uint64_t fieldBytes_ = 0, contentBytes_ = 0;
};

WorkerMessage ReadRequest(WorkerTask task, std::span<const uint8_t> fields, SystemFile file) {
  FieldWriter body;
  body.Enum(task);
  WorkerMessage request{kReadPicture, body.Take()};
  request.files.push_back(std::move(file));
  // Metadata to be written can be longer than a message.
  request.files.push_back(WorkerInputOf(fields));
  return request;
}

}  // namespace

void ReadInWorker(WorkerReader reader, WorkerTask task, std::span<const uint8_t> fields,
                  SystemFile file, const std::function<bool()>& keepGoing,
                  const ContentPlace& place) {
  WorkerSession session(reader, "picture");
  try {
    WorkerTurn turn(session, keepGoing);
    AnswerReader answer(turn, ReadRequest(task, fields, std::move(file)));
    // Allocated because the worker says so, so it counts like the picture.
    const MemoryShare share(answer.FieldBytes());
    const std::vector<uint8_t> facts = answer.Fields();
    FieldReader fieldReader(facts);
    const std::span<uint8_t> target = place(fieldReader, answer.ContentBytes());
    if (target.size() != answer.ContentBytes()) ThrowBadMessage("the content has another size");
    answer.Content(target);
  } catch (const WorkerCanceled&) {
    throw Error("reading was canceled");
  }
}

void WriteOutcome(FieldWriter& fields, const std::exception_ptr& error) {
  fields.Bool(error != nullptr);
  if (error) fields.Bytes(FailedMessage(error).body);
}

std::exception_ptr ReadOutcome(FieldReader& fields) {
  if (!fields.Bool()) return nullptr;
  const auto body = fields.Bytes(kMostErrorBytes);
  const WorkerError error =
      ReadFailed({kWorkerFailed, std::vector<uint8_t>(body.begin(), body.end())});
  try {
    ThrowWorkerError(error);
  } catch (...) {
    return std::current_exception();
  }
}

}  // namespace rasterkit::detail
