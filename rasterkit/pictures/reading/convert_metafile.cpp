#include <utility>

#include <rasterkit/codecs/isolated_input.h>
#include <rasterkit/codecs/messages/isolated_reading.h>
#include <rasterkit/graphics/metafile.h>
#include <rasterkit/pictures/reading/convert_metafile.h>
#include <rasterkit/pictures/reading/picture_fields.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit {
namespace {

ConvertedMetafile ConvertHere(TStream& stream, bool toEnhanced) {
  TMetafile metafile;
  metafile.LoadFromStream(stream);
  ConvertedMetafile converted;
  converted.wasEnhanced = metafile.Enhanced();
  converted.width = metafile.Width();
  converted.height = metafile.Height();
  converted.warnings = metafile.Facts().warnings;
  metafile.SetEnhanced(toEnhanced);
  try {
    TMemoryStream target;
    metafile.SaveToStream(target);
    converted.bytes = target.TakeBytes();
  } catch (...) {
    converted.error = std::current_exception();
  }
  return converted;
}

ConvertedMetafile ConvertIsolated(TStream& stream, bool toEnhanced,
                                  const std::function<bool()>& keepGoing) {
  detail::FieldWriter task;
  task.Bool(toEnhanced);
  ConvertedMetafile converted;
  std::exception_ptr error;
  const auto place = [&](detail::FieldReader& fields, uint64_t bytes) -> std::span<uint8_t> {
    error = detail::ReadOutcome(fields);
    if (!error) detail::ReadConvertedMetafile(fields, converted);
    fields.RequireEnd();
    RequirePictureMemory(bytes, "metafile");
    converted.bytes.resize(static_cast<size_t>(bytes));
    return converted.bytes;
  };
  detail::ReadInWorker(detail::WorkerReader::metafiles, detail::WorkerTask::metafile,
                       task.Written(), detail::CopyForWorker(stream), keepGoing, place);
  if (error) std::rethrow_exception(error);
  return converted;
}

}  // namespace

ConvertedMetafile ConvertMetafile(TStream& stream, bool toEnhanced, Isolation isolation,
                                  const std::function<bool()>& keepGoing) {
  return isolation == Isolation::process ? ConvertIsolated(stream, toEnhanced, keepGoing)
                                         : ConvertHere(stream, toEnhanced);
}

}  // namespace rasterkit
