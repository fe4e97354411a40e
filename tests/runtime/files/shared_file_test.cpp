#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/shared_file.h>

#include "tests/support/temp_folder.h"

namespace rasterkit {
namespace {

using test::TempFolder;

std::string TextOf(TStream& stream) {
  const std::vector<uint8_t> bytes = stream.ReadToEnd();
  return {bytes.begin(), bytes.end()};
}

TEST(SharedFile, HasStreamsWithPlacesOfTheirOwn) {
  const TempFolder folder;
  const SharedFile file(folder.Write("a", "0123456789"));
  EXPECT_TRUE(file.IsRegular());
  EXPECT_EQ(file.Size(), 10u);
  const auto first = file.Stream(), second = file.Stream();
  first->SetPosition(4);
  EXPECT_EQ(TextOf(*second), "0123456789");
  EXPECT_EQ(TextOf(*first), "456789");
  EXPECT_EQ(second->Position(), 10u);
  const uint8_t byte = 0;
  EXPECT_THROW(first->Write({&byte, 1}), UnsupportedError);
}

TEST(SharedFile, StreamsOutliveIt) {
  const TempFolder folder;
  std::unique_ptr<TStream> stream;
  {
    const SharedFile file(folder.Write("a", "0123"));
    stream = file.Stream();
  }
  EXPECT_EQ(TextOf(*stream), "0123");
}

TEST(SharedFile, ReadsWhatWasOpened) {
  const TempFolder folder;
  const std::string name = folder.Write("a", "old");
  const SharedFile file(name);
  EXPECT_TRUE(file.IsNamed(name));
  std::filesystem::rename(folder.Write("b", "newer"), name);
  EXPECT_EQ(TextOf(*file.Stream()), "old");
  EXPECT_FALSE(file.IsNamed(name));
  EXPECT_NO_THROW(file.RequireUnchanged());
  std::filesystem::remove(name);
  EXPECT_FALSE(file.IsNamed(name));
  EXPECT_NO_THROW(file.RequireUnchanged());
}

TEST(SharedFile, NoticesAnotherSizeAndAnotherTime) {
  const TempFolder folder;
  const std::string name = folder.Write("a", "old");
  const SharedFile file(name);
  EXPECT_NO_THROW(file.RequireUnchanged());
  std::filesystem::last_write_time(
      name, std::filesystem::file_time_type::clock::now() + std::chrono::seconds(7));
  try {
    file.RequireUnchanged();
    ADD_FAILURE() << "no error";
  } catch (const FileError& error) {
    EXPECT_EQ(error.File(), name);
  }
  const SharedFile again(name);
  EXPECT_NO_THROW(again.RequireUnchanged());
  const auto time = std::filesystem::last_write_time(name);
  std::ofstream(name, std::ios::app) << "er";
  std::filesystem::last_write_time(name, time);
  EXPECT_THROW(again.RequireUnchanged(), FileError);
}

TEST(SharedFile, IsNoFolder) {
  const TempFolder folder;
  EXPECT_THROW(SharedFile(folder.Path().string()), FileError);
  EXPECT_THROW(SharedFile(folder / "none"), FileError);
  EXPECT_FALSE(SharedFile("/dev/null").IsRegular());
}

}  // namespace
}  // namespace rasterkit
