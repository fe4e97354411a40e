// --max-memory, --max-pixels, --max-side and --timeout, and the environment variables of the same
// names.

#pragma once

#include <optional>
#include <string>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

#include "tool/command/options.h"

namespace rasterkit::tool {

/// The options as typed; empty if not given.
struct LimitOptions {
  std::string memory, pixels, side, timeout;
};

/// Adds the options to a verb.
void AddLimits(Verb& verb, LimitOptions& options);

/// The limits of the process. An option wins over its environment variable. Without both, pictures
/// may take three quarters of the machine's memory together. Throws Failure(exitWrongUsage) for an
/// invalid variable.
Limits LimitsOf(const LimitOptions& options);

/// "512", "64K", "1.5G": bytes, in units of 1024. Nothing if the text is not a size of at least one
/// byte.
std::optional<uint64_t> ParseBytes(const std::string& text);

/// The reason of an error; names the option that changes the limit if one was exceeded.
std::string ReasonWithOption(const Error& error);
/// The same for the message of any exception.
std::string MessageWithOption(const std::exception& error);

}  // namespace rasterkit::tool
