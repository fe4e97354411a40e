#include <algorithm>
#include <cstring>
#include <span>

#include <rasterkit/jpegexif/jpeg_sections.h>

namespace rasterkit::detail {

bool SectionReader::Refill() {
  next_ = 0;
  end_ = stream_.Read(buffer_);
  fetched_ += end_;
  isPastEnd_ = isPastEnd_ || end_ == 0;
  return end_ > 0;
}

uint8_t SectionReader::ReadByte() {
  if (next_ == end_ && !Refill()) return 0;
  return buffer_[next_++];
}

int32_t SectionReader::ReadWord() {
  const int32_t high = ReadByte();
  return high * 256 + ReadByte();
}

void SectionReader::Append(std::string& target, size_t count) {
  const size_t buffered = std::min(count, end_ - next_);
  target.append(reinterpret_cast<const char*>(buffer_.data()) + next_, buffered);
  next_ += buffered;
  const size_t missing = count - buffered;
  if (missing == 0) return;
  // One read gets the rest of the section and the bytes after it, which are needed next.
  const size_t filled = target.size();
  target.append(missing, '\0');
  auto* rest = reinterpret_cast<uint8_t*>(target.data()) + filled;
  const std::array<std::span<uint8_t>, 2> pieces = {std::span<uint8_t>(rest, missing),
                                                    std::span<uint8_t>(buffer_)};
  const size_t arrived = stream_.ReadScattered(pieces);
  fetched_ += arrived;
  next_ = 0;
  end_ = arrived > missing ? arrived - missing : 0;
  isPastEnd_ = isPastEnd_ || arrived < missing;
}

void SectionReader::Skip(size_t count) {
  const size_t buffered = std::min(count, end_ - next_);
  next_ += buffered;
  count -= buffered;
  if (count > 0 && stream_.Size() > 0) {
    fetched_ += count;
    stream_.SetPosition(fetched_);
    return;
  }
  // A stream without a size, such as a pipe, cannot be positioned.
  while (count > 0 && Refill()) {
    next_ = std::min(count, end_);
    count -= next_;
  }
}

}  // namespace rasterkit::detail
