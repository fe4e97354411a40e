// Saves over a picture with a world file and backups are killed at random moments. The width of a
// picture says which of the saves it is from, and so does the position that its world file states:
// they must agree for the picture and for each backup.

#include <chrono>
#include <csignal>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/placement/side_files.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/temporary_names.h>

#include "tests/support/environment.h"
#include "tests/support/full_run.h"
#include "tests/support/temp_folder.h"

namespace rasterkit::test {
namespace {

constexpr int kWidth = 400, kHeight = 30, kFullKills = 500, kKills = 40;
const Affine kFirst{2, 0, 0, -2, 1000, 5000};

struct Counts {
  int saves = 0, withWorldFile = 0, withoutWorldFile = 0, pairs = 0, lonely = 0, temporary = 0;
};

void MakePicture(const std::string& name) {
  auto rows = std::make_unique<TBitmap>();
  rows->SetPixelFormat(pf24bit);
  rows->SetSize(kWidth, kHeight);
  Picture picture = Picture::Of(std::move(rows));
  picture.Apply(PlaceStep{kFirst}).Save(name);
}

/// The process that saves, with its dots in a pipe.
class Saver {
 public:
  /// Without a call the process saves until it is killed; see saver.cpp.
  Saver(const std::string& picture, const std::string& kind, const std::string& call = {}) {
    int ends[2] = {};
    if (pipe(ends) != 0) return;
    process_ = fork();
    if (process_ == 0) {
      dup2(ends[1], STDOUT_FILENO);
      close(ends[0]);
      execl(RASTERKIT_SAVER, RASTERKIT_SAVER, picture.c_str(), kind.c_str(),
            call.empty() ? nullptr : call.c_str(), nullptr);
      _exit(127);
    }
    close(ends[1]);
    out_ = ends[0];
  }
  ~Saver() { close(out_); }
  Saver(const Saver&) = delete;
  Saver& operator=(const Saver&) = delete;

  /// Waits until the process has saved once.
  bool AwaitDot() const {
    char dot = 0;
    return read(out_, &dot, 1) == 1;
  }
  int Wait() const {
    int status = 0;
    waitpid(process_, &status, 0);
    return status;
  }
  /// Returns the number of saves that are left in the pipe; the status goes to `status`.
  int Kill(int& status) const {
    kill(process_, SIGKILL);
    waitpid(process_, &status, 0);
    int dots = 0;
    for (char dot = 0; read(out_, &dot, 1) == 1;) ++dots;
    return dots;
  }

 private:
  pid_t process_ = -1;
  int out_ = -1;
};

/// How many columns a world file says were cut off.
std::optional<double> ColumnsCut(const std::string& worldFile) {
  if (!std::filesystem::exists(worldFile)) return std::nullopt;
  // The names of backups are not those of world files.
  const TempFolder folder;
  folder.Write("a.pgw", ReadFile(worldFile));
  const Placement found = ReadPlacement(folder / "a.png", {}, kWidth, kHeight);
  EXPECT_TRUE(found.affine) << worldFile << " is not whole: " << ReadFile(worldFile);
  if (!found.affine) return std::nullopt;
  return (found.affine->x - kFirst.x) / kFirst.xPerColumn;
}

/// The width of a picture, which must be whole.
int WidthOf(const std::string& picture) {
  try {
    return Picture::Open(picture).Bitmap()->Width();
  } catch (const Error& error) {
    ADD_FAILURE() << error.what();
    return 0;
  }
}

/// Looks at one picture with its world file; both names end in `ending`.
int CheckPair(const TempFolder& folder, const std::string& ending, int& with, int& without) {
  const int width = WidthOf(folder / ("plan.png" + ending));
  const auto cut = ColumnsCut(folder / ("plan.pgw" + ending));
  if (cut) {
    EXPECT_EQ(*cut, kWidth - width) << "another one's world file: " << ending;
  }
  ++(cut ? with : without);
  return width;
}

void CheckFolder(const TempFolder& folder, int savesBefore, int saves, Counts& counts) {
  std::set<int> widths;
  int pictures = 0;
  for (const std::string& name : folder.Names()) {
    if (detail::TemporaryName::Matches(name)) {
      ++counts.temporary;
      std::filesystem::remove(folder / name);
      continue;
    }
    const std::string picture = "plan.png";
    EXPECT_TRUE(name.starts_with("plan.")) << name;
    if (!name.starts_with(picture + "~")) continue;
    ++pictures;
    widths.insert(CheckPair(folder, name.substr(picture.size()), counts.pairs, counts.lonely));
  }
  ASSERT_TRUE(std::filesystem::exists(folder / "plan.png")) << "no file under the name";
  const int width = CheckPair(folder, "", counts.withWorldFile, counts.withoutWorldFile);
  widths.insert(width);
  // Each save that is done has its picture under the name or in a backup.
  EXPECT_LE(width, kWidth - savesBefore - saves);
  for (int w = width; w <= kWidth; ++w) EXPECT_TRUE(widths.count(w)) << w << " is lost";
  EXPECT_GE(pictures, savesBefore + saves);
}

/// The next run goes on as a user would who moves an old world file back.
void PutWorldFileBack(const TempFolder& folder) {
  if (std::filesystem::exists(folder / "plan.pgw")) return;
  const int width = WidthOf(folder / "plan.png");
  Affine affine = kFirst;
  affine.x += kFirst.xPerColumn * (kWidth - width);
  folder.Write("plan.pgw", WorldFileText(affine));
}

void KillOften(const std::string& kind, int kills, uint32_t seed) {
  std::mt19937 random(seed);
  Counts counts;
  std::optional<TempFolder> folder;
  int saves = 0;
  for (int i = 0; i < kills && !testing::Test::HasFailure(); ++i) {
    SCOPED_TRACE(kind + ", kill " + std::to_string(i));
    // Too many backups, or too narrow a picture, would take the time.
    if (!folder || saves > kWidth / 8) {
      folder.emplace();
      MakePicture(*folder / "plan.png");
      saves = 0;
    }
    const Saver saver(*folder / "plan.png", kind);
    ASSERT_TRUE(saver.AwaitDot());
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 4000));
    int status = 0;
    const int done = 1 + saver.Kill(status);
    ASSERT_TRUE(WIFSIGNALED(status)) << "the saver has not been killed";
    CheckFolder(*folder, saves, done, counts);
    saves = kWidth - WidthOf(*folder / "plan.png");
    counts.saves += done;
    PutWorldFileBack(*folder);
  }
  std::cout << kind << ", seed " << seed << ": " << kills << " kills in " << counts.saves
            << " saves; killed beside a world file " << counts.withWorldFile << ", without one "
            << counts.withoutWorldFile << "; backups with a world file " << counts.pairs
            << ", without one " << counts.lonely << "; temporary files " << counts.temporary
            << "\n";
  EXPECT_GT(counts.withWorldFile, 0);
  EXPECT_GT(counts.pairs, kills);
}

class KilledSaves : public testing::TestWithParam<const char*> {};

TEST_P(KilledSaves, LeaveNoPictureBesideAnotherOnesWorldFile) {
  // The disk is not what is tested.
  std::optional<Environment> memory;
  if (access("/dev/shm", W_OK) == 0) memory.emplace("TMPDIR", "/dev/shm");
  KillOften(GetParam(), IsFullRun() ? kFullKills : kKills, 7);
}

/// The same at each system call of one save.
TEST_P(KilledSaves, LeaveWholePicturesAtEachStep) {
  std::optional<Environment> memory;
  if (access("/dev/shm", W_OK) == 0) memory.emplace("TMPDIR", "/dev/shm");
  Counts counts;
  bool isKilled = true;
  int call = 0;
  while (isKilled && !testing::Test::HasFailure()) {
    ++call;
    SCOPED_TRACE(std::string(GetParam()) + ", call " + std::to_string(call));
    const TempFolder folder;
    MakePicture(folder / "plan.png");
    const Saver saver(folder / "plan.png", GetParam(), std::to_string(call));
    const int status = saver.Wait();
    isKilled = WIFSIGNALED(status);
    ASSERT_TRUE(isKilled || status == 0) << status;
    CheckFolder(folder, 0, isKilled ? 0 : 1, counts);
  }
  std::cout << GetParam() << ": killed at " << call - 1 << " calls; beside a world file "
            << counts.withWorldFile << ", without one " << counts.withoutWorldFile
            << "; backups with a world file " << counts.pairs << ", without one " << counts.lonely
            << "; temporary files " << counts.temporary << "\n";
  EXPECT_GT(call, 60);
  EXPECT_GT(counts.withoutWorldFile, 5) << "killed between the picture and its world file";
  EXPECT_GT(counts.pairs, 5);
}

INSTANTIATE_TEST_SUITE_P(Backups, KilledSaves, testing::Values("links", "copies"),
                         [](const auto& info) { return std::string(info.param); });

}  // namespace
}  // namespace rasterkit::test
