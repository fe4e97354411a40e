#pragma once

#include <algorithm>
#include <functional>
#include <new>

#include <rasterkit/drawing/ink/drawing_work.h>
#include <rasterkit/metafiles/records/play_report.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {

/// How often `keepGoing` is asked: seldom enough to cost nothing, often enough to feel at once.
inline constexpr uint32_t kRecordsBetweenQuestions = 64;

inline void Warn(PlayReport& report, const std::string& reason) {
  auto& warnings = report.warnings;
  const bool isNew = std::find(warnings.begin(), warnings.end(), reason) == warnings.end();
  // Texts hold numbers from the file; there must not be as many of them as records.
  if (isNew && warnings.size() < 20) warnings.push_back(reason);
}

/// Plays the records that `records` walks over. `play(record)` answers whether it knows the record;
/// an error costs the record alone.
template <typename Records, typename Play>
void PlayRecords(Records& records, const Play& play, const std::function<bool()>& keepGoing,
                 PlayReport& report) {
  while (const auto record = records.Next()) {
    const uint32_t count = report.played + report.skipped;
    if (keepGoing && count % kRecordsBetweenQuestions == 0 && !keepGoing()) {
      report.isComplete = false;
      return;
    }
    try {
      ++(play(*record) ? report.played : report.skipped);
    } catch (const DrawingWorkError& error) {
      // It would be said of every record from here on.
      Warn(report, error.Reason());
      report.isComplete = false;
      return;
    } catch (const Error& error) {
      ++report.skipped;
      Warn(report, error.Reason());
    } catch (const std::bad_alloc&) {
      ++report.skipped;
      Warn(report, "metafile: the system has no memory for a record");
    }
  }
  if (!records.Damage().empty()) Warn(report, records.Damage());
}

}  // namespace rasterkit::detail
