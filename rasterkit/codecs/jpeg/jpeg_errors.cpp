#include <cstring>
#include <utility>

#include <jerror.h>

#include <rasterkit/codecs/jpeg/jpeg_errors.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {

namespace {

JpegErrors& ErrorsOf(j_common_ptr codec) {
  return *static_cast<JpegErrors*>(codec->client_data);
}

/// Warnings about the picture data, not about the rest of the file.
bool IsDataDamage(int code) {
  return code == JWRN_HIT_MARKER || code == JWRN_HUFF_BAD_CODE || code == JWRN_MUST_RESYNC ||
         code == JWRN_BOGUS_PROGRESSION;
}

/// Compressed data that no pixel needed: the codes before them were wrong. Bytes between the
/// markers of the header do not count.
bool IsLeftOver(j_common_ptr codec, const jpeg_error_mgr& message) {
  if (message.msg_code != JWRN_EXTRANEOUS_DATA || !codec->is_decompressor) return false;
  return reinterpret_cast<j_decompress_ptr>(codec)->input_scan_number > 0;
}

}  // namespace

jpeg_error_mgr* JpegErrors::Install() {
  jpeg_std_error(&base_);
  base_.error_exit = OnFatal;
  base_.emit_message = OnMessage;
  base_.output_message = OnOutput;
  return &base_;
}

void JpegErrors::OnFatal(j_common_ptr codec) {
  JpegErrors& errors = ErrorsOf(codec);
  errors.base_.format_message(codec, errors.message_);
  std::longjmp(errors.jump, 1);
}

void JpegErrors::OnMessage(j_common_ptr codec, int level) {
  if (level >= 0) return;  // trace texts
  JpegErrors& errors = ErrorsOf(codec);
  const bool isDamage = IsDataDamage(errors.base_.msg_code) || IsLeftOver(codec, errors.base_);
  errors.damaged = errors.damaged || IsDataDamage(errors.base_.msg_code);
  if (errors.base_.msg_code == JWRN_HIT_MARKER && codec->is_decompressor) {
    const auto decoder = reinterpret_cast<j_decompress_ptr>(codec);
    // With restart intervals the decoder can resume after any other marker.
    if (decoder->unread_marker == JPEG_EOI || decoder->restart_interval == 0) {
      errors.NoteEnd(decoder);
    }
  }
  errors.base_.num_warnings++;
  if (errors.warningCount_ == kKeptWarnings) return;
  char* text = errors.warnings_[errors.warningCount_];
  errors.base_.format_message(codec, text);
  for (int i = 0; i < errors.warningCount_; i++) {
    if (std::strcmp(errors.warnings_[i], text) == 0) return;
  }
  errors.isDamage_[errors.warningCount_] = isDamage;
  errors.warningCount_++;
}

void JpegErrors::NoteEnd(j_decompress_ptr decoder) {
  if (dataEnded) return;
  dataEnded = true;
  endedInRow = decoder->input_iMCU_row;
  endedInFirstScan = decoder->input_scan_number <= 1;
}

void JpegErrors::FailWithLimit(const char* reason) {
  limit_ = true;
  std::snprintf(message_, sizeof message_, "%s", reason);
  std::longjmp(jump, 1);
}

void JpegErrors::CheckTime() {
  // No exception may pass through the library, and no jump may leave a handler.
  try {
    RequireTime();
    return;
  } catch (...) {
    stop_ = std::current_exception();
  }
  std::longjmp(jump, 1);
}

void JpegErrors::Throw() const {
  if (stop_) std::rethrow_exception(stop_);
  const std::string reason = std::string("JPEG: ") + message_;
  if (limit_) throw LimitError(reason);
  switch (base_.msg_code) {
    case JERR_OUT_OF_MEMORY:
    case JERR_NO_BACKING_STORE:
    case JERR_WIDTH_OVERFLOW:
    case JERR_IMAGE_TOO_BIG:
      throw LimitError(reason);
    case JERR_BAD_PRECISION:
    case JERR_SOF_UNSUPPORTED:
    case JERR_ARITH_NOTIMPL:
    case JERR_NOT_COMPILED:
    case JERR_CONVERSION_NOTIMPL:
    case JERR_FRACT_SAMPLE_NOTIMPL:
      throw UnsupportedError(reason);
    default:
      throw FormatError(reason);
  }
}

void JpegErrors::CopyTo(CodecReport& report) const {
  for (int i = 0; i < warningCount_; i++) {
    std::string text = std::string("JPEG: ") + warnings_[i];
    if (isDamage_[i]) {
      report.AddDamage(std::move(text));
    } else {
      report.warnings.push_back(std::move(text));
    }
  }
}

}  // namespace rasterkit::detail
