#pragma once

#include <functional>
#include <memory>
#include <vector>

#include <rasterkit/codecs/rows/row_reader.h>

namespace rasterkit::test {

/// The rows that a test reader gave.
struct ReadCount {
  /// How often each row was read.
  std::vector<int> rows;
  /// Pixels in all.
  int64_t pixels = 0;
};

/// A reader that has less access than it could give, and throws where more is requested.
struct TestReader {
  RowAccess access = RowAccess::rising;
  int blockRows = 1;
  /// The row that cannot be read; -1: none.
  int failingRow = -1;
  /// Called before each read, with its first row.
  std::function<void(int top)> onRead;
};

/// `source` and `count` must outlive the reader; `count` may be null.
std::unique_ptr<RowReader> ReaderOf(const Pixels& source, const TestReader& how, ReadCount* count);

}  // namespace rasterkit::test
