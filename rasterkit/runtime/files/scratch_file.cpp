#include <algorithm>
#include <atomic>
#include <limits>
#include <system_error>

#include <fcntl.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/file_calls.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/files/scratch_file.h>
#include <rasterkit/runtime/files/temporary_names.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {

using detail::Calls;
using detail::OpenAt;
using detail::SystemFile;

namespace {

constexpr mode_t kOwnerOnly = 0600;
/// Between two looks at the time: file systems in memory write zeros.
constexpr uint64_t kReservedAtOnce = uint64_t{32} << 20;

std::atomic<uint64_t> bytesInUse{0};

/// For file systems that reserve nothing: what they say is free.
int RequireFree(const SystemFile& file, uint64_t bytes) {
  struct statfs status {};
  if (Calls().statusOfFileSystem(file.Handle(), &status) != 0) return errno;
  const auto block = static_cast<uint64_t>(status.f_bsize);
  return status.f_bavail < bytes / std::max<uint64_t>(1, block) + 1 ? ENOSPC : 0;
}

/// The name is gone before the file has bytes.
SystemFile OpenNamed(const SystemFile& folder) {
  SystemFile file;
  do {
    const detail::NameChange change;
    const detail::TemporaryName name(folder.Handle());
    file = OpenAt(folder.Handle(), name.Text(), O_RDWR | O_CREAT | O_EXCL, kOwnerOnly);
    if (file.IsOpen() && Calls().unlinkAt(folder.Handle(), name.Text().c_str()) != 0) {
      const int error = errno;
      file.Close();
      errno = error;
      return {};
    }
  } while (!file.IsOpen() && errno == EEXIST);
  return file;
}

}  // namespace

std::string TemporaryFolder() {
  std::error_code error;
  const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
  return error ? std::string("/tmp") : folder.string();
}

uint64_t ScratchBytes() {
  return bytesInUse;
}

ScratchFile::ScratchFile(const std::string& folder, uint64_t bytes)
    : folder_(folder.empty() ? TemporaryFolder() : folder), bytes_(bytes) {
  Open();
  Reserve();
  bytesInUse += bytes_;
}

ScratchFile::~ScratchFile() {
  bytesInUse -= bytes_;
}

void ScratchFile::Fail(int error) const {
  throw FileError("has no room for a scratch file of " + std::to_string(bytes_) +
                      " bytes: " + std::generic_category().message(error),
                  folder_);
}

void ScratchFile::Open() {
  const SystemFile folder = OpenAt(AT_FDCWD, folder_, O_PATH | O_DIRECTORY);
  if (!folder.IsOpen()) Fail(errno);
  file_ = OpenAt(folder.Handle(), ".", O_RDWR | O_TMPFILE | O_EXCL, kOwnerOnly);
  if (!file_.IsOpen()) file_ = OpenNamed(folder);
  if (!file_.IsOpen()) Fail(errno);
}

void ScratchFile::Reserve() {
  if (bytes_ > static_cast<uint64_t>(std::numeric_limits<off_t>::max())) Fail(EFBIG);
  for (uint64_t at = 0; at < bytes_; at += kReservedAtOnce) {
    RequireTime();
    const auto count = static_cast<off_t>(std::min(kReservedAtOnce, bytes_ - at));
    const int result = detail::Uninterrupted(
        [&] { return Calls().reserve(file_.Handle(), static_cast<off_t>(at), count); });
    if (result == 0) continue;
    if (errno != EOPNOTSUPP && errno != ENOSYS && errno != EINVAL) Fail(errno);
    if (const int error = RequireFree(file_, bytes_ - at); error != 0) Fail(error);
    return;
  }
}

void ScratchFile::RequireInside(uint64_t position, size_t count) const {
  if (position <= bytes_ && count <= bytes_ - position) return;
  throw RangeError("a scratch file of " + std::to_string(bytes_) + " bytes has no byte " +
                   std::to_string(position + count));
}

void ScratchFile::Write(uint64_t position, std::span<const uint8_t> bytes) {
  RequireInside(position, bytes.size());
  detail::WriteAll(file_, bytes, static_cast<int64_t>(position), folder_);
}

void ScratchFile::Read(uint64_t position, std::span<uint8_t> bytes) const {
  RequireInside(position, bytes.size());
  iovec piece{bytes.data(), bytes.size()};
  const size_t count =
      detail::ReadPieces(file_, {&piece, 1}, static_cast<int64_t>(position), folder_);
  // Bytes that were never written.
  std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(count), bytes.end(), uint8_t{0});
}

}  // namespace rasterkit
