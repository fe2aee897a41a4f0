#include "corvanectl/system/Interruption.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <system_error>
#include <vector>

#include "corvanectl/system/ChildProcess.h"

namespace corvane::ctl {

namespace {

/// A signal handler is handed nothing but the signal, so it has to find its pipe here.
std::atomic<int> signalPipe{-1};

void reportSignal(int signal) {
  const int formerError = errno;
  const auto byte = static_cast<unsigned char>(signal);
  // A full pipe already holds a signal that will end the wait.
  [[maybe_unused]] const ssize_t written = ::write(signalPipe.load(), &byte, 1);
  errno = formerError;
}

int pollTimeout(Deadline deadline) {
  if (deadline == never) return -1;
  const auto left =
      std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
  return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, INT_MAX));
}

}  // namespace

Interruption::Interruption() {
  Pipe pipe = makePipe();
  readEnd = std::move(pipe.readEnd);
  writeEnd = std::move(pipe.writeEnd);
  setNonBlocking(writeEnd);
  signalPipe = writeEnd.get();

  struct sigaction action{};
  sigemptyset(&action.sa_mask);
  action.sa_handler = SIG_IGN;
  ::sigaction(SIGPIPE, &action, &formerPipeAction);
  action.sa_handler = reportSignal;
  for (std::size_t i = 0; i < watchedSignals.size(); ++i) {
    ::sigaction(watchedSignals[i], nullptr, &formerActions[i]);
    // A program started in the background or under nohup is meant not to hear of it.
    if (formerActions[i].sa_handler != SIG_IGN) ::sigaction(watchedSignals[i], &action, nullptr);
  }
}

Interruption::~Interruption() {
  for (std::size_t i = 0; i < watchedSignals.size(); ++i) {
    ::sigaction(watchedSignals[i], &formerActions[i], nullptr);
  }
  ::sigaction(SIGPIPE, &formerPipeAction, nullptr);
  signalPipe = -1;
}

bool Interruption::wait(std::span<pollfd> files, Deadline deadline) {
  std::vector<pollfd> watched(files.begin(), files.end());
  watched.push_back({readEnd.get(), POLLIN, 0});
  while (true) {
    const int ready =
        ::poll(watched.data(), static_cast<nfds_t>(watched.size()), pollTimeout(deadline));
    if (ready < 0 && errno == EINTR) continue;
    if (ready < 0) throw std::system_error(errno, std::generic_category(), "could not wait");
    if (watched.back().revents != 0) {
      unsigned char signal = 0;
      [[maybe_unused]] const ssize_t count = ::read(readEnd.get(), &signal, 1);
      interrupted = true;
      throw Interrupted{signal};
    }
    if (ready > 0) {
      std::copy_n(watched.begin(), files.size(), files.begin());
      return true;
    }
    if (hasPassed(deadline)) return false;
  }
}

}  // namespace corvane::ctl
