#pragma once

#include <array>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/dialogs/editor/editor_model.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/pictures/recipes/apply_recipe.h>

#include "tests/dialogs/editor/recording_editor_view.h"
#include "tests/support/environment.h"
#include "tests/support/exif_builder.h"
#include "tests/support/same_pixels.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit::test {

/// A model with a view, in a folder of its own; journals lie in a folder of their own, too.
class EditorTest : public testing::Test {
 protected:
  EditorTest() { Renew(); }

  /// As if the editor was started again.
  void Renew() {
    model.reset();
    view = std::make_unique<RecordingEditorView>();
    model = std::make_unique<EditorModel>(*view, options);
  }
  void Open(const std::string& file, int page = 1) { model->Open(file, page); }

  std::string WritePicture(const std::string& name, int width = 23, int height = 17,
                           TPixelFormat format = pf24bit) {
    const std::string file = folder / name;
    Picture::Of(std::make_unique<TBitmap>(GradientRaster(format, width, height))).Save(file);
    return file;
  }

  /// A photograph whose EXIF block states an orientation; gray for pf8bit.
  std::string WritePhoto(const std::string& name, int orientation, TPixelFormat format = pf24bit,
                         int width = 32, int height = 16) {
    const std::string plain = folder / "plain.jpg";
    Picture::Of(std::make_unique<TBitmap>(format == pf8bit ? GrayRaster(width, height)
                                                           : GradientRaster(format, width, height)))
        .Save(plain);
    const std::string jpeg = ReadFile(plain);
    const TiffWriter writer(ByteOrder::intel);
    const std::string exif = ExifSection(writer.Tiff(
        {writer.Ascii(271, "Camera"), writer.Short(274, static_cast<uint16_t>(orientation))}));
    std::filesystem::remove(plain);
    return folder.Write(name, jpeg.substr(0, 2) + exif + jpeg.substr(2));
  }

  /// What the recipe makes of the file, without a window.
  std::string Replayed(const std::string& file, const Recipe& recipe, const std::string& target,
                       const OpenOptions& opening = {}) {
    Picture picture = Picture::Open(file, opening);
    ApplyRecipe(picture, recipe);
    picture.Save(target, SaveOptionsOf(recipe.save));
    return ReadFile(target);
  }

  /// The shown pixels are those of the result.
  void ExpectResultShown() {
    ASSERT_NE(view->shown, nullptr);
    EXPECT_EQ(view->shown, model->Pixels());
    const std::unique_ptr<TBitmap> expected = model->Result().Bitmap();
    EXPECT_TRUE(SamePixels(*expected, *view->shown));
  }

  TempFolder folder, state;
  Environment stateHome{"XDG_STATE_HOME", state.Path().string()};
  EditPictureOptions options;
  std::unique_ptr<RecordingEditorView> view;
  std::unique_ptr<EditorModel> model;
};

}  // namespace rasterkit::test
