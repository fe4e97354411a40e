#include <QPlainTextEdit>
#include <QVBoxLayout>

#include <rasterkit/dialogs/editor/window/editor_documentation.h>
#include <rasterkit/qt/controls/navigator.h>
#include <rasterkit/qt/qt_text.h>

namespace rasterkit {

std::unique_ptr<TScaledForm> MakeEditorHelp(const QString& keys, QWidget* parent) {
  auto help = std::make_unique<TScaledForm>(parent);
  help->setObjectName("FormEditorHelp");
  help->setWindowTitle(ResourceText(rsHelp));
  auto* column = new QVBoxLayout(help.get());
  auto* text = new QPlainTextEdit(help.get());
  text->setObjectName("TextHelp");
  text->setAccessibleName(ResourceText(rsEditorHelpOf));
  text->setToolTip(ResourceText(rsEditorHelpOf));
  text->setReadOnly(true);
  // The Tab key leaves the text.
  text->setTabChangesFocus(true);
  text->setPlainText(ResourceText(rsEditorHelpText) + QStringLiteral("\n\n") +
                     ResourceText(rsEditorHelpKeys) + u'\n' + keys);
  column->addWidget(text, 1);
  auto* navigator = new TNavigator(help.get());
  navigator->setObjectName("NaviResult");
  navigator->Button(nbCancel).hide();
  column->addWidget(navigator);
  QObject::connect(navigator, &TNavigator::postClicked, help.get(), &QDialog::accept);
  constexpr int kColumns = 70, kLines = 24;
  const QFontMetrics metrics(help->font());
  help->resize(kColumns * metrics.averageCharWidth(), kLines * metrics.height());
  return help;
}

}  // namespace rasterkit
