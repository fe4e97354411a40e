#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include <sys/types.h>

namespace rasterkit::detail {

/// An access control list as the extended attribute system.posix_acl_access holds it.
class PosixAcl {
 public:
  static constexpr const char* kAttribute = "system.posix_acl_access";

  /// Returns nothing if the bytes are not a list with an owner, a group and others.
  static std::optional<PosixAcl> Parse(std::span<const uint8_t> bytes);
  std::vector<uint8_t> Bytes() const;

  /// The mode bits rwxrwxrwx that a file with this list has; the middle three are the mask.
  mode_t Mode() const;

  /// Takes away the rights that somebody would gain when the file moves from its group to another
  /// one.
  void NarrowToOtherGroup();

  /// The most mode bits that give no one more rights when the list is dropped.
  mode_t ModeWithoutList() const;

 private:
  struct Entry {
    uint16_t tag;
    uint16_t rights;
    uint32_t id;
  };

  const Entry* Find(uint16_t tag) const;
  uint16_t RightsOf(uint16_t tag) const;
  /// What an entry grants: the mask limits the group and all named users and groups.
  uint16_t Effective(const Entry& entry) const;

  std::vector<Entry> entries_;
};

/// Same as PosixAcl::NarrowToOtherGroup for a file without a list: the group and the others keep
/// the rights that both had.
mode_t NarrowedToOtherGroup(mode_t mode);

}  // namespace rasterkit::detail
