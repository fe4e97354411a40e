#include "tool/command/progress.h"

#include <algorithm>
#include <cstdio>

#include <fmt/core.h>
#include <unistd.h>

namespace rasterkit::tool {
namespace {

void DrawBar(double share, const std::string& label) {
  constexpr size_t kWidth = 40;
  const auto filled = static_cast<size_t>(share * kWidth);
  fmt::print(stderr, "\r[{:#<{}}{:.<{}}] {}", "", filled, "", kWidth - filled, label);
  std::fflush(stderr);
}

void ClearBar() {
  fmt::print(stderr, "\r\033[K");
}

}  // namespace

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
  if (visible_) ClearBar();
}

void Progress::Draw() const {
  if (!visible_) return;
  DrawBar(static_cast<double>(done_) / static_cast<double>(files_),
          fmt::format("{}/{}", done_, files_));
}

OperationBar::OperationBar(bool isWanted) : visible_(isWanted && isatty(STDERR_FILENO)) {}

OperationBar::~OperationBar() {
  if (visible_) ClearBar();
}

TProgressEvent OperationBar::Event() {
  if (!visible_) return {};
  return [this](float percent) {
    const std::lock_guard lock(mutex_);
    const double share = std::clamp(static_cast<double>(percent) / 100, 0.0, 1.0);
    DrawBar(share, fmt::format("{:.0f} %", share * 100));
  };
}

std::function<void(double)> OperationBar::Shares() {
  if (!visible_) return {};
  return [event = Event()](double share) { event(static_cast<float>(share * 100)); };
}

}  // namespace rasterkit::tool
