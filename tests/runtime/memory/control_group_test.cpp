#include <map>

#include <gtest/gtest.h>

#include <rasterkit/runtime/memory/control_group.h>
#include <rasterkit/runtime/memory/machine_memory.h>

namespace rasterkit::detail {
namespace {

using Files = std::map<std::string, std::string>;

std::optional<uint64_t> Least(std::string_view groups, std::string_view mounts,
                              const Files& files) {
  return LeastGroupMemory(groups, mounts,
                          [&](const std::string& name) -> std::optional<std::string> {
                            const auto found = files.find(name);
                            if (found == files.end()) return std::nullopt;
                            return found->second;
                          });
}

constexpr std::string_view kVersion2 =
    "24 1 0:21 / /proc rw - proc proc rw\n"
    "30 23 0:26 / /sys/fs/cgroup rw,nosuid shared:4 - cgroup2 cgroup2 rw,nsdelegate\n";
constexpr std::string_view kVersion1 =
    "30 23 0:26 / /sys/fs/cgroup ro - tmpfs tmpfs ro,mode=755\n"
    "31 30 0:27 / /sys/fs/cgroup/cpu rw shared:9 - cgroup cgroup rw,cpu\n"
    "32 30 0:28 / /sys/fs/cgroup/mem rw shared:9 master:2 - cgroup cgroup rw,memory\n";

TEST(ControlGroup, Version2_TakesTheLeastOfAllParents) {
  Files files = {{"/sys/fs/cgroup/memory.max", "9000\n"},
                 {"/sys/fs/cgroup/a/memory.max", "700\n"},
                 {"/sys/fs/cgroup/a/b/memory.max", "800\n"},
                 {"/sys/fs/cgroup/a/b/c/memory.max", "max\n"},
                 {"/sys/fs/cgroup/a/x/memory.max", "1\n"}};
  EXPECT_EQ(Least("0::/a/b/c\n", kVersion2, files), 700u);
  EXPECT_EQ(Least("0::/\n", kVersion2, files), 9000u);
  EXPECT_EQ(Least("0::/a/x\n", kVersion2, files), 1u);
  files["/sys/fs/cgroup/a/b/c/memory.max"] = "600\n";
  EXPECT_EQ(Least("0::/a/b/c\n", kVersion2, files), 600u);
  files["/sys/fs/cgroup/memory.max"] = "500\n";
  EXPECT_EQ(Least("0::/a/b/c\n", kVersion2, files), 500u);
}

TEST(ControlGroup, Version1_TakesTheLeastOfAllParentsOfTheMemoryController) {
  const Files files = {{"/sys/fs/cgroup/mem/memory.limit_in_bytes", "9223372036854771712\n"},
                       {"/sys/fs/cgroup/mem/job/memory.limit_in_bytes", "3000\n"},
                       {"/sys/fs/cgroup/mem/job/7/memory.limit_in_bytes", "4000\n"},
                       {"/sys/fs/cgroup/cpu/other/memory.limit_in_bytes", "1\n"}};
  EXPECT_EQ(Least("2:cpu:/other\n5:memory:/job/7\n", kVersion1, files), 3000u);
  EXPECT_EQ(Least("2:cpu:/other\n", kVersion1, files), std::nullopt);
  EXPECT_EQ(Least("5:memory:/\n", kVersion1, files), std::nullopt);
  const std::string joined = "40 30 0:29 / /joint rw - cgroup cgroup rw,cpuset,memory,blkio\n";
  EXPECT_EQ(Least("3:blkio,memory,cpuset:/j\n", joined, {{"/joint/j/memory.limit_in_bytes", "77"}}),
            77u);
}

TEST(ControlGroup, BothVersions_CountTogether) {
  const std::string mounts =
      std::string(kVersion1) + "41 30 0:38 / /sys/fs/cgroup/unified rw - cgroup2 cgroup2 rw\n";
  const Files files = {{"/sys/fs/cgroup/mem/a/memory.limit_in_bytes", "3000"},
                       {"/sys/fs/cgroup/unified/memory.max", "2000"}};
  EXPECT_EQ(Least("5:memory:/a\n0::/\n", mounts, files), 2000u);
}

TEST(ControlGroup, MountedPart_ShowsItsRootAtTheMountPoint) {
  const std::string_view mounts = "30 23 0:26 /pod/one /cg rw - cgroup2 cgroup2 rw\n";
  const Files files = {
      {"/cg/memory.max", "50"}, {"/cg/in/memory.max", "40"}, {"/cg/two/memory.max", "1"}};
  EXPECT_EQ(Least("0::/pod/one\n", mounts, files), 50u);
  EXPECT_EQ(Least("0::/pod/one/in\n", mounts, files), 40u);
  // Another group, whose name only begins the same, or one above the root of the namespace: the
  // mount point shows the nearest one.
  EXPECT_EQ(Least("0::/pod/one-two\n", mounts, files), 50u);
  EXPECT_EQ(Least("0::/../two\n", kVersion2, {{"/sys/fs/cgroup/memory.max", "60"}}), 60u);
}

TEST(ControlGroup, NamesWithBlanks_AreFound) {
  const std::string_view mounts = "30 23 0:26 / /my\\040groups rw - cgroup2 cgroup2 rw\n";
  EXPECT_EQ(Least("0::/a b\n", mounts, {{"/my groups/a b/memory.max", "12"}}), 12u);
  EXPECT_EQ(Least("0::/a:b\n", mounts, {{"/my groups/a:b/memory.max", "13"}}), 13u);
}

TEST(ControlGroup, OtherTexts_HaveNoLimit) {
  for (const std::string_view text : {"", "\n", "0", "0::", ":::", "x - cgroup2", "- - - - -",
                                      "30 23 0:26 / /cg rw -", "30 23 0:26 / /cg rw - cgroup2 a"}) {
    EXPECT_EQ(Least(text, kVersion2, {}), std::nullopt) << text;
    EXPECT_EQ(Least("0::/a\n", text, {{"/cg/a/memory.max", "1"}}), std::nullopt) << text;
  }
  EXPECT_EQ(Least("0::/a\n", kVersion2, {{"/sys/fs/cgroup/a/memory.max", "many"}}), std::nullopt);
}

TEST(MachineMemory, IsThere) {
  EXPECT_GT(MachineMemory(), uint64_t{1} << 20);
  EXPECT_LT(MachineMemory(), uint64_t{1} << 60);
}

}  // namespace
}  // namespace rasterkit::detail
