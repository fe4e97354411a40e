#pragma once

#include <algorithm>
#include <functional>
#include <new>

#include <rasterkit/drawing/ink/drawing_work.h>
#include <rasterkit/metafiles/records/play_report.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit::detail {

/// How often `keepGoing` is called: rarely enough to cost little, often enough to react at once.
inline constexpr uint32_t kRecordsPerKeepGoing = 64;

inline void Warn(PlayReport& report, const std::string& reason) {
  auto& warnings = report.warnings;
  const bool isNew = std::find(warnings.begin(), warnings.end(), reason) == warnings.end();
  // Messages contain numbers of the file, so that there could be one per record.
  if (isNew && warnings.size() < 20) warnings.push_back(reason);
}

/// Plays all records. `play(record)` returns whether it knows the record type; an error skips the
/// record.
template <typename Records, typename Play>
void PlayRecords(Records& records, const Play& play, const std::function<bool()>& keepGoing,
                 PlayReport& report) {
  while (const auto record = records.Next()) {
    const uint32_t count = report.played + report.skipped;
    if (keepGoing && count % kRecordsPerKeepGoing == 0 && !keepGoing()) {
      report.isComplete = false;
      return;
    }
    RequireTime();
    try {
      ++(play(*record) ? report.played : report.skipped);
    } catch (const DrawingWorkError& error) {
      // Every later record would fail, too.
      Warn(report, error.Reason());
      report.isComplete = false;
      return;
    } catch (const TimeLimitError&) {
      throw;
    } catch (const CanceledError&) {
      throw;
    } catch (const Error& error) {
      ++report.skipped;
      Warn(report, error.Reason());
    } catch (const std::bad_alloc&) {
      ++report.skipped;
      Warn(report, "metafile: out of memory for a record");
    }
  }
  if (!records.Damage().empty()) Warn(report, records.Damage());
}

}  // namespace rasterkit::detail
