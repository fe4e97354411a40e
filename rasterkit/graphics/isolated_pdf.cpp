#include <algorithm>
#include <new>
#include <utility>

#include <fmt/format.h>

#include <rasterkit/graphics/isolated_pdf.h>
#include <rasterkit/graphics/pdf_messages.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/worker/fields.h>
#include <rasterkit/runtime/worker/worker_errors.h>
#include <rasterkit/runtime/worker/worker_input.h>
#include <rasterkit/runtime/worker/worker_memory.h>
#include <rasterkit/runtime/worker/worker_program.h>

namespace rasterkit::detail {
namespace {

/// Bytes of rows per message: large enough that the messages cost little, small enough that the
/// rows are still in the processor's cache when they are copied.
constexpr size_t kBytesAtOnce = size_t{1} << 20;

class Mark {
 public:
  explicit Mark(bool& flag) : flag_(flag) { flag_ = true; }
  ~Mark() { flag_ = false; }
  Mark(const Mark&) = delete;
  Mark& operator=(const Mark&) = delete;

 private:
  bool& flag_;
};

Raster FreshRows(const PdfPixels& pixels) {
  try {
    return {pf24bit, static_cast<int>(pixels.width), static_cast<int>(pixels.height)};
  } catch (const LimitError& error) {
    // The limit for pictures was checked before: then the system is out of memory.
    if (error.Kind() == LimitKind::fixed) throw std::bad_alloc();
    throw;
  }
}

void ThrowPdfError(const WorkerError& error) {
  if (error.errorClass == WorkerErrorClass::pdfPassword) throw PdfPasswordError(error.reason);
  if (error.errorClass == WorkerErrorClass::component) throw PdfComponentError(error.reason);
}

void TakeRows(WorkerTurn& turn, Raster& raster) {
  const size_t rowsAtOnce = std::max<size_t>(kBytesAtOnce / raster.Stride(), 1);
  for (int y = 0; y < raster.Height();) {
    const int count = std::min(static_cast<int>(rowsAtOnce), raster.Height() - y);
    const WorkerMessage rows = turn.Ask(PdfTakeRowsMessage({y, count}), kPdfRows, 1);
    ReadWorkerMemory(rows.files[0], {raster.Row(y), static_cast<size_t>(count) * raster.Stride()});
    y += count;
  }
  raster.ClearPadding();
}

}  // namespace

IsolatedPdfDocument::IsolatedPdfDocument() {
  try {
    WorkerProgram("the component for PDF files is not installed");
  } catch (const UnsupportedError& error) {
    throw PdfComponentError(error.Reason());
  }
}

IsolatedPdfDocument::~IsolatedPdfDocument() = default;

/// Calls `call` with the rules for all calls: not while another one waits, and with the file's name
/// in every error.
template <class Call>
auto IsolatedPdfDocument::Guarded(Call call) const {
  if (isWaiting_) throw Error("PDF: the file is being read already", fileName_);
  const Mark mark(isWaiting_);
  // The time of the call starts here.
  const LimitsScope limits(CurrentLimits());
  try {
    return call();
  } catch (Error& error) {
    error.AttachFile(fileName_);
    throw;
  }
}

WorkerMessage IsolatedPdfDocument::Ask(WorkerTurn& turn, const WorkerMessage& request,
                                       uint16_t answer, size_t files) const {
  if (turn.IsFresh() && Open(turn) != pageCount_) ThrowBadMessage("the number of pages changed");
  return turn.Ask(request, answer, files);
}

int IsolatedPdfDocument::Open(WorkerTurn& turn) const {
  return ReadPdfOpened(turn.Ask(PdfOpenMessage(password_, SameFile(file_)), kPdfOpened));
}

void IsolatedPdfDocument::LoadFromFile(const std::string& fileName, const std::string& password) {
  if (!isWaiting_) {
    // One worker never reads two files.
    session_.reset();
    fileName_ = fileName;
    password_ = password;
    pageCount_ = 0;
    pageSizes_.clear();
  }
  Guarded([&] {
    file_ = OpenWorkerInput(fileName);
    auto session = std::make_unique<WorkerSession>(WorkerReader::pdf, "PDF", ThrowPdfError);
    {
      WorkerTurn turn(*session, {});
      pageCount_ = Open(turn);
    }
    session_ = std::move(session);
  });
}

PdfPageSize IsolatedPdfDocument::PageSize(int index) const {
  return Guarded([&] { return KnownPageSize(index, {}); });
}

bool IsolatedPdfDocument::ExportPage(int index, double scale, PdfRotation rotation, TBitmap& bitmap,
                                     const PdfKeepGoing& keepGoing) {
  return Guarded([&] {
    if (!(scale > 0)) throw RangeError(fmt::format("PDF: {} is not a valid scale", scale));
    try {
      RequirePdfPage(KnownPageSize(index, keepGoing), scale, rotation);
      bitmap = TBitmap(Draw({index, scale, rotation}, keepGoing));
      return true;
    } catch (const WorkerCanceled&) {
      return false;
    }
  });
}

Raster IsolatedPdfDocument::Draw(const PdfDraw& draw, const PdfKeepGoing& keepGoing) const {
  const PdfPixels pixels = PdfPagePixels(pageSizes_.at(draw.index), draw.scale, draw.rotation);
  WorkerTurn turn(*session_, keepGoing);
  const PdfDrawn drawn = ReadPdfDrawn(Ask(turn, PdfDrawMessage(draw), kPdfDrawn));
  if (drawn.width != pixels.width || drawn.height != pixels.height) {
    ThrowBadMessage("a page has another size");
  }
  Raster raster = FreshRows(pixels);
  TakeRows(turn, raster);
  raster.resolution = {PdfResolution(draw.scale), PdfResolution(draw.scale)};
  return raster;
}

void IsolatedPdfDocument::RequirePage(int index) const {
  if (index >= 0 && index < pageCount_) return;
  throw RangeError(fmt::format("PDF: there is no page {}, the file has {}", index + 1, pageCount_));
}

PdfPageSize IsolatedPdfDocument::KnownPageSize(int index, const PdfKeepGoing& keepGoing) const {
  RequirePage(index);
  const auto known = pageSizes_.find(index);
  if (known != pageSizes_.end()) return known->second;
  WorkerTurn turn(*session_, keepGoing);
  const PdfPageSize size = ReadPdfMeasured(Ask(turn, PdfMeasureMessage(index), kPdfMeasured));
  pageSizes_.emplace(index, size);
  return size;
}

}  // namespace rasterkit::detail
