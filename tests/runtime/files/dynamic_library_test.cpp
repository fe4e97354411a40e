#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/dynamic_library.h>

#include "tests/support/temp_folder.h"

namespace rasterkit {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr const char* kAbsent = "the samples are not installed";

/// The text of the exception; empty when nothing was thrown.
template <typename Exception, typename Call>
std::string TextOf(Call call) {
  try {
    call();
  } catch (const Exception& error) {
    return error.what();
  }
  return {};
}

TEST(DynamicLibraryTest, ALibraryBesideTheProgram_IsOpened) {
  const DynamicLibrary library("rasterkit-sample", 7, kAbsent);
  EXPECT_EQ(library.Entry<int(int)>("rasterkit_sample_double")(21), 42);
  EXPECT_TRUE(std::filesystem::path(library.File()).is_absolute()) << library.File();
}

TEST(DynamicLibraryTest, AnEntryThatIsNotThere_IsRefusedByName) {
  const DynamicLibrary library("rasterkit-sample", 7, kAbsent);
  EXPECT_THAT(
      TextOf<Error>([&] { library.Entry<void()>("rasterkit_sample_of_tomorrow"); }),
      AllOf(HasSubstr("rasterkit_sample_of_tomorrow"), HasSubstr("librasterkit-sample.so.7")));
}

TEST(DynamicLibraryTest, ALibraryThatIsNowhere_IsSaidToBeAbsentAndWhereItWasLookedFor) {
  const test::TempFolder empty;
  const std::string text = TextOf<UnsupportedError>([&] {
    const DynamicLibrary library("rasterkit-absent", 0, kAbsent, {"", empty.Path().string()});
  });
  EXPECT_THAT(text, StartsWith("the samples are not installed: there is no "
                               "librasterkit-absent.so.0 in " +
                               empty.Path().string() + ", where the system"));
  EXPECT_THAT(TextOf<UnsupportedError>(
                  [] { const DynamicLibrary library("rasterkit-absent", 0, kAbsent); }),
              StartsWith(kAbsent));
}

TEST(DynamicLibraryTest, AnotherVersion_IsNotTaken) {
  EXPECT_THROW(DynamicLibrary("rasterkit-sample", 8, kAbsent), UnsupportedError);
}

TEST(DynamicLibraryTest, AFileThatIsNoLibrary_IsSaidToBeBroken) {
  const test::TempFolder folder;
  folder.Write("librasterkit-broken.so.0", "this is no library");
  const std::string text = TextOf<Error>([&] {
    const DynamicLibrary library("rasterkit-broken", 0, kAbsent, {folder.Path().string()});
  });
  EXPECT_THAT(text, AllOf(StartsWith("librasterkit-broken.so.0 cannot be loaded: "),
                          Not(HasSubstr(kAbsent))));
}

TEST(DynamicLibraryTest, TheFirstFolderThatHasIt_Counts) {
  const test::TempFolder first, second;
  const std::string original = DynamicLibrary("rasterkit-sample", 7, kAbsent).File();
  for (const test::TempFolder* folder : {&first, &second})
    std::filesystem::copy_file(original, folder->Path() / "librasterkit-sample.so.7");
  const DynamicLibrary library("rasterkit-sample", 7, kAbsent,
                               {first.Path().string(), second.Path().string()});
  EXPECT_EQ(library.File(), first / "librasterkit-sample.so.7");
  EXPECT_EQ(library.Entry<int(int)>("rasterkit_sample_double")(-4), -8);
}

TEST(DynamicLibraryTest, AnOpenedLibrary_OutlivesItsObject) {
  int (*twice)(int) = nullptr;
  {
    const DynamicLibrary library("rasterkit-sample", 7, kAbsent);
    twice = library.Entry<int(int)>("rasterkit_sample_double");
  }
  EXPECT_EQ(twice(5), 10);
}

}  // namespace
}  // namespace rasterkit
