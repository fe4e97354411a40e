#include <algorithm>
#include <charconv>
#include <vector>

#include <rasterkit/runtime/memory/control_group.h>

namespace rasterkit::detail {
namespace {

constexpr std::string_view kController = "memory";

std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  for (;;) {
    const size_t end = text.find(separator);
    parts.push_back(text.substr(0, end));
    if (end == std::string_view::npos) return parts;
    text.remove_prefix(end + 1);
  }
}

bool Contains(const std::vector<std::string_view>& parts, std::string_view part) {
  return std::find(parts.begin(), parts.end(), part) != parts.end();
}

/// The system writes blanks and other special characters of a path as a backslash and three octal
/// digits.
std::string Unescaped(std::string_view text) {
  const auto isOctal = [&](size_t at) { return text[at] >= '0' && text[at] <= '7'; };
  std::string path;
  for (size_t i = 0; i < text.size(); ++i) {
    const bool isEscape = text[i] == '\\' && i + 3 < text.size() && isOctal(i + 1) &&
                          isOctal(i + 2) && isOctal(i + 3);
    if (!isEscape) {
      path += text[i];
      continue;
    }
    path +=
        static_cast<char>((text[i + 1] - '0') * 64 + (text[i + 2] - '0') * 8 + text[i + 3] - '0');
    i += 3;
  }
  return path;
}

/// A mounted tree of groups that have a memory limit.
struct Tree {
  bool isVersion2 = false;
  /// The group that is seen at the mount point.
  std::string root;
  std::string mountPoint;
};

/// "36 35 98:0 ROOT MOUNTPOINT rw,noatime master:1 - TYPE SOURCE OPTIONS"
std::optional<Tree> TreeOf(std::string_view mount) {
  const std::vector<std::string_view> fields = Split(mount, ' ');
  constexpr size_t kRoot = 3, kMountPoint = 4, kFirstOptional = 6;
  if (fields.size() <= kFirstOptional) return std::nullopt;
  const auto dash = std::find(fields.begin() + kFirstOptional, fields.end(), "-");
  if (fields.end() - dash < 4) return std::nullopt;
  Tree tree{dash[1] == "cgroup2", Unescaped(fields[kRoot]), Unescaped(fields[kMountPoint])};
  const bool isVersion1 = dash[1] == "cgroup" && Contains(Split(dash[3], ','), kController);
  if (!tree.isVersion2 && !isVersion1) return std::nullopt;
  return tree;
}

/// The group of the process in a tree: "0::PATH" in version 2, "5:cpu,memory:PATH" in version 1.
std::optional<std::string_view> GroupIn(const Tree& tree, std::string_view groups) {
  for (const std::string_view line : Split(groups, '\n')) {
    const size_t first = line.find(':');
    const size_t second = first == std::string_view::npos ? first : line.find(':', first + 1);
    if (second == std::string_view::npos) continue;
    const std::string_view controllers = line.substr(first + 1, second - first - 1);
    const bool isIts = tree.isVersion2 ? controllers.empty() && line.substr(0, first) == "0"
                                       : Contains(Split(controllers, ','), kController);
    if (isIts) return line.substr(second + 1);
  }
  return std::nullopt;
}

/// The path of the group below the mount point. Empty if the group is not below the root: then the
/// mount point shows the nearest group that the process can see.
std::string_view BelowMount(const Tree& tree, std::string_view group) {
  if (tree.root != "/") {
    if (!group.starts_with(tree.root)) return {};
    group.remove_prefix(tree.root.size());
    if (!group.empty() && group[0] != '/') return {};
  }
  // Another namespace shows groups above its root with such steps.
  if (Contains(Split(group, '/'), "..")) return {};
  while (group.ends_with('/')) group.remove_suffix(1);
  return group;
}

/// A number; nothing for "max", and for the number beyond all memory that version 1 has instead.
std::optional<uint64_t> LimitOf(const std::string& text) {
  constexpr uint64_t kNone = uint64_t{1} << 62;
  uint64_t bytes = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), bytes);
  if (error != std::errc() || bytes >= kNone) return std::nullopt;
  return bytes;
}

}  // namespace

std::optional<uint64_t> LeastGroupMemory(std::string_view groups, std::string_view mounts,
                                         const ReadText& read) {
  std::optional<uint64_t> least;
  for (const std::string_view mount : Split(mounts, '\n')) {
    const std::optional<Tree> tree = TreeOf(mount);
    const auto group = tree ? GroupIn(*tree, groups) : std::nullopt;
    if (!group) continue;
    const char* const file = tree->isVersion2 ? "/memory.max" : "/memory.limit_in_bytes";
    std::string folder = tree->mountPoint + std::string(BelowMount(*tree, *group));
    for (;;) {
      const auto text = read(folder + file);
      const auto limit = text ? LimitOf(*text) : std::nullopt;
      if (limit) least = std::min(*limit, least.value_or(*limit));
      if (folder.size() <= tree->mountPoint.size()) break;
      folder.resize(folder.rfind('/'));
    }
  }
  return least;
}

}  // namespace rasterkit::detail
