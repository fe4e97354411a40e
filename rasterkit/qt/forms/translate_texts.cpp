#include <QComboBox>
#include <QLineEdit>
#include <QTabWidget>
#include <QTextEdit>
#include <QVariant>

#include <rasterkit/qt/controls/navigator.h>
#include <rasterkit/qt/forms/translate_texts.h>
#include <rasterkit/qt/qt_text.h>

namespace rasterkit {
namespace {

/// Properties of Qt's widgets that hold a text for people.
constexpr const char* kTexts[] = {"windowTitle",     "title",          "text",
                                  "prefix",          "suffix",         "specialValueText",
                                  "placeholderText", "toolTip",        "statusTip",
                                  "whatsThis",       "accessibleName", "accessibleDescription"};

/// "&Save && close" without its mnemonic: "Save & close".
QString WithoutMnemonic(const QString& text) {
  QString plain;
  for (qsizetype i = 0; i < text.size(); ++i) {
    if (text[i] == u'&' && ++i == text.size()) break;
    plain += text[i];
  }
  return plain;
}

QString Translate(const QString& text) {
  if (text.isEmpty()) return text;
  QString translated = ResourceText(FromQt(text));
  if (translated != text || !text.contains(u'&')) return translated;
  const QString plain = WithoutMnemonic(text);
  QString translatedPlain = ResourceText(FromQt(plain));
  if (translatedPlain == plain) return text;
  if (plain.contains(u'&')) translatedPlain.replace(u'&', QLatin1String("&&"));
  return translatedPlain;
}

/// Whether the text was typed by the user.
bool HoldsUserText(const QWidget& widget, const char* property) {
  if (qstrcmp(property, "text") != 0) return false;
  return qobject_cast<const QLineEdit*>(&widget) != nullptr ||
         qobject_cast<const QTextEdit*>(&widget) != nullptr;
}

void TranslateProperties(QWidget& widget) {
  for (const char* property : kTexts) {
    if (HoldsUserText(widget, property)) continue;
    const QVariant value = widget.property(property);
    if (value.typeId() != QMetaType::QString) continue;
    const QString text = value.toString();
    const QString translated = Translate(text);
    if (translated != text) widget.setProperty(property, translated);
  }
}

void TranslateEntries(QWidget& widget) {
  if (auto* box = qobject_cast<QComboBox*>(&widget)) {
    for (int i = 0; i < box->count(); ++i) box->setItemText(i, Translate(box->itemText(i)));
  }
  if (auto* tabs = qobject_cast<QTabWidget*>(&widget)) {
    for (int i = 0; i < tabs->count(); ++i) tabs->setTabText(i, Translate(tabs->tabText(i)));
  }
}

/// The buttons of a navigator set their translated texts themselves.
bool IsTranslated(const QWidget& widget) {
  return qobject_cast<const TNavigator*>(widget.parentWidget()) != nullptr;
}

}  // namespace

void TranslateTexts(QWidget& form) {
  TranslateProperties(form);
  TranslateEntries(form);
  for (QWidget* widget : form.findChildren<QWidget*>()) {
    if (IsTranslated(*widget)) continue;
    TranslateProperties(*widget);
    TranslateEntries(*widget);
  }
}

}  // namespace rasterkit
