#include <algorithm>
#include <fstream>
#include <limits>
#include <optional>
#include <sstream>
#include <string>

#include <unistd.h>

#include <rasterkit/runtime/memory/control_group.h>
#include <rasterkit/runtime/memory/machine_memory.h>

namespace rasterkit {
namespace {

std::optional<std::string> ReadFile(const std::string& file) {
  const std::ifstream stream(file);
  if (!stream) return std::nullopt;
  std::ostringstream text;
  text << stream.rdbuf();
  return std::move(text).str();
}

uint64_t PhysicalMemory() {
  const long pages = sysconf(_SC_PHYS_PAGES), page = sysconf(_SC_PAGESIZE);
  if (pages <= 0 || page <= 0) return std::numeric_limits<uint64_t>::max();
  return static_cast<uint64_t>(pages) * static_cast<uint64_t>(page);
}

}  // namespace

uint64_t MachineMemory() {
  const auto groups = ReadFile("/proc/self/cgroup"), mounts = ReadFile("/proc/self/mountinfo");
  const auto limit =
      groups && mounts ? detail::LeastGroupMemory(*groups, *mounts, ReadFile) : std::nullopt;
  return std::min(PhysicalMemory(), limit.value_or(std::numeric_limits<uint64_t>::max()));
}

}  // namespace rasterkit
