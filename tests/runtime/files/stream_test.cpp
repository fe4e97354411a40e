#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <limits>
#include <numeric>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/stream.h>
#include <rasterkit/runtime/memory/memory_budget.h>

#include "tests/support/temp_folder.h"

namespace rasterkit {
namespace {

using testing::ElementsAre;
using Bytes = std::vector<uint8_t>;

Bytes CountingBytes(size_t count) {
  Bytes bytes(count);
  std::iota(bytes.begin(), bytes.end(), uint8_t{0});
  return bytes;
}

Bytes Read(TStream& stream, size_t count) {
  Bytes bytes(count);
  bytes.resize(stream.Read(bytes));
  return bytes;
}

class StreamTest : public testing::Test {
 protected:
  void TearDown() override { SetPictureMemoryLimit(uint64_t{4} << 30); }
  const test::TempFolder folder_;
};

using MemoryStreamTest = StreamTest;
using SpanStreamTest = StreamTest;
using FileStreamTest = StreamTest;

TEST_F(MemoryStreamTest, Write_GrowsAndMoves) {
  TMemoryStream stream;
  stream.Write(Bytes{1, 2, 3});
  EXPECT_EQ(stream.Position(), 3u);
  stream.SetPosition(1);
  stream.Write(Bytes{9, 8, 7});
  EXPECT_THAT(stream.Bytes(), ElementsAre(1, 9, 8, 7));
  EXPECT_EQ(stream.Size(), 4u);
}

TEST_F(MemoryStreamTest, WriteBeyondTheEnd_FillsWithZeros) {
  TMemoryStream stream;
  stream.SetPosition(2);
  stream.Write({});
  EXPECT_EQ(stream.Size(), 0u);
  stream.Write(Bytes{5});
  EXPECT_THAT(stream.Bytes(), ElementsAre(0, 0, 5));
}

TEST_F(MemoryStreamTest, WriteBeyondAllMemory_ThrowsAndKeepsTheContent) {
  TMemoryStream stream(Bytes{1});
  stream.SetPosition(std::numeric_limits<uint64_t>::max());
  EXPECT_THROW(stream.Write(Bytes{5}), LimitError);
  stream.SetPosition(std::numeric_limits<uint64_t>::max() / 2);
  EXPECT_THROW(stream.Write(Bytes{5}), LimitError);
  EXPECT_THAT(stream.Bytes(), ElementsAre(1));
}

TEST_F(MemoryStreamTest, Read_StopsAtTheEnd) {
  TMemoryStream stream(Bytes{1, 2, 3});
  EXPECT_THAT(Read(stream, 2), ElementsAre(1, 2));
  EXPECT_THAT(Read(stream, 2), ElementsAre(3));
  EXPECT_THAT(Read(stream, 2), ElementsAre());
  stream.SetPosition(100);
  EXPECT_THAT(Read(stream, 2), ElementsAre());
}

TEST_F(MemoryStreamTest, ReadScattered_FillsPieceAfterPiece) {
  TMemoryStream stream(Bytes{1, 2, 3, 4});
  Bytes a(2), b(0), c(3);
  const std::array<std::span<uint8_t>, 3> pieces{a, b, c};
  EXPECT_EQ(stream.ReadScattered(pieces), 4u);
  EXPECT_THAT(a, ElementsAre(1, 2));
  EXPECT_THAT(c, ElementsAre(3, 4, 0));
}

TEST_F(MemoryStreamTest, ReadExactly_ThrowsWhenBytesAreMissing) {
  TMemoryStream stream(Bytes{1, 2, 3});
  Bytes target(4);
  try {
    stream.ReadExactly(target);
    FAIL();
  } catch (const FormatError& error) {
    EXPECT_STREQ(error.what(), "unexpected end of data");
  }
}

TEST_F(MemoryStreamTest, ReadToEnd_TakesWhatFollowsThePosition) {
  TMemoryStream stream(Bytes{1, 2, 3});
  stream.SetPosition(1);
  EXPECT_THAT(stream.ReadToEnd(), ElementsAre(2, 3));
  EXPECT_THAT(stream.ReadToEnd(), ElementsAre());
  stream.SetPosition(50);
  EXPECT_THAT(stream.ReadToEnd(), ElementsAre());
}

TEST_F(MemoryStreamTest, ReadToEnd_RespectsThePictureMemoryLimit) {
  TMemoryStream stream(CountingBytes(1000));
  SetPictureMemoryLimit(1000);
  EXPECT_EQ(stream.ReadToEnd().size(), 1000u);
  stream.SetPosition(0);
  SetPictureMemoryLimit(999);
  EXPECT_THROW(stream.ReadToEnd(), LimitError);
}

/// Gives 1 to 65535 bytes at a time, as pipes do.
class DribblingStream : public TMemoryStream {
 public:
  using TMemoryStream::TMemoryStream;
  size_t Read(std::span<uint8_t> target) override {
    std::uniform_int_distribution<size_t> bytes(1, most_);
    return TMemoryStream::Read(target.first(std::min(target.size(), bytes(random_))));
  }
  uint64_t Size() const override { return 0; }
  void SetMost(size_t most) { most_ = most; }

 private:
  std::minstd_rand random_{7};
  size_t most_ = 65535;
};

TEST_F(MemoryStreamTest, ShortReads_AreNotTheEnd) {
  const Bytes bytes = CountingBytes(3'000'001);
  for (const size_t most : {1000u, 65535u}) {
    DribblingStream all(bytes), exact(bytes), scattered(bytes);
    for (DribblingStream* stream : {&all, &exact, &scattered}) stream->SetMost(most);
    EXPECT_EQ(all.ReadToEnd(), bytes) << most;
    Bytes read(bytes.size());
    exact.ReadExactly(read);
    EXPECT_EQ(read, bytes) << most;
    EXPECT_THROW(exact.ReadExactly(std::span(read).first(1)), FormatError);
    const std::span<uint8_t> pieces[] = {std::span(read).first(1'000'000),
                                         std::span(read).subspan(1'000'000)};
    std::fill(read.begin(), read.end(), uint8_t{0});
    EXPECT_EQ(scattered.ReadScattered(pieces), bytes.size()) << most;
    EXPECT_EQ(read, bytes) << most;
  }
}

/// Claims more bytes than any memory can address.
class VastStream : public TMemoryStream {
 public:
  uint64_t Size() const override { return std::numeric_limits<uint64_t>::max(); }
};

TEST_F(MemoryStreamTest, ReadToEnd_ThrowsWhenTheLimitAllowsMoreThanCanBeAddressed) {
  SetPictureMemoryLimit(std::numeric_limits<uint64_t>::max());
  VastStream stream;
  EXPECT_THROW(stream.ReadToEnd(), LimitError);
}

TEST_F(MemoryStreamTest, TakeBytesAndClear_LeaveItEmpty) {
  TMemoryStream stream(Bytes{1, 2, 3});
  stream.SetPosition(2);
  EXPECT_THAT(stream.TakeBytes(), ElementsAre(1, 2, 3));
  EXPECT_EQ(stream.Size(), 0u);
  EXPECT_EQ(stream.Position(), 0u);
  stream.Write(Bytes{1});
  stream.Clear();
  EXPECT_EQ(stream.Size(), 0u);
  EXPECT_EQ(stream.Position(), 0u);
}

TEST_F(MemoryStreamTest, Files_GoThereAndBack) {
  const Bytes bytes = CountingBytes(70000);
  TMemoryStream written{Bytes(bytes)};
  written.SetPosition(17);
  written.SaveToFile(folder_ / "a");
  TMemoryStream read(Bytes{1, 2, 3});
  read.SetPosition(2);
  read.LoadFromFile(folder_ / "a");
  EXPECT_EQ(read.Position(), 0u);
  EXPECT_THAT(read.Bytes(), testing::ElementsAreArray(bytes));
}

TEST_F(MemoryStreamTest, LoadFromStream_TakesItFromItsBeginning) {
  TMemoryStream source(Bytes{1, 2, 3});
  source.SetPosition(2);
  TMemoryStream stream;
  stream.LoadFromStream(source);
  EXPECT_THAT(stream.Bytes(), ElementsAre(1, 2, 3));
}

TEST_F(MemoryStreamTest, LoadOfATooLargeFile_ThrowsAndNamesIt) {
  const std::string name = folder_.Write("large", std::string(1000, 'x'));
  SetPictureMemoryLimit(999);
  TMemoryStream stream;
  try {
    stream.LoadFromFile(name);
    FAIL();
  } catch (const LimitError& error) {
    EXPECT_EQ(error.File(), name);
  }
}

TEST_F(MemoryStreamTest, LoadOfASparseGiant_ThrowsAtOnce) {
  const std::string name = folder_.Write("giant", "");
  ASSERT_EQ(truncate(name.c_str(), off_t{1} << 40), 0);
  TMemoryStream stream;
  EXPECT_THROW(stream.LoadFromFile(name), LimitError);
}

TEST_F(SpanStreamTest, Read_WalksThroughTheBytes) {
  const Bytes bytes = CountingBytes(5);
  TSpanStream stream(bytes);
  EXPECT_EQ(stream.Size(), 5u);
  EXPECT_THAT(Read(stream, 3), ElementsAre(0, 1, 2));
  EXPECT_EQ(stream.Position(), 3u);
  stream.SetPosition(4);
  EXPECT_THAT(Read(stream, 3), ElementsAre(4));
}

TEST_F(SpanStreamTest, Write_Throws) {
  TSpanStream stream({});
  EXPECT_THROW(stream.Write(Bytes{1}), UnsupportedError);
}

TEST_F(FileStreamTest, Read_WalksThroughTheFile) {
  TFileStream stream(folder_.Write("a", CountingBytes(5)));
  EXPECT_EQ(stream.Size(), 5u);
  EXPECT_THAT(Read(stream, 3), ElementsAre(0, 1, 2));
  EXPECT_EQ(stream.Position(), 3u);
  stream.SetPosition(1);
  EXPECT_THAT(Read(stream, 2), ElementsAre(1, 2));
  stream.SetPosition(std::numeric_limits<uint64_t>::max());
  EXPECT_THAT(Read(stream, 2), ElementsAre());
  EXPECT_THROW(stream.Write(Bytes{1}), UnsupportedError);
}

TEST_F(FileStreamTest, Read_TakesBytesBeyondFourGigabytes) {
  const std::string name = folder_.Write("giant", CountingBytes(3));
  const uint64_t place = (uint64_t{5} << 30) + 7;
  std::filesystem::resize_file(name, place);
  std::ofstream(name, std::ios::binary | std::ios::app).write("abc", 3);
  TFileStream stream(name);
  EXPECT_EQ(stream.Size(), place + 3);
  stream.SetPosition(place - 1);
  EXPECT_THAT(Read(stream, 9), ElementsAre(0, 'a', 'b', 'c'));
}

TEST_F(FileStreamTest, ReadScattered_TakesMorePiecesThanTheSystemAtOnce) {
  const Bytes bytes = CountingBytes(9000);
  TFileStream stream(folder_.Write("a", bytes));
  stream.SetPosition(1);
  std::vector<Bytes> rows(3001, Bytes(3));
  std::vector<std::span<uint8_t>> pieces{std::span<uint8_t>()};
  for (Bytes& row : rows) pieces.emplace_back(row);
  EXPECT_EQ(stream.ReadScattered(pieces), 8999u);
  EXPECT_EQ(stream.Position(), 9000u);
  Bytes joined;
  for (const Bytes& row : rows) joined.insert(joined.end(), row.begin(), row.end());
  joined.resize(8999);
  EXPECT_EQ(joined, Bytes(bytes.begin() + 1, bytes.end()));
  EXPECT_EQ(stream.ReadScattered({}), 0u);
}

TEST_F(FileStreamTest, MissingFile_ThrowsAndNamesIt) {
  try {
    TFileStream stream(folder_ / "missing.bmp");
    FAIL();
  } catch (const FileError& error) {
    EXPECT_EQ(error.File(), folder_ / "missing.bmp");
    EXPECT_EQ(error.Reason(), "cannot be opened: No such file or directory");
  }
}

TEST_F(FileStreamTest, Folder_Throws) {
  EXPECT_THROW(TFileStream{folder_.Path().string()}, FileError);
  EXPECT_THROW(TFileStream{""}, FileError);
}

TEST_F(FileStreamTest, UnreadableFile_Throws) {
  const std::string name = folder_.Write("secret", "x");
  ASSERT_EQ(chmod(folder_.Path().c_str(), 0777), 0);
  ASSERT_EQ(chmod(name.c_str(), 0), 0);
  const pid_t child = fork();
  if (child == 0) {
    // Everything is readable for root.
    if (geteuid() == 0 && setuid(65534) != 0) _exit(1);
    try {
      TFileStream stream(name);
    } catch (const FileError&) {
      _exit(3);
    }
    _exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 3);
}

TEST_F(FileStreamTest, NameWithAZeroByte_IsNotCutShort) {
  const std::string name = folder_.Write("a", "x");
  EXPECT_THROW(TFileStream(name + std::string("\0.bmp", 5)), FileError);
}

TEST_F(FileStreamTest, Pipe_IsReadToItsEnd) {
  ASSERT_EQ(mkfifo((folder_ / "pipe").c_str(), 0600), 0);
  const std::string content(200000, 'p');
  std::thread writer([&] { folder_.Write("pipe", content); });
  TFileStream stream(folder_ / "pipe");
  EXPECT_EQ(stream.Size(), 0u);
  const Bytes bytes = stream.ReadToEnd();
  writer.join();
  EXPECT_EQ(std::string(bytes.begin(), bytes.end()), content);
  stream.SetPosition(0);
  Bytes target(1);
  EXPECT_THROW(stream.Read(target), FileError);
}

TEST_F(FileStreamTest, EndlessDevice_StopsAtTheMemoryLimit) {
  SetPictureMemoryLimit(1 << 20);
  TFileStream stream("/dev/zero");
  EXPECT_THROW(stream.ReadToEnd(), LimitError);
}

TEST_F(FileStreamTest, FilesThatTheSystemMakesUp_AreReadWhole) {
  TFileStream stream("/proc/self/status");
  EXPECT_GT(stream.ReadToEnd().size(), 100u);
}

}  // namespace
}  // namespace rasterkit
