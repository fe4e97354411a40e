#include <utility>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/worker/fields.h>
#include <rasterkit/runtime/worker/worker_message.h>

namespace rasterkit::detail {
namespace {

/// "RKWM".
constexpr uint32_t kMagic = 0x4D574B52;
/// Raised with every change of a message. Library and worker program are installed together, but a
/// process may still run the library of an earlier installation.
constexpr uint16_t kVersion = 1;

}  // namespace

std::vector<uint8_t> PackWorkerMessage(const WorkerMessage& message) {
  if (message.body.size() > kMostWorkerBodyBytes) throw LimitError("message: body too long");
  if (message.files.size() > kMostWorkerFiles) throw LimitError("message: too many files");
  FieldWriter writer;
  writer.U32(kMagic);
  writer.U16(kVersion);
  writer.U16(message.kind);
  writer.U32(static_cast<uint32_t>(message.body.size()));
  writer.U32(static_cast<uint32_t>(message.files.size()));
  std::vector<uint8_t> packet = writer.Take();
  packet.insert(packet.end(), message.body.begin(), message.body.end());
  return packet;
}

WorkerMessage ParseWorkerMessage(std::span<const uint8_t> packet, std::vector<SystemFile> files) {
  FieldReader reader(packet);
  if (reader.U32() != kMagic) ThrowBadMessage("its first bytes are unknown");
  if (reader.U16() != kVersion) ThrowBadMessage("it is of another version");
  WorkerMessage message;
  message.kind = reader.U16();
  const uint32_t length = reader.U32();
  const uint32_t count = reader.U32();
  if (length > kMostWorkerBodyBytes) ThrowBadMessage("it is too long");
  if (length != reader.Rest()) ThrowBadMessage("its length is wrong");
  if (count != files.size()) ThrowBadMessage("its number of files is wrong");
  const auto body = packet.subspan(kWorkerHeaderBytes);
  message.body.assign(body.begin(), body.end());
  message.files = std::move(files);
  return message;
}

}  // namespace rasterkit::detail
