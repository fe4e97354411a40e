#include <exception>
#include <filesystem>
#include <system_error>
#include <utility>

#include <rasterkit/bitmaptools/files/graphic_files.h>
#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/ports.h>

namespace rasterkit {
namespace {

/// Temporary file between a stream and the class that supports files only; removed by the
/// destructor.
class TempGraphicFile {
 public:
  explicit TempGraphicFile(const std::string& tempDir)
      : name_(detail::MakeTempGraphicName(tempDir, GetGraphicsExt(gtTif))) {}
  ~TempGraphicFile() {
    std::error_code ignored;
    std::filesystem::remove(ToPath(name_), ignored);
  }
  TempGraphicFile(const TempGraphicFile&) = delete;
  TempGraphicFile& operator=(const TempGraphicFile&) = delete;

  const std::string& Name() const { return name_; }

 private:
  std::string name_;
};

void LoadFrom(TMemoryStream& stream, int type, const std::string& tempDir, TGraphic& graphic) {
  if (type != gtTif) {
    graphic.LoadFromStream(stream);
    return;
  }
  const TempGraphicFile file(tempDir);
  stream.SaveToFile(file.Name());
  graphic.LoadFromFile(file.Name());
}

}  // namespace

std::string detail::MakeTempGraphicName(const std::string& tempDir, const std::string& extension) {
  return tempDir + std::to_string(MinuteOfDay()) + extension;
}

int GraphicToStream(TGraphic* graphic, const std::string& tempDir,
                    std::unique_ptr<TMemoryStream>& stream) {
  stream.reset();
  const int type = GetGraphicType(graphic);
  if (type == gtNone) return gtNone;
  auto written = std::make_unique<TMemoryStream>();
  if (type != gtTif) {
    graphic->SaveToStream(*written);
  } else {
    const TempGraphicFile file(tempDir);
    graphic->SaveToFile(file.Name());
    written->LoadFromFile(file.Name());
  }
  stream = std::move(written);
  return type;
}

std::unique_ptr<TGraphic> GraphicFromStream(int type, const std::string& tempDir,
                                            TMemoryStream* stream) {
  std::unique_ptr<TGraphic> graphic = CreateGraphicOfType(type);
  if (!graphic || stream == nullptr) return nullptr;
  stream->SetPosition(0);
  try {
    LoadFrom(*stream, type, tempDir, *graphic);
    return graphic;
  } catch (const std::exception&) {
    return nullptr;
  }
}

}  // namespace rasterkit
