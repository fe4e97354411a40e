#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace rasterkit {

class TPixelThread;

namespace detail {

/// Transfers whole rows by kernels and tables, with the results of TransferRules.
class RowTransfer {
 public:
  virtual ~RowTransfer() = default;

  /// Transfers a row, passed from its first byte on; call it for the rows of one worker in order.
  virtual void TransferRow(uint8_t* target, const uint8_t* source) = 0;
};

/// Adjacent target columns, all of which have a source column.
struct ColumnRun {
  int32_t first = 0;
  std::vector<int32_t> columns;
};

/// Makes the transfer for a worker. Null if TransferRules must be used: for rows that other workers
/// may access, and for rare pairs of formats.
std::unique_ptr<RowTransfer> MakeRowTransfer(const TPixelThread& worker, const ColumnRun& run);

/// Make transfers for targets of 24 and 32 bits, of 8 bits, and of 1 bit; null as above.
std::unique_ptr<RowTransfer> MakeColorTransfer(const TPixelThread& worker, const ColumnRun& run);
std::unique_ptr<RowTransfer> MakeIndexTransfer(const TPixelThread& worker, const ColumnRun& run);
std::unique_ptr<RowTransfer> MakeMonoTransfer(const TPixelThread& worker, const ColumnRun& run);

}  // namespace detail
}  // namespace rasterkit
