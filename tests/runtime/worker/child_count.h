#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

#include <signal.h>
#include <unistd.h>

/// What this process has of the system, to find leaks.
namespace rasterkit::test {

/// The process numbers of all children, ended ones that were not collected included.
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

/// Whether the process runs; an ended one that was not collected does not.
inline bool IsRunning(int process) {
  std::ifstream status("/proc/" + std::to_string(process) + "/stat");
  std::string text;
  std::getline(status, text);
  const size_t name = text.rfind(')');
  // The first thread may end before the others.
  std::error_code gone;
  const std::filesystem::directory_iterator threads("/proc/" + std::to_string(process) + "/task",
                                                    gone);
  if (!gone && std::distance(begin(threads), end(threads)) > 1) return true;
  return name != std::string::npos && name + 2 < text.size() && text[name + 2] != 'Z';
}

/// Sends a signal that ends a process to each child, and waits until they have ended.
inline void EndChildren(int signal) {
  for (const int child : Children()) {
    kill(child, signal);
    while (IsRunning(child)) usleep(1000);
  }
}

/// Waits until there are at most so many children; those that were killed may take a moment.
inline bool HasAtMostChildrenSoon(size_t most) {
  for (int i = 0; i < 3000; ++i) {
    if (Children().size() <= most) return true;
    usleep(10000);
  }
  return false;
}

inline bool HasNoChildrenSoon() {
  return HasAtMostChildrenSoon(0);
}

}  // namespace rasterkit::test
