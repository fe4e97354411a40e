#include <algorithm>
#include <cstring>

#include <rasterkit/codecs/gif/gif_reader.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {

GifReader::GifReader(std::span<const uint8_t> bytes) : bytes_(bytes) {
  gif_ = DGifOpen(this, OnRead, &openError_);
  if (!gif_) Throw();
}

GifReader::~GifReader() {
  int ignored = 0;
  if (gif_) DGifCloseFile(gif_, &ignored);
}

int GifReader::OnRead(GifFileType* gif, GifByteType* target, int count) {
  auto& reader = *static_cast<GifReader*>(gif->UserData);
  const size_t left = reader.bytes_.size() - reader.position_;
  const size_t given = std::min(static_cast<size_t>(std::max(count, 0)), left);
  if (given < static_cast<size_t>(count)) reader.ranDry_ = true;
  if (given > 0) std::memcpy(target, reader.bytes_.data() + reader.position_, given);
  reader.position_ += given;
  return static_cast<int>(given);
}

void GifReader::FindFirstPicture() {
  while (true) {
    GifRecordType kind = UNDEFINED_RECORD_TYPE;
    if (DGifGetRecordType(gif_, &kind) == GIF_ERROR) Throw();
    if (kind == EXTENSION_RECORD_TYPE) {
      ReadExtension();
    } else if (kind == IMAGE_DESC_RECORD_TYPE) {
      break;
    } else {
      throw FormatError("GIF: the file holds no picture");
    }
  }
  if (DGifGetImageDesc(gif_) == GIF_ERROR) Throw();
  MendEnd();
}

void GifReader::ReadExtension() {
  int function = 0;
  GifByteType* block = nullptr;
  if (DGifGetExtension(gif_, &function, &block) == GIF_ERROR) Throw();
  while (block) {
    GraphicsControlBlock control{};
    if (function == GRAPHICS_EXT_FUNC_CODE &&
        DGifExtensionToGCB(block[0], block + 1, &control) == GIF_OK) {
      transparentIndex_.reset();
      if (control.TransparentColor != NO_TRANSPARENT_COLOR) {
        transparentIndex_ = control.TransparentColor;
      }
    }
    if (DGifGetExtensionNext(gif_, &block) == GIF_ERROR) Throw();
  }
}

/// Picture data are blocks, each after its length; giflib decodes nothing of an incomplete block.
/// If the file ends within one, the reader continues with a copy that states the available length
/// and has an end, so that no row is lost.
void GifReader::MendEnd() {
  size_t block = position_;
  while (block < bytes_.size() && bytes_[block] != 0) {
    const size_t next = block + 1 + bytes_[block];
    if (next > bytes_.size()) break;
    block = next;
  }
  if (block < bytes_.size() && bytes_[block] == 0) return;
  isCutOff_ = true;
  mended_.assign(bytes_.begin() + static_cast<std::ptrdiff_t>(position_), bytes_.end());
  if (block < bytes_.size()) {
    mended_[block - position_] = static_cast<uint8_t>(bytes_.size() - block - 1);
  }
  mended_.push_back(0);
  bytes_ = mended_;
  position_ = 0;
}

bool GifReader::ReadRow(uint8_t* row, int width) {
  return DGifGetLine(gif_, row, width) == GIF_OK;
}

std::string GifReader::Reason() const {
  if (ranDry_) return "GIF: unexpected end of the file";
  // Some errors have no number.
  const char* text = GifErrorString(gif_ ? gif_->Error : openError_);
  return std::string("GIF: ") + (text ? text : "the file is damaged");
}

void GifReader::Throw() const {
  if ((gif_ ? gif_->Error : openError_) == D_GIF_ERR_NOT_ENOUGH_MEM) throw LimitError(Reason());
  throw FormatError(Reason());
}

}  // namespace rasterkit::detail
