// The program in which untrusted files are read. The library starts it with a socket
// as descriptor 3; rasterkit/runtime/worker/worker_message.h describes the messages.

#include <cstdlib>
#include <exception>
#include <optional>
#include <utility>

#include <unistd.h>

#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/worker/worker_channel.h>
#include <rasterkit/runtime/worker/worker_setup.h>

#include "worker/answers.h"
#include "worker/last_words.h"
#include "worker/sandbox.h"
#include "worker/watch.h"

namespace rasterkit::worker {
namespace {

constexpr int kSocket = 3;

detail::WorkerMessage AnswerOf(detail::WorkerAnswers& answers, detail::WorkerMessage request) {
  try {
    return answers.Answer(std::move(request));
  } catch (...) {
    return detail::FailedMessage(std::current_exception());
  }
}

void AnswerAll(const detail::WorkerChannel& channel, Watch& watch, detail::WorkerAnswers& answers) {
  while (auto request = channel.Receive()) {
    watch.Begin();
    if (!watch.Answer(AnswerOf(answers, std::move(*request)))) return;
  }
}

/// Loads what reads the files and locks the process in.
detail::WorkerAnswers& Prepare(const detail::WorkerChannel& channel) {
  const auto first = channel.Receive();
  if (!first) _exit(EXIT_SUCCESS);
  const detail::WorkerSetup setup = detail::ReadSetup(*first);
  SetDefaultLimits(setup.limits);
  detail::WorkerAnswers& answers = AnswersFor(setup.reader);
  answers.Prepare();
  PrepareLastWords(channel.Handle());
  channel.Send(detail::ReadyMessage(LockIn(setup)));
  return answers;
}

void Run(const detail::WorkerChannel& channel) {
  detail::WorkerAnswers* answers = nullptr;
  try {
    answers = &Prepare(channel);
  } catch (const UnsupportedError& error) {
    channel.Send(detail::FailedMessage({detail::WorkerErrorClass::component, 0, error.Reason()}));
    return;
  } catch (...) {
    channel.Send(detail::FailedMessage(std::current_exception()));
    return;
  }
  Watch watch(channel, *answers);
  watch.Start();
  AnswerAll(channel, watch, *answers);
  // Neither destructors nor exit handlers have anything to save.
  _exit(EXIT_SUCCESS);
}

}  // namespace
}  // namespace rasterkit::worker

int main() {
  using namespace rasterkit;
  const detail::WorkerChannel channel{detail::SystemFile(worker::kSocket)};
  try {
    worker::Run(channel);
  } catch (...) {
    // The host sees the end of the process.
  }
  _exit(EXIT_FAILURE);
}
