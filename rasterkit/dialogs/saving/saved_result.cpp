#include <algorithm>
#include <thread>
#include <utility>

#include <rasterkit/dialogs/saving/saved_result.h>
#include <rasterkit/pictures/recipes/recipe_output.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {
namespace {

/// A multiple of the sides of all blocks: 8, 16, 24 and 32 pixels.
constexpr int kBlockBorder = 96;

/// Counts what is written and keeps nothing.
class CountingStream : public TStream {
 public:
  size_t Read(std::span<uint8_t>) override {
    throw UnsupportedError("the bytes of the file are only counted");
  }
  void Write(std::span<const uint8_t> source) override {
    position_ += source.size();
    size_ = std::max(size_, position_);
  }
  uint64_t Position() const override { return position_; }
  void SetPosition(uint64_t position) override { position_ = position; }
  uint64_t Size() const override { return size_; }

 private:
  uint64_t position_ = 0, size_ = 0;
};

Run BackgroundRun(std::stop_token cancel) {
  Run run;
  // One processor is left to the window.
  const int processors = static_cast<int>(std::thread::hardware_concurrency());
  run.threads = std::max(1, processors - 1);
  run.cancel = std::move(cancel);
  return run;
}

}  // namespace

Picture PreparedPicture(const Picture& picture, const RecipeSave& save) {
  Picture prepared = picture;
  ApplySaving(prepared, save);
  return prepared;
}

SaveOptions OptionsFor(const RecipeSave& save, PictureType type) {
  SaveOptions options = SaveOptionsOf(save);
  options.type = type;
  return options;
}

PlannedSave PlanOfSave(const Picture& picture, const RecipeSave& save, PictureType type,
                       const std::string& file) {
  PlannedSave planned;
  try {
    const RecipeOutput output(picture, save);
    const SaveOptions options = OptionsFor(save, type);
    planned.report = file.empty() ? output.PlanStream(options) : output.Plan(file, options);
  } catch (const Error& error) {
    planned.error = error.Reason();
  }
  return planned;
}

uint64_t CountBytesOfSave(const Picture& picture, const RecipeSave& save, PictureType type,
                          std::stop_token cancel, const std::function<void(double)>& progress) {
  Run run = BackgroundRun(std::move(cancel));
  run.progress = progress;
  CountingStream stream;
  RecipeOutput(picture, save).Save(stream, OptionsFor(save, type), run);
  return stream.Size();
}

bool PartOfPicture::Contains(const PartOfPicture& other) const {
  return other.left >= left && other.top >= top && other.left + other.width <= left + width &&
         other.top + other.height <= top + height;
}

PartOfPicture BlocksAround(const PartOfPicture& wanted, int width, int height) {
  const auto before = [](int from) {
    return std::max(0, from / kBlockBorder * kBlockBorder - kBlockBorder);
  };
  const auto after = [](int to, int most) {
    return std::min(most, (to / kBlockBorder + 2) * kBlockBorder);
  };
  PartOfPicture blocks{before(wanted.left), before(wanted.top), 0, 0};
  blocks.width = after(wanted.left + wanted.width, width) - blocks.left;
  blocks.height = after(wanted.top + wanted.height, height) - blocks.top;
  return blocks;
}

ShownPart PartBefore(const Picture& picture, const PartOfPicture& place, std::stop_token cancel) {
  Picture part = picture;
  part.Crop({place.left, place.top, place.width, place.height});
  return {place, part.Bitmap(BackgroundRun(std::move(cancel)))};
}

ShownPart PartAfter(const Picture& picture, const RecipeSave& save, PictureType type,
                    const PartOfPicture& place, std::stop_token cancel) {
  const PartOfPicture blocks = BlocksAround(place, picture.Width(), picture.Height());
  Picture part = PreparedPicture(picture, save);
  part.Crop({blocks.left, blocks.top, blocks.width, blocks.height});
  SaveOptions options = OptionsFor(save, type);
  // A part may lie so that it could be moved although the whole cannot.
  options.lossless = Lossless::off;
  options.onlyThisPage = true;
  const Run run = BackgroundRun(cancel);
  TMemoryStream stream;
  part.Save(stream, options, run);
  Picture saved = Picture::Open(stream.TakeBytes());
  saved.Crop({place.left - blocks.left, place.top - blocks.top, place.width, place.height});
  return {place, saved.Bitmap(run)};
}

}  // namespace rasterkit::detail
