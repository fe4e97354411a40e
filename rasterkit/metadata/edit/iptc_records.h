#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// One record of IPTC-IIM: "2:80" is record 2, data set 80.
struct IptcRecord {
  uint8_t record = 0, dataSet = 0;
  std::vector<uint8_t> bytes;
  friend bool operator==(const IptcRecord&, const IptcRecord&) = default;
};

/// What is known about a data set.
struct IptcFact {
  uint8_t dataSet;
  std::string_view name, otherName;
  /// Most bytes.
  uint16_t most;
  enum class Form : uint8_t { text, day, time } form;
  /// It may stand there several times.
  bool isList;
  /// It says where the photograph was taken, or what it shows of the world.
  bool isPlace;
};

/// Records as in a file, as a value. What cannot be read at the end is kept as it is.
class RASTERKIT_EXPORT IptcRecords {
 public:
  explicit IptcRecords(std::span<const uint8_t> bytes);

  const std::vector<IptcRecord>& All() const { return records_; }
  bool IsDamaged() const { return !rest_.empty(); }
  bool Has(uint8_t dataSet) const;
  /// The texts of a data set of record 2 as UTF-8.
  std::vector<std::string> Texts(uint8_t dataSet) const;
  /// Replaces those of a data set of record 2; other records keep their order. Texts that are no
  /// ASCII make all texts UTF-8, which record 1:90 then states.
  void Set(uint8_t dataSet, const std::vector<std::string>& texts);
  /// Removes a data set of record 2; true if there was one.
  bool Remove(uint8_t dataSet);
  /// Removes what says where the photograph was taken; true if there was something. Bytes at the
  /// end that cannot be read go too.
  bool RemovePlaces();
  /// The bytes; empty if no data set of record 2 is left.
  std::vector<uint8_t> Bytes() const;

 private:
  bool IsUtf8() const;
  void MakeUtf8();

  std::vector<IptcRecord> records_;
  std::vector<uint8_t> rest_;
};

/// The data sets that can be set by name.
RASTERKIT_EXPORT std::span<const IptcFact> IptcFacts();
/// In any case of letters; null if there is none.
RASTERKIT_EXPORT const IptcFact* FindIptcFact(std::string_view name);

/// The bytes of a value: text, "20190704" of a day, "130509+0000" of a time. Throws RangeError with
/// the name and the reason.
RASTERKIT_EXPORT std::string ReadIptcValue(const IptcFact& fact, std::string_view text);

}  // namespace rasterkit
