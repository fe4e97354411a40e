#include <QAbstractButton>
#include <QPushButton>
#include <optional>
#include <string_view>

#include <rasterkit/dialogs/editor/window/editor_questions.h>
#include <rasterkit/qt/forms/message_box.h>
#include <rasterkit/qt/forms/modal_window.h>
#include <rasterkit/qt/look/clear_style.h>
#include <rasterkit/qt/qt_text.h>

namespace rasterkit {
namespace {

/// The words on the buttons; an empty one has none.
struct Answers {
  std::string_view yes, no, cancel;
  QMessageBox::StandardButton preset;
};

/// The preset answer is one that loses nothing.
Answers AnswersTo(EditorQuestion question) {
  switch (question) {
    case EditorQuestion::loseWork:
      return {rsSavingSave, rsEditorAnswerDiscard, rsEditorAnswerCancel, QMessageBox::Yes};
    case EditorQuestion::takeUpJournal:
      return {rsEditorAnswerTakeUp, rsEditorAnswerDiscard, rsEditorAnswerCancel, QMessageBox::Yes};
    case EditorQuestion::replaceFile:
    case EditorQuestion::fileChanged:
      break;
  }
  return {rsEditorAnswerReplace, {}, rsEditorAnswerCancel, QMessageBox::Cancel};
}

void NameButton(QMessageBox& box, QMessageBox::StandardButton which, const char* name,
                std::string_view text) {
  QAbstractButton* button = box.button(which);
  button->setText(ResourceText(text));
  button->setObjectName(name);
}

}  // namespace

std::unique_ptr<QMessageBox> MakeEditorQuestion(EditorQuestion question, const QString& text) {
  std::unique_ptr<QMessageBox> box = MakeQuestionBox(text);
  const Answers answers = AnswersTo(question);
  const auto no = answers.no.empty() ? QMessageBox::NoButton : QMessageBox::No;
  box->setStandardButtons(QMessageBox::Yes | no | QMessageBox::Cancel);
  NameButton(*box, QMessageBox::Yes, "ButtonYes", answers.yes);
  if (!answers.no.empty()) NameButton(*box, QMessageBox::No, "ButtonNo", answers.no);
  NameButton(*box, QMessageBox::Cancel, "ButtonCancel", answers.cancel);
  box->setDefaultButton(answers.preset);
  box->setEscapeButton(QMessageBox::Cancel);
  detail::UseClearStyle(*box);
  return box;
}

EditorAnswer AskEditorQuestion(EditorQuestion question, const QString& text) {
  const std::unique_ptr<QMessageBox> box = MakeEditorQuestion(question, text);
  PutOverActiveWindow(*box);
  switch (box->exec()) {
    case QMessageBox::Yes:
      return EditorAnswer::yes;
    case QMessageBox::No:
      return EditorAnswer::no;
    default:
      return EditorAnswer::cancel;
  }
}

}  // namespace rasterkit
