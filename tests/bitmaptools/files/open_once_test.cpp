#include <array>
#include <cstring>

#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <rasterkit/bitmaptools/files/graphic_files.h>
#include <rasterkit/bitmaptools/files/windows_bitmap.h>
#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/jpegexif/photo_queries.h>

#include "tests/support/exif_builder.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

/// Asks the system how often a file is opened.
class OpenCounter {
 public:
  explicit OpenCounter(const std::string& fileName)
      : queue_(inotify_init1(IN_NONBLOCK)),
        // Closing is watched too: the system merges equal events that follow one another.
        watch_(inotify_add_watch(queue_, fileName.c_str(), IN_OPEN | IN_ACCESS | IN_CLOSE)) {}
  ~OpenCounter() { close(queue_); }
  OpenCounter(const OpenCounter&) = delete;
  OpenCounter& operator=(const OpenCounter&) = delete;

  bool IsAvailable() const { return watch_ >= 0; }
  int Count() const {
    int count = 0;
    alignas(inotify_event) std::array<char, 4096> buffer;
    for (ssize_t size; (size = read(queue_, buffer.data(), buffer.size())) > 0;) {
      for (ssize_t at = 0; at < size;) {
        inotify_event event;
        std::memcpy(&event, buffer.data() + at, sizeof event);
        if ((event.mask & IN_OPEN) != 0) ++count;
        at += static_cast<ssize_t>(sizeof event + event.len);
      }
    }
    return count;
  }

 private:
  int queue_, watch_;
};

class OpenOnce : public ::testing::Test {
 protected:
  std::string Photo(int orientation) const {
    const std::vector<uint8_t> jpeg = EncodeJpeg(test::GradientRaster(pf24bit, 24, 16), 90);
    const test::TiffWriter writer(test::ByteOrder::motorola);
    const std::string exif =
        test::ExifSection(writer.Tiff({writer.Short(274, static_cast<uint16_t>(orientation))}));
    return folder_.Write("a.jpg", "\xFF\xD8" + exif + std::string(jpeg.begin() + 2, jpeg.end()));
  }

  test::TempFolder folder_;
};

TEST_F(OpenOnce, Counter_Should_CountEveryOpening) {
  const std::string name = Photo(6);
  const OpenCounter counter(name);
  ASSERT_TRUE(counter.IsAvailable());
  int rotation = 0;
  GetJpgRotation(name, rotation);
  GetJpgRotation(name, rotation);
  EXPECT_EQ(counter.Count(), 2);
}

TEST_F(OpenOnce, LoadGraphic_Should_OpenAPhotoOnce) {
  for (const int orientation : {1, 3, 6}) {
    const std::string name = Photo(orientation);
    const OpenCounter counter(name);
    ASSERT_TRUE(counter.IsAvailable());
    const auto graphic = LoadGraphic(name);
    ASSERT_NE(graphic, nullptr);
    EXPECT_EQ(graphic->Width(), orientation == 6 ? 16 : 24);
    EXPECT_EQ(counter.Count(), 1) << orientation;
  }
}

TEST_F(OpenOnce, LoadWindowsBitmap_Should_OpenAPhotoOnce) {
  const std::string name = Photo(8);
  const OpenCounter counter(name);
  ASSERT_TRUE(counter.IsAvailable());
  std::unique_ptr<TBitmap> bitmap;
  ASSERT_TRUE(LoadWindowsBitmap(name, 0, bitmap));
  EXPECT_EQ(bitmap->Width(), 16);
  EXPECT_EQ(counter.Count(), 1);
}

}  // namespace
}  // namespace rasterkit
