#include "tests/tool/support/run_tool.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace rasterkit::test {
namespace {

/// Lets calls of this process, and of the program that it becomes, fail.
bool FilterCalls(const std::vector<ToolSetup::FailingCall>& calls) {
  std::vector<sock_filter> filter;
  for (const ToolSetup::FailingCall& call : calls) {
    filter.push_back(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)));
    const uint32_t number = static_cast<uint32_t>(call.number);
    const uint8_t next = call.flags != 0 ? 3 : 1;
    filter.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, number, 0, next));
    if (call.flags != 0) {
      filter.push_back(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[2])));
      filter.push_back(BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, call.flags, 0, 1));
    }
    const uint32_t error = static_cast<uint32_t>(call.error);
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error));
  }
  filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
  const sock_fprog program{static_cast<unsigned short>(filter.size()), filter.data()};
  return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

/// Runs in the child process between fork and exec.
[[noreturn]] void BecomeTool(std::vector<char*> arguments, const ToolSetup& setup, int out,
                             int err) {
  const int nothing =
      open(setup.stdinFile.empty() ? "/dev/null" : setup.stdinFile.c_str(), O_RDONLY);
  dup2(nothing, STDIN_FILENO);
  dup2(setup.stdoutFile.empty() ? out : open(setup.stdoutFile.c_str(), O_WRONLY), STDOUT_FILENO);
  dup2(err, STDERR_FILENO);
  if (setup.fileSizeLimit) {
    const rlimit limit{*setup.fileSizeLimit, *setup.fileSizeLimit};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  if (!setup.failingCalls.empty() && !FilterCalls(setup.failingCalls)) _exit(126);
  execv(arguments[0], arguments.data());
  _exit(127);
}

/// Opens a terminal: the test's end and the end that the tool writes to.
std::array<int, 2> OpenTerminal() {
  const int ours = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (ours < 0 || grantpt(ours) != 0 || unlockpt(ours) != 0)
    throw std::runtime_error("no terminal");
  const int theirs = open(ptsname(ours), O_RDWR | O_NOCTTY | O_CLOEXEC);
  if (theirs < 0) throw std::runtime_error("no terminal");
  return {ours, theirs};
}

void DrainPipes(std::array<std::pair<int, std::string*>, 2> pipes) {
  std::array<char, 4096> buffer;
  size_t open = pipes.size();
  while (open > 0) {
    std::array<pollfd, 2> waiting;
    for (size_t i = 0; i < pipes.size(); ++i) waiting[i] = {pipes[i].first, POLLIN, 0};
    poll(waiting.data(), waiting.size(), -1);
    for (size_t i = 0; i < pipes.size(); ++i) {
      if (waiting[i].revents == 0) continue;
      const ssize_t count = read(pipes[i].first, buffer.data(), buffer.size());
      if (count > 0) {
        pipes[i].second->append(buffer.data(), static_cast<size_t>(count));
      } else {
        pipes[i].first = -1;
        --open;
      }
    }
  }
}

}  // namespace

bool CanFilterCalls() {
  const pid_t child = fork();
  if (child == 0) _exit(FilterCalls({{-1, EIO, 0}}) ? 0 : 1);
  int status = 0;
  waitpid(child, &status, 0);
  return status == 0;
}

ToolProcess::ToolProcess(const std::vector<std::string>& arguments, const ToolSetup& setup) {
  std::array<int, 2> out, err;
  if (pipe2(out.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  if (setup.hasTerminal)
    err = OpenTerminal();
  else if (pipe2(err.data(), O_CLOEXEC) != 0)
    throw std::runtime_error("no pipe");
  std::vector<std::string> words = {RASTERKIT_TOOL};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  if (setup.isReaderGone) {
    close(out[0]);
    out[0] = open("/dev/null", O_RDONLY | O_CLOEXEC);
  }
  process_ = fork();
  if (process_ == 0) BecomeTool(std::move(pointers), setup, out[1], err[1]);
  close(out[1]);
  close(err[1]);
  out_ = out[0];
  err_ = err[0];
}

ToolProcess::~ToolProcess() {
  close(out_);
  close(err_);
  if (process_ > 0) waitpid(process_, nullptr, 0);
}

void ToolProcess::Interrupt() const {
  kill(process_, SIGINT);
}

ToolResult ToolProcess::Wait() {
  ToolResult result;
  DrainPipes({{{out_, &result.out}, {err_, &result.err}}});
  int status = 0;
  rusage usage{};
  wait4(std::exchange(process_, -1), &status, 0, &usage);
  result.peakMemory = static_cast<uint64_t>(usage.ru_maxrss) * 1024;
  result.code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return result;
}

std::vector<nlohmann::json> JsonLines(const std::string& out) {
  std::vector<nlohmann::json> lines;
  std::istringstream in(out);
  for (std::string line; std::getline(in, line);) lines.push_back(nlohmann::json::parse(line));
  return lines;
}

TempFolder::TempFolder() {
  static std::atomic<int> count = 0;
  path_ = std::filesystem::temp_directory_path() /
          ("rasterkit-cli-" + std::to_string(getpid()) + "-" + std::to_string(count++));
  std::filesystem::remove_all(path_);
  std::filesystem::create_directories(path_);
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::vector<std::string> TempFolder::Names() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(path_))
    names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

std::vector<uint8_t> ReadBytes(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

void WriteBytes(const std::string& file, const std::vector<uint8_t>& bytes) {
  std::ofstream(file, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
}

}  // namespace rasterkit::test
