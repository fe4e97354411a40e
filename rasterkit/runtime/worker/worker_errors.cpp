#include <new>

#include <rasterkit/runtime/error_class.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/utf8.h>
#include <rasterkit/runtime/worker/fields.h>
#include <rasterkit/runtime/worker/worker_errors.h>

namespace rasterkit::detail {
namespace {

/// A reason is a phrase for people.
constexpr size_t kMostReasonBytes = 2000;
/// Worst case of the replaced text: three bytes per byte.
constexpr size_t kMostCleanBytes = 3 * kMostReasonBytes;

std::string Clean(const std::string& reason) {
  constexpr char32_t kReplacement = 0xFFFD;
  std::string clean;
  for (size_t position = 0; position < reason.size() && position < kMostReasonBytes;) {
    const Utf8Step step = NextUtf8(reason, position);
    const bool isControl = step.valid && (step.codePoint < ' ' || step.codePoint == 0x7F);
    AppendUtf8(clean, step.valid && !isControl ? step.codePoint : kReplacement);
    position += step.bytes;
  }
  return clean;
}

WorkerErrorClass ClassOf(const Error& error) {
  if (dynamic_cast<const TimeLimitError*>(&error)) return WorkerErrorClass::timeLimit;
  if (dynamic_cast<const LimitError*>(&error)) return WorkerErrorClass::limit;
  if (dynamic_cast<const FileError*>(&error)) return WorkerErrorClass::file;
  if (dynamic_cast<const FormatError*>(&error)) return WorkerErrorClass::format;
  if (dynamic_cast<const UnsupportedError*>(&error)) return WorkerErrorClass::unsupported;
  if (dynamic_cast<const RangeError*>(&error)) return WorkerErrorClass::range;
  if (dynamic_cast<const ConversionError*>(&error)) return WorkerErrorClass::conversion;
  if (dynamic_cast<const DivisionByZeroError*>(&error)) return WorkerErrorClass::divisionByZero;
  if (ErrorClassName(error) == "PdfPasswordError") return WorkerErrorClass::pdfPassword;
  return WorkerErrorClass::error;
}

WorkerError Described(const std::exception_ptr& error) {
  try {
    std::rethrow_exception(error);
  } catch (const Error& caught) {
    const auto* limit = dynamic_cast<const LimitError*>(&caught);
    return {ClassOf(caught), limit ? static_cast<int>(limit->Kind()) : 0, caught.Reason()};
  } catch (const std::bad_alloc&) {
    return {WorkerErrorClass::badAlloc, 0, "out of memory"};
  } catch (const std::exception& caught) {
    return {WorkerErrorClass::error, 0, caught.what()};
  } catch (...) {
    return {WorkerErrorClass::error, 0, "unknown error"};
  }
}

}  // namespace

WorkerMessage FailedMessage(const std::exception_ptr& error) {
  return FailedMessage(Described(error));
}

WorkerMessage FailedMessage(const WorkerError& error) {
  FieldWriter writer;
  writer.Enum(error.errorClass);
  writer.I32(error.limitKind);
  writer.Text(Clean(error.reason));
  return {kWorkerFailed, writer.Take()};
}

WorkerError ReadFailed(const WorkerMessage& message) {
  if (message.kind != kWorkerFailed || !message.files.empty()) ThrowBadMessage("it is no error");
  FieldReader reader(message.body);
  WorkerError error;
  error.errorClass = reader.Enum(WorkerErrorClass::outOfMemory);
  error.limitKind = reader.I32In(0, static_cast<int>(LimitKind::seconds));
  error.reason = Clean(reader.Text(kMostCleanBytes));
  reader.RequireEnd();
  return error;
}

void ThrowWorkerError(const WorkerError& error) {
  switch (error.errorClass) {
    case WorkerErrorClass::file:
      throw FileError(error.reason);
    case WorkerErrorClass::format:
      throw FormatError(error.reason);
    case WorkerErrorClass::unsupported:
    case WorkerErrorClass::component:
      throw UnsupportedError(error.reason);
    case WorkerErrorClass::limit:
    case WorkerErrorClass::outOfMemory:
      throw LimitError(static_cast<LimitKind>(error.limitKind), error.reason);
    case WorkerErrorClass::timeLimit:
      throw TimeLimitError(error.reason);
    case WorkerErrorClass::range:
      throw RangeError(error.reason);
    case WorkerErrorClass::conversion:
      throw ConversionError(error.reason);
    case WorkerErrorClass::divisionByZero:
      throw DivisionByZeroError(error.reason);
    case WorkerErrorClass::badAlloc:
      throw std::bad_alloc();
    case WorkerErrorClass::error:
    case WorkerErrorClass::pdfPassword:
      break;
  }
  throw Error(error.reason);
}

}  // namespace rasterkit::detail
