#include <QApplication>
#include <QThread>
#include <functional>
#include <utility>
#include <vector>

#include <rasterkit/qt/files/file_dialogs.h>
#include <rasterkit/qt/files/folder_chooser.h>
#include <rasterkit/qt/forms/language.h>
#include <rasterkit/qt/forms/message_box.h>
#include <rasterkit/qt/host/pdf_page_dialog.h>
#include <rasterkit/qt/host/qt_host.h>
#include <rasterkit/qt/host/queue_runner.h>
#include <rasterkit/qt/host/settings_store.h>
#include <rasterkit/qt/host/system_colors.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/ports.h>

namespace rasterkit {
namespace {

/// One adapter is active, however many hosts there are.
bool isServed = false;

void RequireApplication() {
  if (qobject_cast<QApplication*>(QCoreApplication::instance()) == nullptr) {
    throw Error("dialogs need a QApplication, and there is none");
  }
  if (QThread::currentThread() != QCoreApplication::instance()->thread()) {
    throw Error("dialogs can be opened on the thread of the QApplication only");
  }
}

/// The loop of other threads has no events, so they return at once.
void TurnLoop() {
  if (qApp != nullptr && QThread::currentThread() == qApp->thread()) {
    QCoreApplication::processEvents();
  }
}

/// Fills empty ports and clears them at the end.
class FilledPorts {
 public:
  explicit FilledPorts(const std::string& settingsFile) {
    const auto store = std::make_shared<SettingsStore>(settingsFile);
    Fill(&Ports::messagePump, TurnLoop);
    Fill(&Ports::messageBox, ShowMessageBox);
    Fill(&Ports::confirmation, AskYesOrNo);
    Fill(&Ports::folderChooser, ChooseFolder);
    Fill(&Ports::pictureFileDialog,
         [](PictureFileDialog& dialog) { return RunPictureFileDialog(dialog); });
    if (InstalledPdfPageDialog() != nullptr) Fill(&Ports::pdfPageChooser, InstalledPdfPageDialog());
    Fill(&Ports::systemColor, SystemColor);
    Fill(&Ports::readSetting, [store](const std::string& section, const std::string& key) {
      return store->Read(section, key);
    });
    Fill(&Ports::writeSetting,
         [store](const std::string& section, const std::string& key, const std::string& value) {
           store->Write(section, key, value);
         });
  }
  ~FilledPorts() {
    for (const auto& empty : emptying_) empty();
  }
  FilledPorts(const FilledPorts&) = delete;
  FilledPorts& operator=(const FilledPorts&) = delete;

 private:
  template <typename Port, typename Function>
  void Fill(Port Ports::*port, Function function) {
    if (HostPorts().*port) return;
    HostPorts().*port = std::move(function);
    emptying_.emplace_back([port] { HostPorts().*port = nullptr; });
  }

  std::vector<std::function<void()>> emptying_;
};

}  // namespace

PdfPageDialog& InstalledPdfPageDialog() {
  static constinit PdfPageDialog installed = nullptr;
  return installed;
}

struct QtHost::Adapter {
  explicit Adapter(const std::string& settingsFile) : ports(settingsFile) {}

  detail::LanguageOfHost language;
  FilledPorts ports;
  QueueRunner runner;
};

QtHost::QtHost(const std::string& settingsFile) {
  RequireApplication();
  if (isServed) return;
  adapter_ = std::make_unique<Adapter>(settingsFile);
  isServed = true;
}

QtHost::~QtHost() {
  if (adapter_) isServed = false;
}

}  // namespace rasterkit
