#include "tests/dialogs/gallery/pseudo_language.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QRegularExpression>
#include <QTabBar>

#include <rasterkit/qt/qt_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit::test {
namespace {

using Script = PseudoLanguage::Script;

constexpr std::u16string_view kPlain = u"AaBbCcDdEeFfGgHhIiJjKkLlMmNnOoPpQqRrSsTtUuVvWwXxYyZz",
                              kAccented = u"ÅåƁƀÇçĐðÉéƑƒĜĝĤĥÎîĴĵĶķĻļṀṁÑñÖöÞþǪǫŔŕŠšŢţÛûṼṽŴŵẊẋÝýŽž";
/// Two letters of the alphabet for each of this one.
constexpr std::u16string_view kRightToLeft = u"אבגדהוזחטיכלמנסעפצקרשתםןףך";

static_assert(kAccented.size() == kPlain.size() && 2 * kRightToLeft.size() == kPlain.size());

QChar Letter(QChar c, Script script) {
  const size_t place = kPlain.find(c.unicode());
  if (place == kPlain.npos) return c;
  return script == Script::accented ? kAccented[place] : kRightToLeft[place / 2];
}

/// The letters of "%d" and "%s" do not count.
QString WithOtherLetters(const QString& text, Script script) {
  QString other;
  for (qsizetype i = 0; i < text.size(); ++i) {
    const bool isPlace = i > 0 && text[i - 1] == u'%';
    other += isPlace ? text[i] : Letter(text[i], script);
  }
  return other;
}

QString Longer(const QString& text, Script script) {
  const auto more = (text.size() * 2 + 4) / 5;
  const QChar letter = Letter(u'n', script);
  QString added;
  // Words, as a long one could not be broken into lines.
  for (qsizetype i = 0; i < more; ++i) added += i % 8 == 0 ? QChar(u' ') : letter;
  return text + added;
}

/// What is left of a text that is not in the pseudo language.
QString Foreign(QString text) {
  // Keys as in "Shows help (F1)"; kinds and names of files in front of a caption; no text of ours.
  static const QRegularExpression translated("«[^«»]*»"), key(R"( ?\([^)]*\)$)"),
      kind("^(BMP|JPG|PNG|TIF) "), file(R"(^[\w ]+\.\w{3} - )");
  if (text == QGuiApplication::applicationDisplayName()) return {};
  text.remove(u'&').remove(file).remove(kind);
  // A translated text may hold another one.
  while (text.contains(translated)) text.remove(translated);
  text.remove(key);
  const bool hasLetters =
      std::any_of(text.cbegin(), text.cend(), [](QChar c) { return c.isLetter(); });
  return hasLetters ? text : QString();
}

class Finder {
 public:
  void Look(const QWidget& widget) {
    // A message may come from an exception; a question is a text of the library.
    const bool isQuestion = widget.window()->objectName() == "QuestionBox";
    if (widget.objectName().startsWith("qt_") && !isQuestion) return;
    name_ = widget.objectName().isEmpty() ? QString(widget.metaObject()->className())
                                          : widget.objectName();
    if (widget.isWindow()) Check(widget.windowTitle());
    Check(widget.toolTip());
    Check(widget.whatsThis());
    Check(widget.accessibleName());
    Check(widget.accessibleDescription());
    LookAtReader(widget);
    LookAtText(widget);
    LookAtEntries(widget);
    for (const QAction* action : widget.actions()) Check(action->text());
  }

  std::vector<std::string> faults;

 private:
  void Check(const QString& text) {
    const QString foreign = Foreign(text);
    if (!foreign.isEmpty()) faults.push_back((name_ + ": " + text).toStdString());
  }
  void LookAtReader(const QWidget& widget) {
    auto* reader = QAccessible::queryAccessibleInterface(const_cast<QWidget*>(&widget));
    if (reader == nullptr) return;
    Check(reader->text(QAccessible::Name));
    Check(reader->text(QAccessible::Description));
  }
  void LookAtText(const QWidget& widget) {
    if (const auto* label = qobject_cast<const QLabel*>(&widget)) Check(label->text());
    if (const auto* button = qobject_cast<const QAbstractButton*>(&widget)) Check(button->text());
    if (const auto* group = qobject_cast<const QGroupBox*>(&widget)) Check(group->title());
    Check(widget.property("placeholderText").toString());
    Check(widget.property("prefix").toString());
    Check(widget.property("suffix").toString());
    Check(widget.property("specialValueText").toString());
  }
  void LookAtEntries(const QWidget& widget) {
    if (const auto* box = qobject_cast<const QComboBox*>(&widget))
      for (int i = 0; i < box->count(); ++i) Check(box->itemText(i));
    if (const auto* tabs = qobject_cast<const QTabBar*>(&widget))
      for (int i = 0; i < tabs->count(); ++i) Check(tabs->tabText(i));
    const auto* view = qobject_cast<const QAbstractItemView*>(&widget);
    if (view == nullptr || view->model() == nullptr) return;
    for (int i = 0; i < view->model()->columnCount(); ++i)
      Check(view->model()->headerData(i, Qt::Horizontal).toString());
  }

  QString name_;
};

}  // namespace

std::string PseudoLanguage::Translated(std::string_view key, Script script) {
  const QString text = ToQt(std::string(key));
  const bool hasLetters =
      std::any_of(text.cbegin(), text.cend(), [](QChar c) { return c.isLetter(); });
  if (!hasLetters) return std::string(key);
  return FromQt(u'«' + Longer(WithOtherLetters(text, script), script) + u'»');
}

PseudoLanguage::PseudoLanguage(Script script) {
  SetTranslator([script](std::string_view key) { return Translated(key, script); });
  if (script == Script::rightToLeft) QApplication::setLayoutDirection(Qt::RightToLeft);
}

PseudoLanguage::~PseudoLanguage() {
  SetTranslator({});
  QApplication::setLayoutDirection(Qt::LeftToRight);
}

std::vector<std::string> UntranslatedTexts(const QWidget& form) {
  Finder finder;
  finder.Look(form);
  for (const QWidget* widget : form.findChildren<QWidget*>()) finder.Look(*widget);
  return finder.faults;
}

}  // namespace rasterkit::test
