#include "tool/command/limit_options.h"

#include <charconv>
#include <cmath>
#include <cstdlib>

#include <rasterkit/runtime/memory/machine_memory.h>

#include "tool/command/exit_code.h"

namespace rasterkit::tool {
namespace {

constexpr const char* kSection = "Limits";

/// One of the limits: its names, and the check of its value.
struct LimitName {
  const char* option;
  const char* variable;
  std::string (*check)(const std::string& text);
};

std::optional<uint64_t> ParseCount(const std::string& text) {
  uint64_t count = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, count);
  if (error != std::errc() || stop != end || count == 0) return std::nullopt;
  return count;
}

std::optional<double> ParseSeconds(const std::string& text) {
  const auto seconds = ReadReal(text);
  if (!seconds || !std::isfinite(*seconds) || *seconds <= 0) return std::nullopt;
  return seconds;
}

std::string CheckBytes(const std::string& text) {
  if (ParseBytes(text)) return {};
  return "must be a number of bytes with or without K, M, G or T (1024 each), not '" + text + "'";
}

std::string CheckCount(const std::string& text) {
  return ParseCount(text) ? std::string() : "must be a whole number from 1, not '" + text + "'";
}

std::string CheckSeconds(const std::string& text) {
  return ParseSeconds(text) ? std::string()
                            : "must be a number of seconds above 0, not '" + text + "'";
}

constexpr LimitName kMemory = {"--max-memory", "RASTERKIT_MAX_MEMORY", CheckBytes};
constexpr LimitName kPixels = {"--max-pixels", "RASTERKIT_MAX_PIXELS", CheckCount};
constexpr LimitName kSide = {"--max-side", "RASTERKIT_MAX_SIDE", CheckCount};
constexpr LimitName kTimeout = {"--timeout", "RASTERKIT_TIMEOUT", CheckSeconds};

/// The value of the option, else that of the variable; empty if there is none.
std::string ValueOf(const std::string& option, const LimitName& name) {
  if (!option.empty()) return option;
  const char* const variable = std::getenv(name.variable);
  std::string value = variable != nullptr ? variable : "";
  const std::string problem = value.empty() ? value : name.check(value);
  if (problem.empty()) return value;
  throw Failure(exitWrongUsage,
                std::string("the environment variable ") + name.variable + ' ' + problem);
}

const char* OptionFor(LimitKind kind) {
  switch (kind) {
    case LimitKind::pictureBytes:
    case LimitKind::processBytes:
      return kMemory.option;
    case LimitKind::pixels:
      return kPixels.option;
    case LimitKind::side:
      return kSide.option;
    case LimitKind::seconds:
      return kTimeout.option;
    default:
      return nullptr;
  }
}

std::string WithOption(const std::string& text, const std::exception& error) {
  const auto* const limit = dynamic_cast<const LimitError*>(&error);
  const char* const option = limit != nullptr ? OptionFor(limit->Kind()) : nullptr;
  return option == nullptr ? text : text + " (" + option + " changes it)";
}

}  // namespace

std::optional<uint64_t> ParseBytes(const std::string& text) {
  constexpr std::string_view kUnits = "KMGT";
  constexpr double kMost = 9e18;
  std::string number = text;
  double factor = 1;
  if (!number.empty()) {
    const char last = number.back();
    const char upper = last >= 'a' && last <= 'z' ? static_cast<char>(last - 'a' + 'A') : last;
    const size_t unit = kUnits.find(upper);
    if (unit != std::string_view::npos) {
      number.pop_back();
      factor = std::ldexp(1.0, static_cast<int>(10 * (unit + 1)));
    }
  }
  // Neither a sign nor the names of numbers that are not finite.
  if (number.empty() || number.find_first_not_of("0123456789.") != std::string::npos) {
    return std::nullopt;
  }
  const auto value = ReadReal(number);
  if (!value || !(*value * factor >= 1) || !(*value * factor <= kMost)) return std::nullopt;
  return static_cast<uint64_t>(*value * factor);
}

void AddLimits(Verb& verb, LimitOptions& options) {
  verb.Text(kMemory.option, "SIZE", options.memory, kMemory.check,
            "memory for all pictures together, without small buffers of decoders, in bytes or with "
            "K, M, G or T [75 % of the machine's, and 4G per picture]")
      .In(kSection);
  verb.Text(kPixels.option, "N", options.pixels, kPixels.check,
            "refuse pictures with more pixels [no limit]")
      .In(kSection);
  verb.Text(kSide.option, "N", options.side, kSide.check,
            "refuse pictures with more pixels per side [no limit]")
      .In(kSection);
  verb.Text(kTimeout.option, "S", options.timeout, kTimeout.check,
            "give a picture up after S seconds [no limit]")
      .In(kSection);
}

Limits LimitsOf(const LimitOptions& options) {
  Limits limits;
  const std::string memory = ValueOf(options.memory, kMemory);
  const std::string pixels = ValueOf(options.pixels, kPixels);
  const std::string side = ValueOf(options.side, kSide);
  const std::string timeout = ValueOf(options.timeout, kTimeout);
  limits.processBytes = MachineMemory() / 4 * 3;
  if (!memory.empty()) limits.pictureBytes = limits.processBytes = ParseBytes(memory).value();
  if (!pixels.empty()) limits.pixels = ParseCount(pixels).value();
  if (!side.empty()) limits.side = ParseCount(side).value();
  if (!timeout.empty()) limits.seconds = ParseSeconds(timeout).value();
  return limits;
}

std::string ReasonWithOption(const Error& error) {
  return WithOption(error.Reason(), error);
}

std::string MessageWithOption(const std::exception& error) {
  return WithOption(error.what(), error);
}

}  // namespace rasterkit::tool
