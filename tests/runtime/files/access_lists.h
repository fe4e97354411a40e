#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <sys/xattr.h>

/// Access control lists as extended attributes, written and read without a library.
namespace rasterkit::test {

constexpr const char* kListAttribute = "system.posix_acl_access";
constexpr uint16_t kUserOwner = 1, kUser = 2, kGroupOwner = 4, kGroup = 8, kMask = 16, kOther = 32;
constexpr uint32_t kNoId = 0xFFFFFFFF;

struct ListEntry {
  uint16_t tag, rights;
  uint32_t id;

  bool operator==(const ListEntry&) const = default;
};

inline std::vector<uint8_t> ListBytes(const std::vector<ListEntry>& entries) {
  std::vector<uint8_t> bytes = {2, 0, 0, 0};
  for (const ListEntry& entry : entries) {
    for (const int shift : {0, 8}) bytes.push_back(static_cast<uint8_t>(entry.tag >> shift));
    for (const int shift : {0, 8}) bytes.push_back(static_cast<uint8_t>(entry.rights >> shift));
    for (const int shift : {0, 8, 16, 24}) bytes.push_back(static_cast<uint8_t>(entry.id >> shift));
  }
  return bytes;
}

inline std::vector<ListEntry> EntriesOf(const std::vector<uint8_t>& bytes) {
  std::vector<ListEntry> entries;
  const auto number = [&](size_t at, size_t count) {
    uint32_t value = 0;
    for (size_t i = count; i > 0; --i) value = value << 8 | bytes[at + i - 1];
    return value;
  };
  for (size_t at = 4; at + 8 <= bytes.size(); at += 8) {
    entries.push_back({static_cast<uint16_t>(number(at, 2)),
                       static_cast<uint16_t>(number(at + 2, 2)), number(at + 4, 4)});
  }
  return entries;
}

/// Returns false if the file system does not have such lists.
inline bool SetList(const std::string& file, const char* attribute,
                    const std::vector<ListEntry>& entries) {
  const std::vector<uint8_t> bytes = ListBytes(entries);
  return setxattr(file.c_str(), attribute, bytes.data(), bytes.size(), 0) == 0;
}

/// Nothing if the file has no list.
inline std::optional<std::vector<ListEntry>> ListOf(const std::string& file) {
  std::vector<uint8_t> bytes(4096);
  const ssize_t size = getxattr(file.c_str(), kListAttribute, bytes.data(), bytes.size());
  if (size < 0) return std::nullopt;
  bytes.resize(static_cast<size_t>(size));
  return EntriesOf(bytes);
}

}  // namespace rasterkit::test
