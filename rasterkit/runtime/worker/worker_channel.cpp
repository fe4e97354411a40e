#include <array>
#include <cerrno>
#include <cstring>

#include <sys/socket.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/worker/fields.h>
#include <rasterkit/runtime/worker/worker_channel.h>

namespace rasterkit::detail {
namespace {

constexpr size_t kControlBytes = CMSG_SPACE(kMostWorkerFiles * sizeof(int));

struct Control {
  alignas(cmsghdr) std::array<char, kControlBytes> bytes{};
};

void PutFiles(const WorkerMessage& message, Control& control, msghdr& header) {
  if (message.files.empty()) return;
  std::array<int, kMostWorkerFiles> handles{};
  for (size_t i = 0; i < message.files.size(); ++i) handles[i] = message.files[i].Handle();
  const size_t bytes = message.files.size() * sizeof(int);
  header.msg_control = control.bytes.data();
  header.msg_controllen = CMSG_SPACE(bytes);
  cmsghdr* const part = CMSG_FIRSTHDR(&header);
  part->cmsg_level = SOL_SOCKET;
  part->cmsg_type = SCM_RIGHTS;
  part->cmsg_len = CMSG_LEN(bytes);
  std::memcpy(CMSG_DATA(part), handles.data(), bytes);
}

/// Takes over every file that arrived, so that none leaks whatever the rest of the message is.
std::vector<SystemFile> TakeFiles(msghdr& header) {
  std::vector<SystemFile> files;
  files.reserve(kMostWorkerFiles);
  for (cmsghdr* part = CMSG_FIRSTHDR(&header); part != nullptr; part = CMSG_NXTHDR(&header, part)) {
    if (part->cmsg_level != SOL_SOCKET || part->cmsg_type != SCM_RIGHTS) continue;
    const size_t count = (part->cmsg_len - CMSG_LEN(0)) / sizeof(int);
    for (size_t i = 0; i < count; ++i) {
      int handle = -1;
      std::memcpy(&handle, CMSG_DATA(part) + i * sizeof(int), sizeof(int));
      files.emplace_back(handle);
    }
  }
  return files;
}

}  // namespace

std::pair<WorkerChannel, WorkerChannel> WorkerChannel::Pair() {
  std::array<int, 2> ends{-1, -1};
  if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
    throw Error(std::string("a socket cannot be made: ") + std::strerror(errno));
  }
  return {WorkerChannel(SystemFile(ends[0])), WorkerChannel(SystemFile(ends[1]))};
}

bool WorkerChannel::Send(const WorkerMessage& message) const {
  std::vector<uint8_t> packet = PackWorkerMessage(message);
  iovec piece{packet.data(), packet.size()};
  msghdr header{};
  header.msg_iov = &piece;
  header.msg_iovlen = 1;
  Control control;
  PutFiles(message, control, header);
  ssize_t sent = -1;
  do {
    sent = sendmsg(Handle(), &header, MSG_NOSIGNAL | MSG_DONTWAIT);
  } while (sent < 0 && errno == EINTR);
  return sent == static_cast<ssize_t>(packet.size());
}

std::optional<WorkerMessage> WorkerChannel::Receive() const {
  std::vector<uint8_t> packet(kMostWorkerPacketBytes);
  iovec piece{packet.data(), packet.size()};
  msghdr header{};
  header.msg_iov = &piece;
  header.msg_iovlen = 1;
  Control control;
  header.msg_control = control.bytes.data();
  header.msg_controllen = control.bytes.size();
  ssize_t received = -1;
  // An end that was closed before it read everything is told once, before its last messages.
  do {
    received = recvmsg(Handle(), &header, MSG_CMSG_CLOEXEC);
  } while (received < 0 && (errno == EINTR || errno == ECONNRESET));
  if (received < 0) return std::nullopt;
  std::vector<SystemFile> files = TakeFiles(header);
  // A packet without bytes looks like the end of the socket, but can bring files.
  if (received == 0 && files.empty()) return std::nullopt;
  if ((header.msg_flags & MSG_TRUNC) != 0) ThrowBadMessage("it is too long");
  if ((header.msg_flags & MSG_CTRUNC) != 0) ThrowBadMessage("too many files came with it");
  return ParseWorkerMessage(std::span(packet).first(static_cast<size_t>(received)),
                            std::move(files));
}

}  // namespace rasterkit::detail
