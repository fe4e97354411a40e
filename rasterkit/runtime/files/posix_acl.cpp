#include <cstddef>

#include <linux/posix_acl.h>
#include <linux/posix_acl_xattr.h>

#include <rasterkit/runtime/files/posix_acl.h>

namespace rasterkit::detail {
namespace {

constexpr size_t kHeaderBytes = 4, kEntryBytes = 8;
constexpr uint16_t kAllRights = 7;

uint32_t Number(std::span<const uint8_t> bytes) {
  uint32_t number = 0;
  for (size_t i = bytes.size(); i > 0; --i) number = number << 8 | bytes[i - 1];
  return number;
}

void Append(std::vector<uint8_t>& bytes, uint32_t number, int count) {
  for (int i = 0; i < count; ++i) bytes.push_back(static_cast<uint8_t>(number >> 8 * i));
}

}  // namespace

std::optional<PosixAcl> PosixAcl::Parse(std::span<const uint8_t> bytes) {
  if (bytes.size() < kHeaderBytes || (bytes.size() - kHeaderBytes) % kEntryBytes != 0 ||
      Number(bytes.first(kHeaderBytes)) != POSIX_ACL_XATTR_VERSION) {
    return std::nullopt;
  }
  PosixAcl acl;
  for (bytes = bytes.subspan(kHeaderBytes); !bytes.empty(); bytes = bytes.subspan(kEntryBytes)) {
    const auto tag = static_cast<uint16_t>(Number(bytes.subspan(0, 2)));
    const auto rights = static_cast<uint16_t>(Number(bytes.subspan(2, 2)));
    acl.entries_.push_back({tag, rights, Number(bytes.subspan(4, 4))});
  }
  const bool isWhole = acl.Find(ACL_USER_OBJ) != nullptr && acl.Find(ACL_GROUP_OBJ) != nullptr &&
                       acl.Find(ACL_OTHER) != nullptr;
  return isWhole ? std::optional(std::move(acl)) : std::nullopt;
}

std::vector<uint8_t> PosixAcl::Bytes() const {
  std::vector<uint8_t> bytes;
  Append(bytes, POSIX_ACL_XATTR_VERSION, 4);
  for (const Entry& entry : entries_) {
    Append(bytes, entry.tag, 2);
    Append(bytes, entry.rights, 2);
    Append(bytes, entry.id, 4);
  }
  return bytes;
}

mode_t PosixAcl::Mode() const {
  const uint16_t middle = RightsOf(Find(ACL_MASK) != nullptr ? ACL_MASK : ACL_GROUP_OBJ);
  return static_cast<mode_t>(RightsOf(ACL_USER_OBJ) << 6 | middle << 3 | RightsOf(ACL_OTHER));
}

void PosixAcl::NarrowToOtherGroup() {
  const uint16_t ofGroup = Effective(*Find(ACL_GROUP_OBJ));
  const uint16_t ofOthers = RightsOf(ACL_OTHER);
  uint16_t common = ofGroup & ofOthers;
  for (const Entry& entry : entries_) {
    // Members of the new group who are in a named group had its rights and not the others'.
    if (entry.tag == ACL_GROUP) common &= Effective(entry);
  }
  for (Entry& entry : entries_) {
    if (entry.tag == ACL_GROUP_OBJ) entry.rights = common;
    // Members of the old group are others now.
    if (entry.tag == ACL_OTHER) entry.rights = ofOthers & ofGroup;
  }
}

mode_t PosixAcl::ModeWithoutList() const {
  uint16_t ofGroup = Effective(*Find(ACL_GROUP_OBJ));
  uint16_t ofOthers = RightsOf(ACL_OTHER);
  for (const Entry& entry : entries_) {
    // An entry can also deny what the others may do. Its people then become members of the group
    // or others.
    if (entry.tag == ACL_USER) ofGroup &= Effective(entry);
    if (entry.tag == ACL_USER || entry.tag == ACL_GROUP) ofOthers &= Effective(entry);
  }
  return static_cast<mode_t>(RightsOf(ACL_USER_OBJ) << 6 | ofGroup << 3 | ofOthers);
}

const PosixAcl::Entry* PosixAcl::Find(uint16_t tag) const {
  for (const Entry& entry : entries_) {
    if (entry.tag == tag) return &entry;
  }
  return nullptr;
}

uint16_t PosixAcl::RightsOf(uint16_t tag) const {
  const Entry* entry = Find(tag);
  return entry != nullptr ? entry->rights & kAllRights : 0;
}

uint16_t PosixAcl::Effective(const Entry& entry) const {
  const uint16_t mask = Find(ACL_MASK) != nullptr ? RightsOf(ACL_MASK) : kAllRights;
  return entry.rights & mask & kAllRights;
}

mode_t NarrowedToOtherGroup(mode_t mode) {
  const mode_t common = (mode >> 3) & mode & kAllRights;
  return (mode & ~static_cast<mode_t>(077)) | common << 3 | common;
}

}  // namespace rasterkit::detail
