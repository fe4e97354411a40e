#include <algorithm>

#include <rasterkit/bitmaptools/files/file_filters.h>
#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/dialogs/savedlgbitmap/save_graphics_model.h>
#include <rasterkit/runtime/files/file_name.h>

namespace rasterkit {
namespace {

constexpr int32_t kMostCompress = 2;

}  // namespace

SaveGraphicsModel::SaveGraphicsModel(const TrecSaveBitmap& rec) : rec_(rec) {
  rec_.JpgCompress = std::min(rec_.JpgCompress, kMostCompress);
}

int SaveGraphicsModel::FirstFilterIndex(const std::string& fileName, int32_t type) {
  if (fileName.find('.') != std::string::npos) return GetSaveFilterIndex(ExtractFileExt(fileName));
  return type > 0 ? GetSaveFilterIndex(GetGraphicsExt(type)) : 1;
}

void SaveGraphicsModel::FilterChange(int filterIndex) {
  type_ = GetSaveFilterType(filterIndex);
}

std::string SaveGraphicsModel::DefaultExt() const {
  return GetGraphicsExt(type_);
}

bool SaveGraphicsModel::HasOptions() const {
  return type_ != gtNone && type_ != gtWmf && type_ != gtEmf;
}

TrecSaveBitmap& SaveGraphicsModel::RecordForOptions() {
  rec_.BitmapFormat = type_;
  return rec_;
}

TrecSaveBitmap SaveGraphicsModel::Result(int filterIndex) const {
  TrecSaveBitmap rec = rec_;
  rec.BitmapFormat = GetSaveFilterType(filterIndex);
  return rec;
}

std::string SaveGraphicsModel::ResultName(const std::string& chosen, int32_t type) {
  return ChangeFileExt(chosen, GetGraphicsExt(type));
}

}  // namespace rasterkit
