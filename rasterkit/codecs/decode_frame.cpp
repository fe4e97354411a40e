#include <utility>

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/codecs/decode_frame.h>
#include <rasterkit/codecs/decode_picture.h>
#include <rasterkit/codecs/isolated_input.h>
#include <rasterkit/codecs/messages/frame_fields.h>
#include <rasterkit/codecs/messages/isolated_reading.h>
#include <rasterkit/codecs/rows/frame_format.h>
#include <rasterkit/codecs/unsized_picture.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

ImagingFrame DecodeSized(TStream& stream, const FrameOptions& options, CodecReport* report) {
  const Codec* codec = FindFrameCodec(SniffPictureType(stream));
  if (codec == nullptr) throw FormatError("Invalid image");
  if (codec->decodeFrame != nullptr) return codec->decodeFrame(stream, options, report);
  ImagingFrame frame;
  frame.rows = DecodePicture(stream, report);
  frame.format = detail::FrameFormatOf(frame.rows);
  return frame;
}

ImagingFrame DecodeHere(TStream& stream, const FrameOptions& options, CodecReport* report) {
  if (stream.Size() > stream.Position()) return DecodeSized(stream, options, report);
  // Pipes have no size and give their bytes only once.
  TMemoryStream memory(ReadUnsizedPicture(stream));
  return DecodeSized(memory, options, report);
}

ImagingFrame DecodeIsolated(detail::SystemFile file, int threads, CodecReport* report) {
  detail::FieldWriter task;
  task.I32(threads);
  detail::FrameHead head;
  ImagingFrame frame;
  std::exception_ptr error;
  const auto place = [&](detail::FieldReader& fields, uint64_t bytes) -> std::span<uint8_t> {
    const CodecReport noticed = detail::ReadReport(fields);
    if (report) report->Append(noticed);
    error = detail::ReadOutcome(fields);
    if (!error) head = detail::ReadFrameHead(fields);
    fields.RequireEnd();
    if (error) return {};
    frame = detail::NewFrame(head, bytes);
    return detail::RowsOf(frame.rows);
  };
  detail::ReadInWorker(detail::WorkerReader::pictures, detail::WorkerTask::frame, task.Written(),
                       std::move(file), {}, place);
  if (error) std::rethrow_exception(error);
  frame.rows.ClearPadding();
  return frame;
}

}  // namespace

ImagingFrame DecodeFrame(TStream& stream, const FrameOptions& options, CodecReport* report) {
  const LimitsScope limits(options.limits ? *options.limits : CurrentLimits());
  if (options.isolation == Isolation::none) return DecodeHere(stream, options, report);
  return DecodeIsolated(detail::CopyForWorker(stream), options.threads, report);
}

ImagingFrame DecodeFrame(const std::string& fileName, const FrameOptions& options,
                         CodecReport* report) {
  const LimitsScope limits(options.limits ? *options.limits : CurrentLimits());
  try {
    if (options.isolation == Isolation::process) {
      return DecodeIsolated(detail::OpenForWorker(fileName), options.threads, report);
    }
    TFileStream stream(fileName);
    return DecodeHere(stream, options, report);
  } catch (Error& error) {
    error.AttachFile(fileName);
    throw;
  }
}

}  // namespace rasterkit
