#include "apps/rasterkit/progress.h"

#include <cstdio>

#include <fmt/format.h>
#include <unistd.h>

namespace rasterkit::tool {

Progress::Progress(size_t files) : files_(files), visible_(files > 1 && isatty(STDERR_FILENO)) {
  Draw();
}

Progress::~Progress() {
  Clear();
}

void Progress::Advance() {
  ++done_;
  Draw();
}

void Progress::Clear() {
  if (visible_) fmt::print(stderr, "\r\033[K");
}

void Progress::Draw() const {
  if (!visible_) return;
  constexpr size_t width = 40;
  const size_t filled = done_ * width / files_;
  fmt::print(stderr, "\r[{:#<{}}{:.<{}}] {}/{}", "", filled, "", width - filled, done_, files_);
  std::fflush(stderr);
}

}  // namespace rasterkit::tool
