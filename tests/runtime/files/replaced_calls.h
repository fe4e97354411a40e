#pragma once

#include <cerrno>
#include <csignal>
#include <tuple>
#include <type_traits>

#include <sys/types.h>

#include <rasterkit/runtime/files/file_calls.h>
#include <rasterkit/runtime/files/temporary_names.h>

/// System calls of saving that fail on request.
namespace rasterkit::test {

/// Keeps the table of calls and puts it back.
class CallsGuard {
 public:
  CallsGuard() : calls_(detail::Calls()) {}
  ~CallsGuard() { detail::Calls() = calls_; }
  CallsGuard(const CallsGuard&) = delete;
  CallsGuard& operator=(const CallsGuard&) = delete;

  const detail::FileCalls& Before() const { return calls_; }

 private:
  const detail::FileCalls calls_;
};

/// Lets every write fail as on a full disk, until the table is put back.
inline void FillDisk() {
  detail::Calls().write = [](int, const void*, size_t) -> ssize_t {
    errno = ENOSPC;
    return -1;
  };
  detail::Calls().writeAt = [](int, const void*, size_t, off_t) -> ssize_t {
    errno = ENOSPC;
    return -1;
  };
}

template <auto Member>
struct CountedCall;

template <auto A, auto B>
constexpr bool kIs =
    std::is_same_v<std::integral_constant<decltype(A), A>, std::integral_constant<decltype(B), B>>;

/// Counts the calls of a process and lets one of them fail, or ends the process there. The calls go
/// to the table that was in use when the object was made.
class CountedCalls {
 public:
  CountedCalls() {
    base_ = guard_.Before();
    count_ = 0;
    failing_ = killing_ = 0;
    hasFailed_ = failedWithName_ = hasName_ = false;
    Install<&detail::FileCalls::openAt, &detail::FileCalls::duplicate, &detail::FileCalls::close,
            &detail::FileCalls::readPieces, &detail::FileCalls::readPiecesAt,
            &detail::FileCalls::write, &detail::FileCalls::writeAt, &detail::FileCalls::status,
            &detail::FileCalls::statusAt, &detail::FileCalls::accessAt,
            &detail::FileCalls::readLinkAt, &detail::FileCalls::linkAt,
            &detail::FileCalls::renameAt, &detail::FileCalls::unlinkAt, &detail::FileCalls::lock,
            &detail::FileCalls::changeMode, &detail::FileCalls::changeOwner,
            &detail::FileCalls::setTimes, &detail::FileCalls::listAttributes,
            &detail::FileCalls::getAttribute, &detail::FileCalls::setAttribute,
            &detail::FileCalls::removeAttribute, &detail::FileCalls::syncData,
            &detail::FileCalls::syncAll, &detail::FileCalls::syncFileSystem,
            &detail::FileCalls::statusOfFileSystem, &detail::FileCalls::awaitWrites>();
  }

  /// The call with this number, counted from 1, fails with `error`.
  void FailAt(int number, int error) {
    failing_ = number;
    error_ = error;
  }

  /// The process ends by SIGKILL before the call with this number, counted from 1.
  void KillAt(int number) { killing_ = number; }

  static int Count() { return count_; }
  static bool HasFailed() { return hasFailed_; }
  /// The call that failed came after a file had its name.
  static bool FailedInTheEnd() { return hasFailed_ && failedWithName_; }

 private:
  template <auto Member>
  friend struct CountedCall;

  template <auto... Members>
  void Install() {
    ((detail::Calls().*Members = CountedCall<Members>::Call), ...);
  }

  /// Returns whether the call that comes now fails.
  static bool Fails() {
    ++count_;
    if (count_ == killing_) raise(SIGKILL);
    if (count_ != failing_) return false;
    hasFailed_ = true;
    failedWithName_ = hasName_;
    return true;
  }

  /// Renames that are done, and links to names that are not temporary, give a file its name.
  template <auto Member, typename Result, typename... Arguments>
  static void Note(Result result, Arguments... arguments) {
    if (result != 0) return;
    if constexpr (kIs<Member, &detail::FileCalls::renameAt>) hasName_ = true;
    if constexpr (kIs<Member, &detail::FileCalls::linkAt>) {
      const char* const name = std::get<3>(std::tuple(arguments...));
      if (!detail::TemporaryName::Matches(name)) hasName_ = true;
    }
  }

  inline static detail::FileCalls base_;
  inline static int count_ = 0, failing_ = 0, error_ = 0, killing_ = 0;
  inline static bool hasFailed_ = false, failedWithName_ = false, hasName_ = false;

  const CallsGuard guard_;
};

template <typename Result, typename... Arguments,
          Result (*detail::FileCalls::*Member)(Arguments...)>
struct CountedCall<Member> {
  static Result Call(Arguments... arguments) {
    if (!CountedCalls::Fails()) {
      const Result result = (CountedCalls::base_.*Member)(arguments...);
      const int error = errno;
      CountedCalls::Note<Member>(result, arguments...);
      errno = error;
      return result;
    }
    // Even if closing fails, the handle is gone.
    if constexpr (kIs<Member, &detail::FileCalls::close>) {
      (CountedCalls::base_.*Member)(arguments...);
    }
    errno = CountedCalls::error_;
    return -1;
  }
};

}  // namespace rasterkit::test
