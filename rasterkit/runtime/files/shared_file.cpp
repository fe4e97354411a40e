#include <cerrno>
#include <limits>
#include <vector>

#include <fcntl.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/shared_file.h>

namespace rasterkit {

struct SharedFile::State {
  detail::SystemFile file;
  std::string name;
  struct stat status {};
  bool isRegular = false;

  struct stat StatusNow() const {
    struct stat now {};
    if (fstat(file.Handle(), &now) != 0) detail::ThrowSystemError("cannot be read", errno, name);
    return now;
  }

  /// Reads at any position of a regular file; anything else gives its bytes once.
  class Reader : public TStream {
   public:
    explicit Reader(std::shared_ptr<const State> state) : state_(std::move(state)) {}

    size_t Read(std::span<uint8_t> target) override {
      iovec piece{target.data(), target.size()};
      return ReadAll({&piece, 1});
    }
    size_t ReadScattered(std::span<const std::span<uint8_t>> pieces) override {
      std::vector<iovec> places;
      places.reserve(pieces.size());
      for (const std::span<uint8_t> piece : pieces) places.push_back({piece.data(), piece.size()});
      return ReadAll(places);
    }
    void Write(std::span<const uint8_t>) override {
      throw UnsupportedError("a file opened for reading cannot be written", state_->name);
    }
    uint64_t Position() const override { return position_; }
    void SetPosition(uint64_t position) override {
      if (!state_->isRegular && position != position_) {
        throw FileError("can only be read from the beginning", state_->name);
      }
      position_ = position;
    }
    uint64_t Size() const override {
      return state_->isRegular ? static_cast<uint64_t>(state_->status.st_size) : 0;
    }

   private:
    size_t ReadAll(std::span<iovec> pieces) {
      if (position_ > static_cast<uint64_t>(std::numeric_limits<off_t>::max())) return 0;
      const int64_t place = state_->isRegular ? static_cast<int64_t>(position_) : -1;
      const size_t count = detail::ReadPieces(state_->file, pieces, place, state_->name);
      position_ += count;
      return count;
    }

    const std::shared_ptr<const State> state_;
    uint64_t position_ = 0;
  };
};

SharedFile::SharedFile(const std::string& fileName) : name_(fileName) {
  auto state = std::make_shared<State>();
  state->name = fileName;
  state->file = detail::OpenAt(AT_FDCWD, fileName, O_RDONLY | O_NOCTTY);
  if (!state->file.IsOpen()) detail::ThrowSystemError("cannot be opened", errno, fileName);
  if (fstat(state->file.Handle(), &state->status) != 0) {
    detail::ThrowSystemError("cannot be opened", errno, fileName);
  }
  if (S_ISDIR(state->status.st_mode)) {
    detail::ThrowSystemError("cannot be opened", EISDIR, fileName);
  }
  // Some files of the system state no size.
  state->isRegular = S_ISREG(state->status.st_mode) && state->status.st_size > 0;
  isRegular_ = state->isRegular;
  state_ = std::move(state);
}

SharedFile::~SharedFile() = default;

uint64_t SharedFile::Size() const {
  return isRegular_ ? static_cast<uint64_t>(state_->status.st_size) : 0;
}

std::unique_ptr<TStream> SharedFile::Stream() const {
  return std::make_unique<State::Reader>(state_);
}

detail::SystemFile SharedFile::Handle() const {
  detail::SystemFile copy(fcntl(state_->file.Handle(), F_DUPFD_CLOEXEC, 0));
  if (!copy.IsOpen()) detail::ThrowSystemError("cannot be read", errno, name_);
  return copy;
}

void SharedFile::RequireUnchanged() const {
  const struct stat now = state_->StatusNow();
  const struct stat& then = state_->status;
  const bool isSame = now.st_size == then.st_size && now.st_mtim.tv_sec == then.st_mtim.tv_sec &&
                      now.st_mtim.tv_nsec == then.st_mtim.tv_nsec;
  if (!isSame) throw FileError("the file was changed after it was opened", name_);
}

bool SharedFile::IsNamed(const std::string& fileName) const {
  struct stat named {};
  if (stat(fileName.c_str(), &named) != 0) return false;
  return named.st_dev == state_->status.st_dev && named.st_ino == state_->status.st_ino;
}

}  // namespace rasterkit
