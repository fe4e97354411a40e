#include <algorithm>
#include <cstdint>
#include <limits>

#include <rasterkit/dialogs/editpdfbitmap/combo_number.h>

namespace rasterkit {
namespace {

bool IsDigit(char character) {
  return character >= '0' && character <= '9';
}

int64_t FoldAngle(int64_t angle) {
  if (angle >= 360) return angle % 360;
  // The result is -360 to -1, because -360 is above the limit for folding.
  return angle < -360 ? (angle + 1) % 360 - 1 : angle;
}

}  // namespace

bool ParseComboNumber(std::string_view text, double& value, bool foldAngle) {
  constexpr int64_t kGreatest = std::numeric_limits<int32_t>::max();
  bool hasStarted = false, isNegative = false, hasDigit = false;
  int64_t number = 0;
  for (const char character : text) {
    if (!hasStarted && character == '-') hasStarted = isNegative = true;
    if (!IsDigit(character)) continue;
    hasStarted = hasDigit = true;
    number = std::min(number * 10 + (character - '0'), kGreatest);
  }
  if (!hasDigit) return false;
  if (isNegative) number = -number;
  value = static_cast<double>(foldAngle ? FoldAngle(number) : number);
  return true;
}

}  // namespace rasterkit
