#include <array>
#include <cmath>
#include <utility>

#include <fmt/core.h>

#include <rasterkit/dialogs/editor/editor_source.h>
#include <rasterkit/dialogs/editpdfbitmap/resolution_setting.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/files/small_file.h>
#include <rasterkit/runtime/files/stream.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit {
namespace {

constexpr double kUsualDpi = 150;
/// Tried in this order where the remembered resolution needs too much memory.
constexpr std::array kSmallerDpi = {150.0, 96.0, 72.0, 36.0, 18.0};

double ScaleOf(double dpi) {
  return dpi / 100;
}

bool IsMetafile(PictureType type) {
  return type == PictureType::emf || type == PictureType::wmf;
}

Picture OpenPicture(const SourceRequest& request, double dpi) {
  OpenOptions options;
  options.page = request.page;
  options.isolation = request.isolation;
  options.drawing.dpi = dpi;
  return Picture::Open(request.file, options);
}

void RequireDpi(double dpi) {
  if (std::isfinite(dpi) && dpi > 0) return;
  throw RangeError("a resolution is a number above 0");
}

/// A drawing has 24 bits per pixel.
void RequireDrawing(const Picture& picture) {
  const auto width = static_cast<uint64_t>(picture.Width());
  const auto height = static_cast<uint64_t>(picture.Height());
  RequirePicture(width, height, width * height * 3,
                 fmt::format("a drawing of {} x {} pixels", width, height));
}

void TakeDpi(EditorSource& source, double dpi) {
  RequireDpi(dpi);
  if (source.pdf) {
    RequirePdfPage(source.pageSize, ScaleOf(dpi));
    source.picture.reset();
  } else {
    source.picture = OpenPicture(source.request, dpi);
    RequireDrawing(*source.picture);
  }
  source.dpi = dpi;
}

/// What the user requested, or what is remembered and fits into memory.
void TakeFirstDpi(EditorSource& source) {
  if (source.request.dpi > 0) return TakeDpi(source, source.request.dpi);
  const double remembered = ReadResolution().value_or(kUsualDpi);
  try {
    return TakeDpi(source, remembered);
  } catch (const LimitError&) {
    for (const double dpi : kSmallerDpi) {
      if (dpi >= remembered) continue;
      try {
        return TakeDpi(source, dpi);
      } catch (const LimitError&) {
      }
    }
    throw;
  }
}

/// By the first bytes; a PDF file by its name, too, so that the error of a damaged one says so.
PictureType TypeOf(const std::string& file) {
  if (!detail::IsRegularFile(file)) return PictureType::unknown;
  TFileStream stream(file);
  const PictureType type = stream.Size() == 0 ? PictureType::unknown : SniffPictureType(stream);
  const bool isNamedPdf = type == PictureType::unknown && IsPdfName(file);
  return isNamedPdf ? PictureType::pdf : type;
}

void OpenPdf(EditorSource& source) {
  source.pdf = CreatePdfDocument();
  source.pdf->LoadFromFile(source.request.file);
  source.pages = source.pdf->PageCount();
  source.pageSize = source.pdf->PageSize(source.request.page - 1);
}

}  // namespace

EditorSource OpenEditorSource(const SourceRequest& request) {
  EditorSource source;
  source.request = request;
  source.facts = FactsOfFile(request.file);
  source.type = TypeOf(request.file);
  if (source.type == PictureType::pdf) OpenPdf(source);
  if (source.type == PictureType::pdf || IsMetafile(source.type)) {
    TakeFirstDpi(source);
    return source;
  }
  source.picture = OpenPicture(request, 0);
  source.type = source.picture->SourceType();
  source.pages = source.type == PictureType::tiff ? source.picture->Pages() : 1;
  return source;
}

EditorSource WithDpi(const EditorSource& source, double dpi) {
  EditorSource other = source;
  TakeDpi(other, dpi);
  return other;
}

void DrawPage(EditorSource& source, std::stop_token cancel) {
  if (source.picture || !source.pdf) return;
  auto bitmap = std::make_unique<TBitmap>();
  const bool isDrawn =
      source.pdf->ExportPage(source.request.page - 1, ScaleOf(*source.dpi), PdfRotation::none,
                             *bitmap, [&cancel] { return !cancel.stop_requested(); });
  if (!isDrawn) throw CanceledError("the drawing was canceled", source.request.file);
  bitmap->SetTransparent(false);
  source.picture = Picture::Of(std::move(bitmap));
}

}  // namespace rasterkit
