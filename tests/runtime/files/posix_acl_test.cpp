// Lists are narrowed so that no one gains a right: compared with a plain model of the system's
// check, for many random lists and for users in every combination of groups.

#include <algorithm>
#include <optional>
#include <random>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/runtime/files/posix_acl.h>

#include "tests/runtime/files/access_lists.h"

namespace rasterkit::test {
namespace {

using detail::PosixAcl;

constexpr uint32_t kOldGroup = 100, kNewGroup = 200, kThirdGroup = 300;
constexpr uint32_t kNamedUser = 2, kOtherUser = 3;

struct Person {
  uint32_t id;
  std::vector<uint32_t> groups;

  bool IsIn(uint32_t group) const {
    return std::find(groups.begin(), groups.end(), group) != groups.end();
  }
};

/// Whether somebody who is not the owner may do all of `rights`.
bool MayDo(const Person& person, const std::vector<ListEntry>& entries, uint32_t fileGroup,
           int rights) {
  int mask = 7;
  for (const ListEntry& entry : entries) {
    if (entry.tag == kMask) mask = entry.rights;
  }
  for (const ListEntry& entry : entries) {
    if (entry.tag == kUser && entry.id == person.id)
      return (entry.rights & mask & rights) == rights;
  }
  bool isMember = false;
  for (const ListEntry& entry : entries) {
    const bool matches = (entry.tag == kGroupOwner && person.IsIn(fileGroup)) ||
                         (entry.tag == kGroup && person.IsIn(entry.id));
    if (!matches) continue;
    isMember = true;
    if ((entry.rights & mask & rights) == rights) return true;
  }
  if (isMember) return false;
  for (const ListEntry& entry : entries) {
    if (entry.tag == kOther) return (entry.rights & rights) == rights;
  }
  return false;
}

std::vector<ListEntry> EntriesOfMode(mode_t mode) {
  return {{kUserOwner, static_cast<uint16_t>(mode >> 6 & 7), kNoId},
          {kGroupOwner, static_cast<uint16_t>(mode >> 3 & 7), kNoId},
          {kOther, static_cast<uint16_t>(mode & 7), kNoId}};
}

std::vector<Person> People() {
  std::vector<Person> people;
  for (const uint32_t id : {kNamedUser, kOtherUser}) {
    for (int groups = 0; groups < 8; ++groups) {
      Person person{id, {}};
      if (groups & 1) person.groups.push_back(kOldGroup);
      if (groups & 2) person.groups.push_back(kNewGroup);
      if (groups & 4) person.groups.push_back(kThirdGroup);
      people.push_back(person);
    }
  }
  return people;
}

/// Returns how many rights somebody lost; fails if somebody gains one.
int CountLosses(const std::vector<ListEntry>& before, const std::vector<ListEntry>& after,
                uint32_t groupAfter) {
  int losses = 0;
  for (const Person& person : People()) {
    for (int rights = 1; rights <= 7; ++rights) {
      const bool could = MayDo(person, before, kOldGroup, rights);
      const bool can = MayDo(person, after, groupAfter, rights);
      EXPECT_TRUE(could || !can) << "user " << person.id << " rights " << rights;
      losses += could && !can ? 1 : 0;
    }
  }
  return losses;
}

class PosixAclTest : public testing::Test {
 protected:
  std::vector<ListEntry> RandomList() {
    std::vector<ListEntry> entries = {{kUserOwner, Rights(), kNoId}};
    if (Rights() & 1) entries.push_back({kUser, Rights(), kNamedUser});
    entries.push_back({kGroupOwner, Rights(), kNoId});
    if (Rights() & 1) entries.push_back({kGroup, Rights(), kNewGroup});
    if (Rights() & 1) entries.push_back({kGroup, Rights(), kThirdGroup});
    entries.push_back({kMask, Rights(), kNoId});
    entries.push_back({kOther, Rights(), kNoId});
    return entries;
  }
  uint16_t Rights() { return static_cast<uint16_t>(random_() % 8); }

  std::mt19937 random_{7};
};

TEST_F(PosixAclTest, Bytes_ComeBackAsTheyWere) {
  for (int i = 0; i < 100; ++i) {
    const std::vector<uint8_t> bytes = ListBytes(RandomList());
    const auto acl = PosixAcl::Parse(bytes);
    ASSERT_TRUE(acl);
    EXPECT_EQ(acl->Bytes(), bytes);
  }
}

TEST_F(PosixAclTest, DamagedBytes_AreNoList) {
  const std::vector<uint8_t> bytes = ListBytes(RandomList());
  for (size_t size = 0; size < bytes.size(); ++size) {
    if (size == 4 + 8 * ((size - 4) / 8) && size >= 4) continue;
    EXPECT_FALSE(PosixAcl::Parse(std::span(bytes).first(size))) << size;
  }
  EXPECT_FALSE(PosixAcl::Parse(std::span(bytes).first(4))) << "no owner";
  std::vector<uint8_t> newer = bytes;
  newer[0] = 3;
  EXPECT_FALSE(PosixAcl::Parse(newer));
}

TEST_F(PosixAclTest, Mode_ShowsTheMask) {
  const auto acl = PosixAcl::Parse(ListBytes({{kUserOwner, 6, kNoId},
                                              {kUser, 7, 5},
                                              {kGroupOwner, 4, kNoId},
                                              {kMask, 6, kNoId},
                                              {kOther, 1, kNoId}}));
  EXPECT_EQ(acl->Mode(), 0661u);
  EXPECT_EQ(acl->ModeWithoutList(), 0640u) << "the named user can read and write, not execute";
}

TEST_F(PosixAclTest, OtherGroup_GivesNobodyMore) {
  for (int i = 0; i < 20'000; ++i) {
    const std::vector<ListEntry> before = RandomList();
    auto acl = PosixAcl::Parse(ListBytes(before));
    acl->NarrowToOtherGroup();
    CountLosses(before, EntriesOf(acl->Bytes()), kNewGroup);
    if (HasFailure()) return;
  }
}

TEST_F(PosixAclTest, DroppedList_GivesNobodyMore) {
  for (int i = 0; i < 20'000; ++i) {
    const std::vector<ListEntry> before = RandomList();
    auto acl = PosixAcl::Parse(ListBytes(before));
    CountLosses(before, EntriesOfMode(acl->ModeWithoutList()), kOldGroup);
    acl->NarrowToOtherGroup();
    CountLosses(before, EntriesOfMode(acl->ModeWithoutList()), kNewGroup);
    if (HasFailure()) return;
  }
}

TEST_F(PosixAclTest, OtherGroupOfAMode_GivesNobodyMoreAndKeepsWhatBothHad) {
  for (mode_t mode = 0; mode <= 0777; ++mode) {
    const mode_t narrowed = detail::NarrowedToOtherGroup(mode);
    const int losses = CountLosses(EntriesOfMode(mode), EntriesOfMode(narrowed), kNewGroup);
    const bool areEqual = (mode >> 3 & 7) == (mode & 7);
    EXPECT_TRUE(losses == 0 || !areEqual);
    EXPECT_EQ(narrowed & 0700, mode & 0700);
  }
  EXPECT_EQ(detail::NarrowedToOtherGroup(0664), 0644u);
  EXPECT_EQ(detail::NarrowedToOtherGroup(0640), 0600u);
  EXPECT_EQ(detail::NarrowedToOtherGroup(0604), 0600u) << "the old group could not read";
}

}  // namespace
}  // namespace rasterkit::test
