#include "tool/command/output_file.h"

#include <new>

#include <rasterkit/runtime/errors.h>

#include "tool/command/exit_code.h"
#include "tool/command/interruption.h"
#include "tool/command/limit_options.h"
#include "tool/command/standard_input.h"

namespace rasterkit::tool {

std::unique_ptr<AtomicFile> WriteOutput(const std::string& name, const SaveRules& rules,
                                        const std::function<void(TStream&)>& write) {
  try {
    if (IsStandardStream(name)) {
      TMemoryStream bytes;
      write(bytes);
      StopIfInterrupted();
      WriteStandardOutput(bytes.Bytes());
      return nullptr;
    }
    const WholeOutput whole;
    const IfExists ifExists = rules.overwrite ? IfExists::replace : IfExists::fail;
    auto file = std::make_unique<AtomicFile>(
        name, AtomicFileOptions{ifExists, rules.syncs, rules.keepsBackup});
    write(*file);
    StopIfInterrupted();
    file->Finish();
    return file;
  } catch (const Failure&) {
    throw;
  } catch (const std::exception&) {
    throw Failure(exitOutputNotWritten, OutputError(name, std::current_exception()));
  }
}

std::string OutputError(const std::string& name, const std::exception_ptr& error) {
  try {
    std::rethrow_exception(error);
  } catch (const FileExistsError&) {
    return name + ": already exists (--overwrite replaces it)";
  } catch (const BackupError& reason) {
    return name + ": " + reason.Reason() + " (--no-backup keeps none)";
  } catch (const FileError& reason) {
    // A file beside the output bears a name of its own.
    return (reason.File().empty() ? name : reason.File()) + ": " + ReasonWithOption(reason);
  } catch (const Error& reason) {
    return name + ": " + ReasonWithOption(reason);
  } catch (const std::bad_alloc&) {
    return name + ": out of memory";
  } catch (const std::exception& reason) {
    return name + ": " + reason.what();
  }
}

}  // namespace rasterkit::tool
