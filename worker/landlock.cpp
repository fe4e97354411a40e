#include "worker/landlock.h"

#include <cstdint>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <rasterkit/runtime/files/system_file.h>

namespace rasterkit::worker {
namespace {

// The numbers are the same for all processors. The headers of a distribution may be older than its
// users' kernels, so the kernel's interface is repeated here.
constexpr long kCreateRuleset = 444;
constexpr long kAddRule = 445;
constexpr long kRestrictSelf = 446;
constexpr uint32_t kAskVersion = 1;
constexpr int kRulePathBeneath = 1;

constexpr uint64_t kReadFile = uint64_t{1} << 2;
constexpr uint64_t kReadFolder = uint64_t{1} << 3;

struct Ruleset {
  uint64_t files;
  uint64_t network;
  uint64_t scopes;
};

struct [[gnu::packed]] PathRule {
  uint64_t allowed;
  int32_t folder;
};

constexpr uint64_t FirstBits(int count) {
  return (uint64_t{1} << count) - 1;
}

/// All rights that a kernel of this version can take away.
Ruleset EverythingIn(int version) {
  constexpr int kRights = 13;
  int files = kRights;
  if (version >= 2) ++files;
  if (version >= 3) ++files;
  if (version >= 5) ++files;
  const uint64_t network = version >= 4 ? FirstBits(2) : 0;
  const uint64_t scopes = version >= 6 ? FirstBits(2) : 0;
  return {FirstBits(files), network, scopes};
}

/// An older kernel refuses a structure that is longer than its own.
size_t RulesetBytes(int version) {
  if (version >= 6) return sizeof(Ruleset);
  return version >= 4 ? 2 * sizeof(uint64_t) : sizeof(uint64_t);
}

void AllowReading(int ruleset, const std::string& folder) {
  const detail::SystemFile place(open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  if (!place.IsOpen()) return;
  const PathRule rule{kReadFile | kReadFolder, place.Handle()};
  syscall(kAddRule, ruleset, kRulePathBeneath, &rule, 0);
}

}  // namespace

int RestrictFiles(const std::vector<std::string>& readable) {
  const auto version = static_cast<int>(syscall(kCreateRuleset, nullptr, 0, kAskVersion));
  if (version < 1) return 0;
  const Ruleset everything = EverythingIn(version);
  const detail::SystemFile ruleset(
      static_cast<int>(syscall(kCreateRuleset, &everything, RulesetBytes(version), 0)));
  if (!ruleset.IsOpen()) return 0;
  for (const std::string& folder : readable) AllowReading(ruleset.Handle(), folder);
  return syscall(kRestrictSelf, ruleset.Handle(), 0) == 0 ? version : 0;
}

}  // namespace rasterkit::worker
