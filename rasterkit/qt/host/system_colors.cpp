#include <QApplication>
#include <QPalette>
#include <QToolTip>
#include <array>

#include <rasterkit/qt/host/system_colors.h>

namespace rasterkit {
namespace {

using Role = QPalette::ColorRole;

struct Source {
  Role role;
  QPalette::ColorGroup group = QPalette::Active;
};

/// By index. Captions, which Qt does not have, take the colors of a selection; number 25 is unused.
constexpr std::array<Source, 31> kSources{{
    {Role::Button},                         // scroll bar
    {Role::Dark},                           // desktop
    {Role::Highlight},                      // caption
    {Role::Highlight, QPalette::Inactive},  // caption, inactive
    {Role::Button},                         // menu
    {Role::Base},                           // window
    {Role::Shadow},                         // frame of windows
    {Role::ButtonText},                     // text of menus
    {Role::Text},                           // text of windows
    {Role::HighlightedText},                // text of captions
    {Role::Button},                         // border
    {Role::Button, QPalette::Inactive},     // border, inactive
    {Role::Mid},                            // background of workspaces
    {Role::Highlight},
    {Role::HighlightedText},
    {Role::Button},
    {Role::Dark},                                 // shadow of buttons
    {Role::Text, QPalette::Disabled},             // disabled text
    {Role::ButtonText},                           // text of buttons
    {Role::HighlightedText, QPalette::Inactive},  // text of captions, inactive
    {Role::Light},                                // highlight of buttons
    {Role::Shadow},                               // dark shadow
    {Role::Midlight},                             // light edge
    {Role::ToolTipText},
    {Role::ToolTipBase},
    {Role::NoRole},
    {Role::Link},                           // under the mouse
    {Role::Highlight},                      // end of a caption's gradient
    {Role::Highlight, QPalette::Inactive},  // the same, inactive
    {Role::Highlight},                      // chosen entry of menus
    {Role::Button},                         // menu bar
}};

QColor ColorOf(const Source& source) {
  const bool isOfToolTip = source.role == Role::ToolTipText || source.role == Role::ToolTipBase;
  const QPalette palette = isOfToolTip ? QToolTip::palette() : QApplication::palette();
  return palette.color(source.group, source.role);
}

}  // namespace

uint32_t SystemColor(uint32_t index) {
  if (index >= kSources.size() || kSources[index].role == Role::NoRole) return 0;
  const QColor color = ColorOf(kSources[index]);
  return static_cast<uint32_t>(color.red() | color.green() << 8 | color.blue() << 16);
}

}  // namespace rasterkit
