// A worker program that breaks the rules. The name by which it is started says how.

#include <csignal>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <rasterkit/runtime/worker/fields.h>
#include <rasterkit/runtime/worker/worker_channel.h>
#include <rasterkit/runtime/worker/worker_errors.h>
#include <rasterkit/runtime/worker/worker_memory.h>
#include <rasterkit/runtime/worker/worker_setup.h>

using namespace rasterkit;
using namespace rasterkit::detail;

namespace {

constexpr uint16_t kAnswer = 101;

/// Sends bytes as they are, with files.
void SendRaw(const std::vector<uint8_t>& bytes, const std::vector<int>& files = {}) {
  iovec piece{const_cast<uint8_t*>(bytes.data()), bytes.size()};
  msghdr header{};
  header.msg_iov = &piece;
  header.msg_iovlen = 1;
  std::vector<char> control(CMSG_SPACE(files.size() * sizeof(int)));
  if (!files.empty()) {
    header.msg_control = control.data();
    header.msg_controllen = control.size();
    cmsghdr* const part = CMSG_FIRSTHDR(&header);
    part->cmsg_level = SOL_SOCKET;
    part->cmsg_type = SCM_RIGHTS;
    part->cmsg_len = CMSG_LEN(files.size() * sizeof(int));
    std::memcpy(CMSG_DATA(part), files.data(), files.size() * sizeof(int));
  }
  sendmsg(3, &header, MSG_NOSIGNAL);
}

std::vector<SystemFile> OneFile() {
  std::vector<SystemFile> files;
  files.push_back(OpenAt(AT_FDCWD, "/dev/null", O_RDONLY));
  return files;
}

WorkerMessage WithMemory(size_t bytes) {
  WorkerMessage message{kAnswer};
  message.files.push_back(WorkerMemoryOf(std::vector<uint8_t>(bytes, 7)));
  return message;
}

std::vector<uint8_t> Changed(size_t place, uint8_t value) {
  std::vector<uint8_t> packet = PackWorkerMessage({kAnswer, {1, 2, 3}});
  packet[place] = value;
  return packet;
}

void Pause() {
  while (true) pause();
}

/// The host must wait until this process says that it is locked in.
bool IsAskedTooEarly(const WorkerChannel& channel) {
  constexpr int kMilliseconds = 200;
  pollfd wait{channel.Handle(), POLLIN, 0};
  return poll(&wait, 1, kMilliseconds) > 0;
}

void AnswerBadly(const std::string& how, const WorkerChannel& channel) {
  const auto die = [](int signal) {
    std::signal(signal, SIG_DFL);
    raise(signal);
  };
  if (how == "good" || how == "ready-late" || how == "ready-unfiltered") {
    channel.Send({kAnswer, {1, 2, 3}});
  }
  if (how == "abort") die(SIGABRT);
  if (how == "segmentation") die(SIGSEGV);
  if (how == "call") die(SIGSYS);
  if (how == "killed") die(SIGKILL);
  if (how == "time") die(SIGXCPU);
  if (how == "exit") _exit(0);
  if (how == "hang") Pause();
  if (how == "deaf") {
    close(3);
    Pause();
  }
  if (how == "magic") SendRaw(Changed(0, 'X'));
  if (how == "version") SendRaw(Changed(4, 99));
  if (how == "kind") SendRaw(Changed(6, 99));
  if (how == "length") SendRaw(Changed(8, 4));
  if (how == "count") SendRaw(Changed(12, 1));
  if (how == "empty") SendRaw({});
  if (how == "empty-with-files") SendRaw({}, {0, 1});
  if (how == "short") SendRaw({1, 2, 3});
  if (how == "long") SendRaw(std::vector<uint8_t>(kMostWorkerPacketBytes + 1));
  if (how == "no-file") channel.Send({kAnswer});
  if (how == "one-file") channel.Send(WithMemory(10));
  if (how == "two-files") {
    WorkerMessage message = WithMemory(10);
    message.files.push_back(WorkerMemoryOf(std::vector<uint8_t>(10)));
    channel.Send(message);
  }
  if (how == "many-files") {
    SendRaw(PackWorkerMessage({kAnswer}), std::vector<int>(kMostWorkerFiles + 3, 0));
  }
  if (how == "secret-files") SendRaw(PackWorkerMessage({kAnswer}), {0, 1});
  if (how == "memory-small") channel.Send(WithMemory(9));
  if (how == "memory-large") channel.Send(WithMemory(11));
  if (how == "memory-no-memory") {
    WorkerMessage message{kAnswer};
    message.files.push_back(OpenAt(AT_FDCWD, "/dev/zero", O_RDONLY));
    channel.Send(message);
  }
  if (how == "memory-unsealable") {
    WorkerMessage message{kAnswer};
    message.files.emplace_back(memfd_create("x", MFD_CLOEXEC));
    if (ftruncate(message.files[0].Handle(), 10) != 0) _exit(1);
    channel.Send(message);
  }
  if (how == "memory-mapped") {
    const WorkerMessage message = WithMemory(10);
    mmap(nullptr, 10, PROT_READ | PROT_WRITE, MAP_SHARED, message.files[0].Handle(), 0);
    channel.Send(message);
  }
  if (how == "error-class") {
    FieldWriter writer;
    writer.U32(1000);
    writer.I32(0);
    writer.Text("why");
    channel.Send({kWorkerFailed, writer.Take()});
  }
  if (how == "error-text") {
    FieldWriter writer;
    writer.Enum(WorkerErrorClass::format);
    writer.I32(0);
    writer.ByteText("\xFF\xFE");
    channel.Send({kWorkerFailed, writer.Take()});
  }
  if (how == "error-controls") {
    FieldWriter writer;
    writer.Enum(WorkerErrorClass::format);
    writer.I32(0);
    writer.Text("a\033[2Jb\n");
    channel.Send({kWorkerFailed, writer.Take()});
  }
  if (how == "error-range") channel.Send(FailedMessage({WorkerErrorClass::range, 0, "too far"}));
  if (how == "error-memory") channel.Send(FailedMessage({WorkerErrorClass::outOfMemory, 0, ""}));
  if (how == "error-bad-alloc") {
    channel.Send(FailedMessage(std::make_exception_ptr(std::bad_alloc())));
  }
  if (how == "send-socket") {
    static bool isSent = false;
    if (isSent) _exit(1);
    SendRaw(PackWorkerMessage({kAnswer, {}, OneFile()}), {3});
    isSent = true;
  }
  if (how == "chatty") {
    channel.Send({kAnswer, {1, 2, 3}});
    channel.Send({kAnswer, {9, 9, 9}});
  }
}

}  // namespace

int main(int, char** arguments) {
  const std::string name = arguments[0];
  const std::string how = name.substr(name.rfind('/') + 1);
  const WorkerChannel channel{SystemFile(3)};
  if (how == "start-exit") return 0;
  if (how == "start-noise") {
    SendRaw({1, 2, 3});
    Pause();
  }
  if (how == "start-failed") {
    channel.Send(FailedMessage({WorkerErrorClass::unsupported, 0, "not installed"}));
    return 1;
  }
  while (const auto request = channel.Receive()) {
    if (request->kind == kWorkerSetup) {
      if (how == "ready-lies") SendRaw(PackWorkerMessage({kWorkerReady, {255, 255, 255, 255, 7}}));
      if (how == "ready-late" && IsAskedTooEarly(channel)) return 1;
      if (how == "closed") shutdown(channel.Handle(), SHUT_RD);
      channel.Send(ReadyMessage({0, how != "ready-unfiltered"}));
    } else {
      AnswerBadly(how, channel);
    }
  }
  // Lives on: only the failed request tells the host.
  if (how == "closed") Pause();
}
