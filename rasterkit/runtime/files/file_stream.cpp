#include <array>
#include <cerrno>
#include <limits>

#include <fcntl.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/stream.h>
#include <rasterkit/runtime/files/system_file.h>

namespace rasterkit {

struct TFileStream::State {
  detail::SystemFile file;
  std::string name;
  uint64_t size = 0;
  uint64_t position = 0;
  /// Regular files are read at any position; anything else gives its bytes once, one after another.
  bool isRegular = false;
  uint64_t consumed = 0;

  size_t Read(std::span<iovec> pieces);
};

size_t TFileStream::State::Read(std::span<iovec> pieces) {
  if (isRegular && position > static_cast<uint64_t>(std::numeric_limits<off_t>::max())) return 0;
  if (!isRegular && position != consumed) {
    throw FileError("can only be read from the beginning", name);
  }
  const int64_t place = isRegular ? static_cast<int64_t>(position) : -1;
  const size_t count = detail::ReadPieces(file, pieces, place, name);
  position += count;
  consumed += count;
  return count;
}

TFileStream::TFileStream(const std::string& fileName) : state_(std::make_unique<State>()) {
  state_->name = fileName;
  state_->file = detail::OpenAt(AT_FDCWD, fileName, O_RDONLY | O_NOCTTY);
  if (!state_->file.IsOpen()) detail::ThrowSystemError("cannot be opened", errno, fileName);
  struct stat status {};
  if (fstat(state_->file.Handle(), &status) != 0) {
    detail::ThrowSystemError("cannot be opened", errno, fileName);
  }
  if (S_ISDIR(status.st_mode)) detail::ThrowSystemError("cannot be opened", EISDIR, fileName);
  state_->isRegular = S_ISREG(status.st_mode);
  if (state_->isRegular) state_->size = static_cast<uint64_t>(status.st_size);
}

TFileStream::~TFileStream() = default;

size_t TFileStream::Read(std::span<uint8_t> target) {
  iovec piece{target.data(), target.size()};
  return state_->Read({&piece, 1});
}

size_t TFileStream::ReadScattered(std::span<const std::span<uint8_t>> pieces) {
  std::vector<iovec> places;
  places.reserve(pieces.size());
  for (const std::span<uint8_t> piece : pieces) places.push_back({piece.data(), piece.size()});
  return state_->Read(places);
}

void TFileStream::Write(std::span<const uint8_t>) {
  throw UnsupportedError("a file opened for reading cannot be written", state_->name);
}

uint64_t TFileStream::Position() const {
  return state_->position;
}

void TFileStream::SetPosition(uint64_t position) {
  state_->position = position;
}

uint64_t TFileStream::Size() const {
  return state_->size;
}

}  // namespace rasterkit
