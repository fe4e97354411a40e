#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <ctime>
#include <string_view>

#include <unistd.h>

#include <rasterkit/runtime/files/temporary_names.h>

namespace rasterkit {
namespace {

constexpr std::string_view kPrefix = ".rk", kSuffix = ".tmp";
constexpr size_t kMostDigits = 20;
constexpr size_t kSlots = 512;

/// Folder handle + 1 and number of each name in use; 0 is free. A signal handler reads it, so it
/// has no lock.
std::array<std::atomic<uint64_t>, kSlots> slots;
static_assert(std::atomic<uint64_t>::is_always_lock_free,
              "signal handlers must not wait for a lock");

std::atomic<bool> areRemoved = false;
/// The number of NameChange objects.
std::atomic<int> changes = 0;

/// Text without memory from the heap, which a signal handler must not take.
class NameText {
 public:
  explicit NameText(uint32_t number) {
    Append(kPrefix);
    AppendNumber(static_cast<uint64_t>(getpid()));
    Append("-");
    AppendNumber(number);
    Append(kSuffix);
  }

  const char* Text() const { return text_.data(); }

 private:
  void Append(std::string_view text) {
    for (const char letter : text) text_[size_++] = letter;
  }
  void AppendNumber(uint64_t number) {
    std::array<char, kMostDigits> digits;
    size_t count = 0;
    do {
      digits[count++] = static_cast<char>('0' + number % 10);
      number /= 10;
    } while (number > 0);
    while (count > 0) text_[size_++] = digits[--count];
  }

  std::array<char, kPrefix.size() + kSuffix.size() + 2 * kMostDigits + 2> text_ = {};
  size_t size_ = 0;
};

/// A file system that does not answer must not keep the program from ending.
void AwaitChanges() {
  constexpr int kMostWaits = 100;
  for (int i = 0; i < kMostWaits && changes > 0; ++i) {
    constexpr timespec kMillisecond = {0, 1'000'000};
    nanosleep(&kMillisecond, nullptr);
  }
}

size_t DigitsIn(std::string_view text) {
  const size_t end = text.find_first_not_of("0123456789");
  return end == std::string_view::npos ? text.size() : end;
}

}  // namespace

void RemoveTemporaryFiles() noexcept {
  const int error = errno;
  areRemoved = true;
  AwaitChanges();
  for (const auto& slot : slots) {
    const uint64_t value = slot;
    if (value == 0) continue;
    const NameText name(static_cast<uint32_t>(value));
    unlinkat(static_cast<int>(value >> 32) - 1, name.Text(), 0);
  }
  errno = error;
}

namespace detail {

TemporaryName::TemporaryName(int folder) {
  static std::atomic<uint32_t> count = 0;
  const uint32_t number = count++;
  text_ = NameText(number).Text();
  const uint64_t value = (static_cast<uint64_t>(folder) + 1) << 32 | number;
  for (size_t i = 0; i < kSlots && !slot_; ++i) {
    uint64_t isFree = 0;
    if (slots[i].compare_exchange_strong(isFree, value)) slot_ = i;
  }
}

TemporaryName::~TemporaryName() {
  if (slot_) slots[*slot_] = 0;
}

bool TemporaryName::AreRemoved() {
  return areRemoved;
}

bool TemporaryName::Matches(const std::string& name) {
  std::string_view rest = name;
  if (!rest.starts_with(kPrefix) || !rest.ends_with(kSuffix)) return false;
  rest = rest.substr(kPrefix.size(), rest.size() - kPrefix.size() - kSuffix.size());
  const size_t process = DigitsIn(rest);
  if (process == 0 || process == rest.size() || rest[process] != '-') return false;
  rest.remove_prefix(process + 1);
  return !rest.empty() && DigitsIn(rest) == rest.size();
}

NameChange::NameChange() {
  sigset_t all;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &signals_);
  ++changes;
}

NameChange::~NameChange() {
  const int error = errno;
  --changes;
  pthread_sigmask(SIG_SETMASK, &signals_, nullptr);
  errno = error;
}

}  // namespace detail
}  // namespace rasterkit
