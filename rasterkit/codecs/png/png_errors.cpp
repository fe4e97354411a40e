#include <cstdio>
#include <cstring>
#include <utility>

#include <rasterkit/codecs/png/png_errors.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {

namespace {

PngErrors& ErrorsOf(png_structp png) {
  return *static_cast<PngErrors*>(png_get_error_ptr(png));
}

}  // namespace

void PngErrors::OnFatal(png_structp png, png_const_charp text) {
  PngErrors& errors = ErrorsOf(png);
  std::snprintf(errors.message_, sizeof errors.message_, "%s", text);
  std::longjmp(errors.jump, 1);
}

void PngErrors::OnWarning(png_structp png, png_const_charp text) {
  PngErrors& errors = ErrorsOf(png);
  if (errors.warningCount_ == kKeptWarnings) return;
  char* kept = errors.warnings_[errors.warningCount_];
  std::snprintf(kept, kTextBytes, "%s", text);
  for (int i = 0; i < errors.warningCount_; i++) {
    if (std::strcmp(errors.warnings_[i], kept) == 0) return;
  }
  errors.warningCount_++;
}

void PngErrors::Throw() const {
  if (std::strstr(message_, "emory") != nullptr) throw LimitError(Reason());
  throw FormatError(Reason());
}

bool PngErrors::MessageIs(const char* text) const {
  return std::strcmp(message_, text) == 0;
}

int PngErrors::CopyTo(CodecReport& report, int first) const {
  for (int i = first; i < warningCount_; i++) {
    std::string text = std::string("PNG: ") + warnings_[i];
    // Without this chunk the pixels lose their opacities.
    if (text.starts_with("PNG: tRNS")) {
      report.AddDamage(std::move(text));
    } else {
      report.warnings.push_back(std::move(text));
    }
  }
  return warningCount_;
}

}  // namespace rasterkit::detail
