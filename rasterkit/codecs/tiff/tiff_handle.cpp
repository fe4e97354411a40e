#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <limits>
#include <memory>
#include <new>
#include <string_view>

#include <rasterkit/codecs/tiff/tiff_handle.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit::detail {

namespace {

constexpr size_t kKeptTexts = 8;
constexpr size_t kTextBytes = 240;

/// Called by the library, through which no exception may pass: if out of memory, the text is lost.
void Keep(std::vector<std::string>& texts, const char* format, va_list arguments) noexcept try {
  if (texts.size() >= kKeptTexts) return;
  char text[kTextBytes];
  std::vsnprintf(text, sizeof text, format, arguments);
  std::string_view view = text;
  while (view.ends_with('\n') || view.ends_with('.')) view.remove_suffix(1);
  if (std::find(texts.begin(), texts.end(), view) == texts.end()) texts.emplace_back(view);
} catch (const std::bad_alloc&) {
}

/// Tags that libtiff does not know are no error: those of GeoTIFF are among them. The old style of
/// LZW is found by this room itself; each handle would report it.
bool IsNoise(const char* format) {
  const std::string_view text = format;
  return text.starts_with("Unknown field with tag") || text.starts_with("Old-style LZW codes");
}

struct OptionsDeleter {
  void operator()(TIFFOpenOptions* options) const { TIFFOpenOptionsFree(options); }
};

tmsize_t LargestAllocation() {
  constexpr auto kMost = static_cast<uint64_t>(std::numeric_limits<tmsize_t>::max());
  return static_cast<tmsize_t>(std::min(PictureMemoryLimit(), kMost));
}

}  // namespace

int TiffMessages::OnError(TIFF*, void* self, const char*, const char* format, va_list arguments) {
  Keep(static_cast<TiffMessages*>(self)->errors_, format, arguments);
  return 1;
}

int TiffMessages::OnWarning(TIFF*, void* self, const char*, const char* format, va_list arguments) {
  if (!IsNoise(format)) Keep(static_cast<TiffMessages*>(self)->warnings_, format, arguments);
  return 1;
}

TiffHandle::TiffHandle(TiffSource& source) : source_(source) {
  const std::unique_ptr<TIFFOpenOptions, OptionsDeleter> options(TIFFOpenOptionsAlloc());
  if (!options) throw std::bad_alloc();
  TIFFOpenOptionsSetErrorHandlerExtR(options.get(), TiffMessages::OnError, &messages_);
  TIFFOpenOptionsSetWarningHandlerExtR(options.get(), TiffMessages::OnWarning, &messages_);
  TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), LargestAllocation());
  // Without memory mapping, and without splitting large strips: this room finds the rows itself.
  tiff_ = TIFFClientOpenExt("picture", "rmc", this, OnRead, OnWrite, OnSeek, OnClose, OnSize,
                            nullptr, nullptr, options.get());
  if (tiff_) return;
  source_.RethrowKept();
  const std::vector<std::string> errors = messages_.TakeErrors();
  throw FormatError("TIFF: " + (errors.empty() ? "the first directory cannot be read" : errors[0]));
}

TiffHandle::~TiffHandle() {
  if (tiff_) TIFFClose(tiff_);
}

tmsize_t TiffHandle::OnRead(thandle_t self, void* target, tmsize_t count) {
  auto& handle = *static_cast<TiffHandle*>(self);
  if (count <= 0) return 0;
  const size_t there = handle.source_.TryReadAt(
      handle.position_, {static_cast<uint8_t*>(target), static_cast<size_t>(count)});
  handle.position_ += there;
  return static_cast<tmsize_t>(there);
}

tmsize_t TiffHandle::OnWrite(thandle_t, void*, tmsize_t) {
  return -1;
}

toff_t TiffHandle::OnSeek(thandle_t self, toff_t offset, int origin) {
  auto& handle = *static_cast<TiffHandle*>(self);
  const uint64_t base = origin == SEEK_CUR   ? handle.position_
                        : origin == SEEK_END ? handle.source_.Size()
                                             : 0;
  handle.position_ = base + offset;
  return handle.position_;
}

toff_t TiffHandle::OnSize(thandle_t self) {
  return static_cast<TiffHandle*>(self)->source_.Size();
}

int TiffHandle::OnClose(thandle_t) {
  return 0;
}

}  // namespace rasterkit::detail
