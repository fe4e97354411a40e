#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include <rasterkit/bands/stage/stage.h>
#include <rasterkit/codecs/rows/codec_report.h>
#include <rasterkit/codecs/rows/row_reader.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// How a picture flows through its stages. No result depends on it.
struct FlowSettings {
  /// Rows of a band of the result; 0: so many that all bands together take a few megabytes.
  int rows = 0;
  int threads = 1;
  /// Bytes that the flow may hold to keep pictures in memory that are read more than once or not
  /// from top to bottom. Larger ones go to a scratch file.
  uint64_t heldBytes = uint64_t{48} << 20;
  /// Folder of the scratch file; empty: the system's folder for temporary files.
  std::string scratchFolder;
};

/// Bytes that a flow holds at most, known before it starts: in memory beside what the reader and
/// the writer hold, and in a scratch file.
struct FlowNeeds {
  uint64_t memory = 0, scratch = 0;
};

/// A reader, and stages that make the rows of a result from its rows, band after band.
///
/// Stages that need their source from the bottom, sideways or twice get it from the reader if that
/// gives any parts, else from memory or from a scratch file. Stages that work only on whole
/// pictures get them whole. With more than one thread, the next band is read while one is made and
/// the one before is taken.
class RASTERKIT_EXPORT BandFlow {
 public:
  /// Takes over the reader. Reads no rows unless a stage must look at them before the kind of its
  /// result is known: that happens in Begin.
  BandFlow(std::unique_ptr<RowReader> reader, Stages stages, FlowSettings settings);
  ~BandFlow();

  /// Does all that comes before the first row: passes over the source, scratch space.
  /// `run.progress` gets the progress of this part.
  void Begin(const StageRun& run);
  /// A picture of any size with the kind of the result's pixels. After Begin.
  const Pixels& Like() const;
  /// Of the result. After Begin.
  Sides Size() const;
  /// Makes all rows and hands them out from top to bottom: on one thread at a time, which need not
  /// be the calling one. What `take` throws ends the flow. Call once, after Begin.
  void Run(const StageRun& run, const std::function<void(Pixels& rows, int top)>& take);
  /// The same rows as one picture, without a copy where they are one already. Call instead of Run.
  Pixels Whole(const StageRun& run);
  /// What the decoder noticed and what the stages lost. After Run.
  void Finish(CodecReport& report, Changes& changes);

 private:
  class Parts;
  std::unique_ptr<Parts> parts_;
};

/// What a flow from such a reader holds at most. Reads no rows. Works that look at the rows before
/// they know their result are judged by blank ones; stages that need whole pictures, and those
/// after them, as if they kept the size.
RASTERKIT_EXPORT FlowNeeds ForetellFlow(const RowReader& reader, const Stages& stages,
                                        const FlowSettings& settings);

/// A reader of rows that are in memory.
RASTERKIT_EXPORT std::unique_ptr<RowReader> RowsInMemory(Pixels pixels);
/// The same for rows that somebody else keeps.
RASTERKIT_EXPORT std::unique_ptr<RowReader> RowsInMemory(std::shared_ptr<const Pixels> pixels);

}  // namespace rasterkit
