// What a folder of 50,000 files costs the file list: until it is read and painted (the goal is a
// second), and how long the window is busy with what a user does then.
#include <QApplication>
#include <QKeyEvent>
#include <QTemporaryDir>
#include <QTreeView>
#include <fstream>
#include <memory>

#include <benchmark/benchmark.h>

#include <rasterkit/qt/files/file_list.h>

namespace {

using rasterkit::TFileListView;

constexpr int kFiles = 50000;

/// The folder goes with the application, which goes with the process's end only.
struct Stage {
  Stage() {
    for (int i = 0; i < kFiles; ++i) {
      std::ofstream(folder.path().toStdString() + "/plan " + std::to_string(i) +
                    (i % 2 == 0 ? ".png" : ".bmp"))
          << i;
    }
  }

  int count = 1;
  char name[16] = "file_list_bench";
  char* arguments[2] = {name, nullptr};
  const bool isOffscreen = qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application{count, arguments};
  QTemporaryDir folder;
};

std::string Folder() {
  static Stage stage;
  return stage.folder.path().toStdString();
}

void Fill(TFileListView& list) {
  list.SetDirectory(Folder());
  while (!list.IsFilled()) QApplication::processEvents(QEventLoop::WaitForMoreEvents);
  QApplication::processEvents();
}

/// A list that is seen and filled.
std::unique_ptr<TFileListView> FilledList() {
  Folder();
  auto list = std::make_unique<TFileListView>();
  list->resize(640, 440);
  list->show();
  Fill(*list);
  return list;
}

void BM_Fill(benchmark::State& state) {
  const auto list = FilledList();
  for (auto _ : state) Fill(*list);
}

void Press(QWidget& widget, int key) {
  QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
  QApplication::sendEvent(&widget, &press);
}

/// A page down and up again, painted.
void BM_Page(benchmark::State& state) {
  const auto list = FilledList();
  auto& report = *list->findChild<QTreeView*>("FileListReport");
  Press(report, Qt::Key_Home);
  for (auto _ : state) {
    for (const int key : {Qt::Key_PageDown, Qt::Key_PageUp}) {
      Press(report, key);
      QApplication::processEvents();
    }
  }
}

/// By size and by name again.
void BM_Sort(benchmark::State& state) {
  const auto list = FilledList();
  auto& report = *list->findChild<QTreeView*>("FileListReport");
  for (auto _ : state) {
    for (const int column : {1, 0}) {
      report.sortByColumn(column, Qt::AscendingOrder);
      QApplication::processEvents();
    }
  }
}

void BM_Filter(benchmark::State& state) {
  const auto list = FilledList();
  for (auto _ : state) {
    for (const char* mask : {"*.png;*.tif;*.tiff", "*.*"}) {
      list->SetMask(mask);
      QApplication::processEvents();
    }
  }
}

void BM_Style(benchmark::State& state) {
  const auto list = FilledList();
  for (auto _ : state) {
    for (const auto style : {rasterkit::vsList, rasterkit::vsReport}) {
      list->SetViewStyle(style);
      QApplication::processEvents();
    }
  }
}

}  // namespace

BENCHMARK(BM_Fill)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();
BENCHMARK(BM_Page)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Sort)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Filter)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Style)->Unit(benchmark::kMillisecond);
