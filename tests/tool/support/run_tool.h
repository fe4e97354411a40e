#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

#include <nlohmann/json.hpp>

namespace rasterkit::test {

struct ToolResult {
  /// Exit code; 128 + number of the signal that ended the process.
  int code = -1;
  std::string out, err;
  /// Most memory that the process ever held, in bytes.
  uint64_t peakMemory = 0;
};

struct ToolSetup {
  /// Largest file that the process may write, in bytes, as with `ulimit -f`.
  std::optional<uint64_t> fileSizeLimit;
  /// What stdin reads; empty for nothing.
  std::string stdinFile = {};
  /// Where stdout goes instead of into the result.
  std::string stdoutFile = {};
  /// Whoever reads stdout has gone away before the process starts.
  bool isReaderGone = false;
  /// System calls that fail with the error: its number, and for calls with flags the bits that must
  /// be set in the third argument. Needs a kernel that filters calls (see CanFilterCalls).
  struct FailingCall {
    long number = 0;
    int error = 0;
    uint32_t flags = 0;
  };
  std::vector<FailingCall> failingCalls = {};
  /// stderr is a terminal; lines that come from there end with "\r\n".
  bool hasTerminal = false;
};

/// Returns false where system calls cannot be filtered, as in an emulator of another processor.
bool CanFilterCalls();

/// The tool as a process with its output in pipes (so that a progress bar is drawn only on
/// request), stdin empty unless the setup names a file.
class ToolProcess {
 public:
  explicit ToolProcess(const std::vector<std::string>& arguments, const ToolSetup& setup = {});
  ToolProcess(const ToolProcess&) = delete;
  ToolProcess& operator=(const ToolProcess&) = delete;
  ~ToolProcess();

  void Interrupt() const;
  /// Reads both pipes to their end and waits.
  ToolResult Wait();

 private:
  pid_t process_ = -1;
  int out_ = -1, err_ = -1;
};

inline ToolResult RunTool(const std::vector<std::string>& arguments, const ToolSetup& setup = {}) {
  return ToolProcess(arguments, setup).Wait();
}

/// One JSON object for each line of stdout.
std::vector<nlohmann::json> JsonLines(const std::string& out);

/// A folder that is empty at first and gone at last.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  /// The full name of a file in the folder.
  std::string operator/(const std::string& name) const { return (path_ / name).string(); }
  std::string Path() const { return path_.string(); }
  /// Names of everything in the folder, sorted.
  std::vector<std::string> Names() const;

 private:
  std::filesystem::path path_;
};

std::vector<uint8_t> ReadBytes(const std::string& file);
void WriteBytes(const std::string& file, const std::vector<uint8_t>& bytes);
inline void WriteText(const std::string& file, const std::string& text) {
  WriteBytes(file, {text.begin(), text.end()});
}

}  // namespace rasterkit::test
