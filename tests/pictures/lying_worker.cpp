// A worker program that does what the file tells it: the file is the text of a lie.

#include <cstdlib>
#include <string>

#include <sys/resource.h>
#include <unistd.h>

#include <rasterkit/codecs/messages/isolated_reading.h>
#include <rasterkit/pictures/reading/picture_fields.h>
#include <rasterkit/runtime/worker/worker_channel.h>
#include <rasterkit/runtime/worker/worker_input.h>
#include <rasterkit/runtime/worker/worker_memory.h>
#include <rasterkit/runtime/worker/worker_setup.h>

using namespace rasterkit;
using namespace rasterkit::detail;

namespace {

constexpr int kSocket = 3;
constexpr int kSide = 8;
constexpr size_t kRowsBytes = size_t{4} * kSide * kSide;

std::string LieOf(WorkerMessage& request) {
  const auto file = WorkerInputStream(std::move(request.files.at(0)));
  const std::vector<uint8_t> bytes = file->ReadToEnd();
  return {bytes.begin(), bytes.end()};
}

std::vector<uint8_t> FieldsOf(const std::string& lie) {
  LoadedFrame picture;
  picture.type = PictureType::png;
  picture.frame.format = GUID_WICPixelFormat32bppBGR;
  picture.frame.rows = Raster(pf32bit, kSide, lie == "huge picture" ? 200000 : kSide);
  if (lie == "wrong orientation") picture.photo.orientation = 9;
  FieldWriter fields;
  WriteOutcome(fields, nullptr);
  WritePicture(fields, picture);
  if (lie == "fields too long") fields.U8(0);
  std::vector<uint8_t> bytes = fields.Take();
  if (lie == "fields too short") bytes.pop_back();
  return bytes;
}

SystemFile MemoryOf(std::vector<uint8_t> bytes) {
  return WorkerMemoryOf(bytes);
}

WorkerMessage AnswerOf(const std::string& lie) {
  const std::vector<uint8_t> fields = FieldsOf(lie);
  uint64_t fieldBytes = fields.size(), rowsBytes = kRowsBytes;
  if (lie == "endless fields") fieldBytes = uint64_t{1} << 40;
  if (lie == "large fields") fieldBytes = (uint64_t{64} << 20) + 1;
  if (lie == "long fields") fieldBytes = uint64_t{2} << 20;
  if (lie == "endless rows") rowsBytes = uint64_t{1} << 40;
  if (lie == "fewer rows") rowsBytes -= 4;
  FieldWriter sizes;
  sizes.U64(fieldBytes);
  sizes.U64(rowsBytes);
  if (lie == "long answer") sizes.U64(0);
  WorkerMessage answer{kPictureRead, sizes.Take()};
  if (lie == "wrong kind") answer.kind = kPiece;
  answer.files.push_back(MemoryOf(fields));
  if (lie == "no rows") return answer;
  answer.files.push_back(MemoryOf(std::vector<uint8_t>(lie == "short memory" ? 1 : kRowsBytes)));
  if (lie == "no memory") {
    int ends[2];
    if (pipe(ends) == 0) answer.files[1] = SystemFile(ends[0]);
  }
  return answer;
}

}  // namespace

int main() {
  const WorkerChannel channel{SystemFile(kSocket)};
  const auto setup = channel.Receive();
  if (!setup || !channel.Send(ReadyMessage({0, true}))) return EXIT_FAILURE;
  auto request = channel.Receive();
  if (!request) return EXIT_FAILURE;
  const std::string lie = LieOf(*request);
  if (lie == "exit") _exit(EXIT_SUCCESS);
  if (lie == "abort") {
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    std::abort();
  }
  if (lie == "hang") pause();
  channel.Send(AnswerOf(lie));
  // Until the host closes the socket.
  while (channel.Receive()) channel.Send(AnswerOf(lie));
  _exit(EXIT_SUCCESS);
}
