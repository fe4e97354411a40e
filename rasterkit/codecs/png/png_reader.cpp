#include <algorithm>
#include <cstring>

#include <rasterkit/codecs/png/png_reader.h>

namespace rasterkit::detail {
namespace {

/// The library requires a few bytes around each chunk.
constexpr size_t kAheadBytes = size_t{1} << 16;

}  // namespace

void PngReader::OnRead(png_structp png, png_bytep target, size_t count) {
  auto& reader = *static_cast<PngReader*>(png_get_io_ptr(png));
  if (!reader.Read(target, count)) png_error(png, "unexpected end of the file");
}

bool PngReader::Read(uint8_t* target, size_t count) noexcept {
  try {
    if (Take(target, count) == count) return true;
    ranDry_ = true;
  } catch (...) {
    streamError_ = std::current_exception();
  }
  return false;
}

size_t PngReader::Take(uint8_t* target, size_t count) {
  size_t done = 0;
  while (done < count) {
    if (used_ == ahead_.size()) {
      ahead_.resize(kAheadBytes);
      used_ = 0;
      if (stream_.Position() != position_) stream_.SetPosition(position_);
      const size_t read = stream_.Read(ahead_);
      ahead_.resize(read);
      position_ += read;
      if (read == 0) break;
    }
    const size_t piece = std::min(count - done, ahead_.size() - used_);
    std::memcpy(target + done, ahead_.data() + used_, piece);
    used_ += piece;
    done += piece;
  }
  return done;
}

}  // namespace rasterkit::detail
