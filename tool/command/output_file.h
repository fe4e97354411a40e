#pragma once

#include <functional>
#include <memory>
#include <string>

#include <rasterkit/runtime/files/atomic_file.h>

#include "tool/command/output_options.h"

namespace rasterkit::tool {

/// Opens an output, lets `write` write it, and returns it finished: every byte is with the system,
/// and the file gets its name when it is committed. The output "-" goes to stdout, as a whole; the
/// result is then null. Throws Failure(exitOutputNotWritten), or
/// Failure(exitInterrupted) before the last byte is written.
std::unique_ptr<AtomicFile> WriteOutput(const std::string& name, const SaveRules& rules,
                                        const std::function<void(TStream&)>& write);

/// The message for an error of the output `name`.
std::string OutputError(const std::string& name, const std::exception_ptr& error);

}  // namespace rasterkit::tool
