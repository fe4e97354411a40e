#include <QCollator>
#include <QFile>
#include <QLocale>
#include <algorithm>
#include <chrono>
#include <exception>
#include <filesystem>
#include <numeric>
#include <system_error>

#include <rasterkit/qt/files/folder_content.h>
#include <rasterkit/qt/qt_text.h>
#include <rasterkit/runtime/files/file_name.h>

namespace rasterkit::detail {
namespace {

qint64 MillisecondsSince1970(std::filesystem::file_time_type time) {
  const auto system = std::filesystem::file_time_type::clock::to_sys(time);
  return std::chrono::duration_cast<std::chrono::milliseconds>(system.time_since_epoch()).count();
}

// Not with QFileInfo, whose time zone conversion takes most of the time.
FolderEntry Describe(const std::filesystem::directory_entry& file, QString name) {
  std::error_code error;
  FolderEntry entry;
  entry.name = std::move(name);
  entry.isFolder = file.is_directory(error);
  const auto size = entry.isFolder ? 0 : file.file_size(error);
  if (!error) entry.size = static_cast<qint64>(size);
  const auto time = file.last_write_time(error);
  if (!error) entry.time = MillisecondsSince1970(time);
  return entry;
}

/// Returns the user's locale; English if that is the C locale, which sorts by bytes.
QLocale LocaleOfNames() {
  const QLocale locale = QLocale().collation();
  return locale.language() == QLocale::C ? QLocale(QLocale::English) : locale;
}

void SortByName(std::vector<FolderEntry>& entries) {
  QCollator collator(LocaleOfNames());
  collator.setNumericMode(true);
  collator.setCaseSensitivity(Qt::CaseInsensitive);
  std::vector<QCollatorSortKey> keys;
  keys.reserve(entries.size());
  for (const FolderEntry& entry : entries) keys.push_back(collator.sortKey(entry.name));
  std::vector<size_t> order(entries.size());
  std::iota(order.begin(), order.end(), size_t{0});
  std::sort(order.begin(), order.end(), [&](size_t a, size_t b) {
    const int difference = keys[a].compare(keys[b]);
    return difference != 0 ? difference < 0 : entries[a].name < entries[b].name;
  });
  std::vector<FolderEntry> sorted;
  sorted.reserve(entries.size());
  for (const size_t index : order) sorted.push_back(std::move(entries[index]));
  entries = std::move(sorted);
}

FolderContent Failed(const std::error_code& error) {
  FolderContent content;
  const bool isGone = error == std::errc::no_such_file_or_directory;
  content.state = isGone ? FolderState::isGone : FolderState::isUnreadable;
  content.reason = QString::fromLocal8Bit(error.message().c_str());
  return content;
}

FolderContent Read(const std::string& directory, const std::atomic<bool>& isCanceled) {
  FolderContent content;
  std::error_code error;
  std::filesystem::directory_iterator entry(ToPath(directory), error);
  for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
    if (isCanceled) return content;
    QString name = QFile::decodeName(entry->path().filename().c_str());
    if (name.startsWith(u'.')) continue;
    content.entries.push_back(Describe(*entry, std::move(name)));
  }
  if (error) return Failed(error);
  SortByName(content.entries);
  content.state = FolderState::isRead;
  return content;
}

}  // namespace

FolderContent ReadFolder(const std::string& directory, const std::atomic<bool>& isCanceled) {
  try {
    return Read(directory, isCanceled);
  } catch (const std::exception& exception) {
    // A large folder may exceed the memory.
    FolderContent content;
    content.state = FolderState::isUnreadable;
    content.reason = QString::fromLocal8Bit(exception.what());
    return content;
  }
}

}  // namespace rasterkit::detail
