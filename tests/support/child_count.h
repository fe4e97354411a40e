#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <unistd.h>

/// What this process has of the system, to find leaks.
namespace rasterkit::test {

/// The process numbers of all children, ended ones that nobody collected included.
inline std::vector<int> Children() {
  std::vector<int> children;
  for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
    std::ifstream list(thread.path() / "children");
    children.insert(children.end(), std::istream_iterator<int>(list), {});
  }
  return children;
}

/// The number of open files.
inline size_t OpenFiles() {
  const std::filesystem::directory_iterator files("/proc/self/fd");
  return static_cast<size_t>(std::distance(begin(files), end(files)));
}

/// Waits until all children are gone; those that a thread collects may take a moment.
inline bool HasNoChildrenSoon() {
  for (int i = 0; i < 3000; ++i) {
    if (Children().empty()) return true;
    usleep(10000);
  }
  return false;
}

}  // namespace rasterkit::test
