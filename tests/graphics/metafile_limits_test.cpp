#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/graphics/metafile.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

#include "tests/support/emf_file.h"
#include "tests/support/oversized/oversized_files.h"
#include "tests/support/wmf_file.h"

namespace rasterkit::test {
namespace {

using testing::HasSubstr;

std::unique_ptr<TMetafile> Loaded(const std::vector<uint8_t>& bytes) {
  auto metafile = std::make_unique<TMetafile>();
  TSpanStream stream(bytes);
  metafile->LoadFromStream(stream);
  return metafile;
}

TEST(MetafileLimits, OwnSize_IsPlausibleUpTo256MiB) {
  const auto metafile = Loaded(OversizedEmf(8192, 0));
  ASSERT_EQ(metafile->Width(), 8192);
  EXPECT_TRUE(metafile->IsSizePlausible());
  const auto larger = Loaded(OversizedEmf(8193, 0));
  ASSERT_EQ(larger->Width(), 8193);
  EXPECT_FALSE(larger->IsSizePlausible());
  const LimitsScope scope({.refuseImplausible = false});
  EXPECT_TRUE(larger->IsSizePlausible());
}

TEST(MetafileLimits, LargerOwnSize_NeedsAByteFor1024Pixels) {
  const std::vector<uint8_t> file = OversizedEmf(8193, 0);
  constexpr size_t kLeast = size_t{8193} * 8193 / 1024;
  EXPECT_FALSE(Loaded(Padded(file, kLeast - 1))->IsSizePlausible());
  EXPECT_TRUE(Loaded(Padded(file, kLeast))->IsSizePlausible());
}

TEST(MetafileLimits, ImplausibleOwnSize_IsNotDrawn) {
  const auto metafile = Loaded(OversizedEmf(16000, 0));
  TBitmap bitmap;
  try {
    bitmap.Assign(metafile.get());
    FAIL();
  } catch (const LimitError& error) {
    EXPECT_THAT(error.Reason(), HasSubstr("its own size of 16000 x 16000 pixels is far too large"));
  }
  metafile->SetEnhanced(false);
  TMemoryStream wmf;
  EXPECT_THROW(metafile->SaveToStream(wmf), LimitError);
  EXPECT_EQ(metafile->Draw(100, 100).Width(), 100) << "another size than its own";
}

TEST(MetafileLimits, Time_EndsTheDrawing) {
  const auto emf = Loaded(OversizedEmf(100, 3000));
  WmfFile file;
  file.box = {{0, 0, 96, 96}};
  const auto wmf = Loaded(file.Add(detail::WmfFunction::saveDc).Bytes());
  EXPECT_NO_THROW(emf->Draw(50, 50));
  EXPECT_NO_THROW(wmf->Draw(50, 50));
  const LimitsScope scope({.seconds = 0});
  EXPECT_THROW(emf->Draw(50, 50), TimeLimitError);
  EXPECT_THROW(wmf->Draw(50, 50), TimeLimitError);
}

TEST(MetafileLimits, Size_IsLimitedAsThatOfAnyPicture) {
  const auto emf = Loaded(OversizedEmf(100, 0));
  const LimitsScope scope({.pixels = 2500});
  EXPECT_NO_THROW(emf->Draw(50, 50));
  EXPECT_THROW(emf->Draw(50, 51), LimitError);
}

}  // namespace
}  // namespace rasterkit::test
