#include <array>
#include <cerrno>
#include <limits>
#include <new>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_budget.h>
#include <rasterkit/runtime/worker/worker_input.h>

namespace rasterkit::detail {
namespace {

constexpr size_t kCopyBytes = 256 * 1024;

SystemFile NewMemory() {
  SystemFile memory(memfd_create("rasterkit-input", MFD_CLOEXEC));
  if (!memory.IsOpen()) throw std::bad_alloc();
  return memory;
}

SystemFile CopyOf(const SystemFile& pipe, const std::string& name) {
  SystemFile memory = NewMemory();
  std::vector<uint8_t> bytes(kCopyBytes);
  uint64_t total = 0;
  while (true) {
    iovec piece{bytes.data(), bytes.size()};
    const size_t read = ReadPieces(pipe, {&piece, 1}, -1, name);
    if (read == 0) return memory;
    RequireTime();
    RequirePictureMemory(total + read, "a file that is read from a pipe");
    WriteAll(memory, std::span(bytes).first(read), static_cast<int64_t>(total), name);
    total += read;
  }
}

class InputStream : public TStream {
 public:
  explicit InputStream(SystemFile file) : file_(std::move(file)) {
    struct stat status {};
    if (fstat(file_.Handle(), &status) != 0) ThrowSystemError("cannot be read", errno, {});
    size_ = static_cast<uint64_t>(status.st_size);
  }

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
    throw UnsupportedError("a file opened for reading cannot be written");
  }
  uint64_t Position() const override { return position_; }
  void SetPosition(uint64_t position) override { position_ = position; }
  uint64_t Size() const override { return size_; }

 private:
  size_t ReadAll(std::span<iovec> pieces) {
    if (position_ > static_cast<uint64_t>(std::numeric_limits<off_t>::max())) return 0;
    const size_t read = ReadPieces(file_, pieces, static_cast<int64_t>(position_), {});
    position_ += read;
    return read;
  }

  SystemFile file_;
  uint64_t size_ = 0;
  uint64_t position_ = 0;
};

}  // namespace

SystemFile OpenWorkerInput(const std::string& fileName) {
  SystemFile file = OpenAt(AT_FDCWD, fileName, O_RDONLY | O_NOCTTY);
  if (!file.IsOpen()) ThrowSystemError("cannot be opened", errno, fileName);
  struct stat status {};
  if (fstat(file.Handle(), &status) != 0) ThrowSystemError("cannot be opened", errno, fileName);
  if (S_ISDIR(status.st_mode)) ThrowSystemError("cannot be opened", EISDIR, fileName);
  // Some files of the system state no size.
  const bool hasSize = S_ISREG(status.st_mode) && status.st_size > 0;
  return hasSize ? std::move(file) : CopyOf(file, fileName);
}

SystemFile WorkerInputOf(std::span<const uint8_t> bytes) {
  SystemFile memory = NewMemory();
  WriteAll(memory, bytes, 0, {});
  return memory;
}

SystemFile SameFile(const SystemFile& file) {
  SystemFile same(fcntl(file.Handle(), F_DUPFD_CLOEXEC, 0));
  if (!same.IsOpen()) ThrowSystemError("cannot be opened", errno, {});
  return same;
}

std::unique_ptr<TStream> WorkerInputStream(SystemFile file) {
  return std::make_unique<InputStream>(std::move(file));
}

}  // namespace rasterkit::detail
