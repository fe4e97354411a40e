#include <QApplication>
#include <QStyle>

#include <rasterkit/qt/look/clear_style.h>
#include <rasterkit/qt/look/style.h>

namespace rasterkit {
namespace {

struct Colors {
  QColor window, base, alternate, button, text, disabled, hint, link, selection, selectedText, tip;
};

QPalette MakePalette(const Colors& colors) {
  QPalette palette(colors.button, colors.window);
  palette.setColor(QPalette::WindowText, colors.text);
  palette.setColor(QPalette::Base, colors.base);
  palette.setColor(QPalette::AlternateBase, colors.alternate);
  palette.setColor(QPalette::Text, colors.text);
  palette.setColor(QPalette::ButtonText, colors.text);
  palette.setColor(QPalette::BrightText, Qt::red);
  palette.setColor(QPalette::ToolTipBase, colors.tip);
  palette.setColor(QPalette::ToolTipText, colors.text);
  palette.setColor(QPalette::PlaceholderText, colors.hint);
  palette.setColor(QPalette::Link, colors.link);
  palette.setColor(QPalette::Highlight, colors.selection);
  palette.setColor(QPalette::HighlightedText, colors.selectedText);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(QPalette::Disabled, role, colors.disabled);
  }
  palette.setColor(QPalette::Disabled, QPalette::Highlight, colors.disabled);
  return palette;
}

}  // namespace

bool IsDark(const QPalette& palette) {
  return palette.color(QPalette::WindowText).lightness() >
         palette.color(QPalette::Window).lightness();
}

QPalette LightPalette() {
  return MakePalette({.window = "#f0f0f0",
                      .base = "#ffffff",
                      .alternate = "#f6f6f6",
                      .button = "#e6e6e6",
                      .text = "#1b1b1b",
                      .disabled = "#8c8c8c",
                      .hint = "#666666",
                      .link = "#0a58b0",
                      .selection = "#1f66b5",
                      .selectedText = "#ffffff",
                      .tip = "#fffbe0"});
}

QPalette DarkPalette() {
  return MakePalette({.window = "#2b2b2b",
                      .base = "#1e1e1e",
                      .alternate = "#262626",
                      .button = "#3a3a3a",
                      .text = "#e8e8e8",
                      .disabled = "#808080",
                      .hint = "#a0a0a0",
                      .link = "#78b4f5",
                      .selection = "#2f6fb8",
                      .selectedText = "#ffffff",
                      .tip = "#3f3f3f"});
}

void UsePalette(const QPalette& palette) {
  // The application owns its style.
  if (QApplication::style()->name() == u"fusion") {
    QApplication::setStyle(detail::NewClearStyle().release());
  }
  QApplication::setPalette(palette);
}

}  // namespace rasterkit
