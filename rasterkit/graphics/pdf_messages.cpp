#include <limits>
#include <utility>

#include <rasterkit/graphics/pdf_messages.h>
#include <rasterkit/runtime/worker/fields.h>

namespace rasterkit::detail {
namespace {

constexpr size_t kMostPasswordBytes = 32 * 1024;
constexpr int kMostIndex = std::numeric_limits<int>::max();

WorkerMessage WithFile(uint16_t kind, std::vector<uint8_t> body, SystemFile file) {
  WorkerMessage message{kind, std::move(body)};
  message.files.push_back(std::move(file));
  return message;
}

int ReadNumber(const WorkerMessage& message, int least) {
  FieldReader reader(message.body);
  const int number = reader.I32In(least, kMostIndex);
  reader.RequireEnd();
  return number;
}

WorkerMessage NumberMessage(uint16_t kind, int number) {
  FieldWriter writer;
  writer.I32(number);
  return {kind, writer.Take()};
}

WorkerMessage PairMessage(uint16_t kind, int first, int second) {
  FieldWriter writer;
  writer.I32(first);
  writer.I32(second);
  return {kind, writer.Take()};
}

}  // namespace

WorkerMessage PdfOpenMessage(const std::string& password, SystemFile file) {
  FieldWriter writer;
  writer.ByteText(password.substr(0, kMostPasswordBytes));
  return WithFile(kPdfOpen, writer.Take(), std::move(file));
}

std::string ReadPdfOpen(const WorkerMessage& message) {
  FieldReader reader(message.body);
  std::string password = reader.ByteText(kMostPasswordBytes);
  reader.RequireEnd();
  return password;
}

WorkerMessage PdfOpenedMessage(int pages) {
  return NumberMessage(kPdfOpened, pages);
}

int ReadPdfOpened(const WorkerMessage& message) {
  return ReadNumber(message, 1);
}

WorkerMessage PdfMeasureMessage(int index) {
  return NumberMessage(kPdfMeasure, index);
}

int ReadPdfMeasure(const WorkerMessage& message) {
  return ReadNumber(message, 0);
}

WorkerMessage PdfMeasuredMessage(const PdfPageSize& size) {
  FieldWriter writer;
  writer.F64(size.width);
  writer.F64(size.height);
  return {kPdfMeasured, writer.Take()};
}

PdfPageSize ReadPdfMeasured(const WorkerMessage& message) {
  FieldReader reader(message.body);
  PdfPageSize size;
  // Any number is a size that a file may state.
  size.width = reader.F64();
  size.height = reader.F64();
  reader.RequireEnd();
  return size;
}

WorkerMessage PdfDrawMessage(const PdfDraw& draw) {
  FieldWriter writer;
  writer.I32(draw.index);
  writer.F64(draw.scale);
  writer.Enum(draw.rotation);
  return {kPdfDraw, writer.Take()};
}

PdfDraw ReadPdfDraw(const WorkerMessage& message) {
  FieldReader reader(message.body);
  PdfDraw draw;
  draw.index = reader.I32In(0, kMostIndex);
  draw.scale = reader.F64();
  draw.rotation = reader.Enum(PdfRotation::clockwise270);
  reader.RequireEnd();
  return draw;
}

WorkerMessage PdfDrawnMessage(const PdfDrawn& drawn) {
  return PairMessage(kPdfDrawn, drawn.width, drawn.height);
}

PdfDrawn ReadPdfDrawn(const WorkerMessage& message) {
  FieldReader reader(message.body);
  PdfDrawn drawn;
  drawn.width = reader.I32In(1, kMostPdfPixels);
  drawn.height = reader.I32In(1, kMostPdfPixels);
  reader.RequireEnd();
  return drawn;
}

WorkerMessage PdfTakeRowsMessage(const PdfRows& rows) {
  return PairMessage(kPdfTakeRows, rows.first, rows.count);
}

PdfRows ReadPdfTakeRows(const WorkerMessage& message) {
  FieldReader reader(message.body);
  PdfRows rows;
  rows.first = reader.I32In(0, kMostPdfPixels);
  rows.count = reader.I32In(1, kMostPdfPixels);
  reader.RequireEnd();
  return rows;
}

WorkerMessage PdfRowsMessage(SystemFile memory) {
  return WithFile(kPdfRows, {}, std::move(memory));
}

}  // namespace rasterkit::detail
