#include <algorithm>
#include <cstdio>
#include <memory>
#include <new>

#include <rasterkit/codecs/tiff/tiff_output.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {

namespace {

struct OptionsDeleter {
  void operator()(TIFFOpenOptions* options) const { TIFFOpenOptionsFree(options); }
};

/// The library takes a non-constant pointer but does not change the bytes.
void* Changeable(std::span<const uint8_t> bytes) {
  return const_cast<uint8_t*>(bytes.data());
}

}  // namespace

TiffOutput::TiffOutput(TStream& stream, bool isBig) : stream_(stream), start_(stream.Position()) {
  const std::unique_ptr<TIFFOpenOptions, OptionsDeleter> options(TIFFOpenOptionsAlloc());
  if (!options) throw std::bad_alloc();
  TIFFOpenOptionsSetErrorHandlerExtR(options.get(), TiffMessages::OnError, &messages_);
  TIFFOpenOptionsSetWarningHandlerExtR(options.get(), TiffMessages::OnWarning, &messages_);
  // Little-endian on every processor: the same picture gives the same bytes.
  tiff_ = TIFFClientOpenExt("picture", isBig ? "wl8" : "wl", this, OnRead, OnWrite, OnSeek, OnClose,
                            OnSize, nullptr, nullptr, options.get());
  Require(tiff_ != nullptr);
}

TiffOutput::~TiffOutput() {
  // Closing would write a directory; an incomplete file must not get one.
  isOpen_ = false;
  if (tiff_) TIFFClose(tiff_);
}

void TiffOutput::WriteStrip(uint32_t strip, std::span<const uint8_t> rows) {
  const auto count = static_cast<tmsize_t>(rows.size());
  Require(TIFFWriteEncodedStrip(tiff_, strip, Changeable(rows), count) == count);
}

void TiffOutput::WritePacked(uint32_t strip, std::span<const uint8_t> bytes) {
  const auto count = static_cast<tmsize_t>(bytes.size());
  Require(TIFFWriteRawStrip(tiff_, strip, Changeable(bytes), count) == count);
}

void TiffOutput::Finish() {
  Require(TIFFWriteDirectory(tiff_) == 1);
  isOpen_ = false;
  stream_.SetPosition(start_ + size_);
}

void TiffOutput::Require(bool isDone) {
  if (error_) std::rethrow_exception(error_);
  if (isDone) return;
  const std::vector<std::string> errors = messages_.TakeErrors();
  throw FormatError("TIFF: " + (errors.empty() ? "the picture cannot be written" : errors[0]));
}

/// Called by the library, through which no exception may pass.
bool TiffOutput::Write(std::span<const uint8_t> bytes) noexcept {
  if (!isOpen_ || error_) return false;
  try {
    stream_.SetPosition(start_ + position_);
    stream_.Write(bytes);
  } catch (...) {
    error_ = std::current_exception();
    return false;
  }
  position_ += bytes.size();
  size_ = std::max(size_, position_);
  return true;
}

tmsize_t TiffOutput::OnRead(thandle_t, void*, tmsize_t) {
  return -1;
}

tmsize_t TiffOutput::OnWrite(thandle_t self, void* bytes, tmsize_t count) {
  if (count <= 0) return 0;
  auto& output = *static_cast<TiffOutput*>(self);
  const std::span source(static_cast<const uint8_t*>(bytes), static_cast<size_t>(count));
  return output.Write(source) ? count : -1;
}

toff_t TiffOutput::OnSeek(thandle_t self, toff_t offset, int origin) {
  auto& output = *static_cast<TiffOutput*>(self);
  const uint64_t base = origin == SEEK_CUR   ? output.position_
                        : origin == SEEK_END ? output.size_
                                             : 0;
  output.position_ = base + offset;
  return output.position_;
}

toff_t TiffOutput::OnSize(thandle_t self) {
  return static_cast<TiffOutput*>(self)->size_;
}

int TiffOutput::OnClose(thandle_t) {
  return 0;
}

}  // namespace rasterkit::detail
