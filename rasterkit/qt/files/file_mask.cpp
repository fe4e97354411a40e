#include <algorithm>

#include <rasterkit/qt/files/file_mask.h>
#include <rasterkit/qt/files/name_filters.h>
#include <rasterkit/qt/qt_text.h>

namespace rasterkit::detail {
namespace {

bool HasWildcard(const QString& text) {
  return text.contains(u'*') || text.contains(u'?');
}

/// Not Qt's own wildcards: they also support sets in brackets, which are common in file names.
QRegularExpression Expression(const QString& pattern) {
  QString expression;
  for (const QChar character : pattern) {
    if (character == u'*') {
      expression += QStringLiteral(".*");
    } else if (character == u'?') {
      expression += u'.';
    } else {
      expression += QRegularExpression::escape(QString(character));
    }
  }
  return QRegularExpression(QRegularExpression::anchoredPattern(expression),
                            QRegularExpression::CaseInsensitiveOption |
                                QRegularExpression::DotMatchesEverythingOption |
                                QRegularExpression::UseUnicodePropertiesOption);
}

}  // namespace

FileMask::FileMask(const std::string& mask) {
  for (const std::string& piece : SplitPatterns(mask)) {
    const QString pattern = ToQt(piece);
    if (pattern == u"*" || pattern == u"*.*") {
      fitsAll_ = true;
    } else if (pattern.startsWith(u'*') && !HasWildcard(pattern.mid(1))) {
      endings_.push_back(pattern.mid(1));
    } else {
      others_.push_back(Expression(pattern));
    }
  }
}

bool FileMask::Fits(const QString& name) const {
  if (fitsAll_) return true;
  const auto ends = [&](const QString& ending) {
    return name.endsWith(ending, Qt::CaseInsensitive);
  };
  const auto matches = [&](const QRegularExpression& other) {
    return other.match(name).hasMatch();
  };
  return std::any_of(endings_.begin(), endings_.end(), ends) ||
         std::any_of(others_.begin(), others_.end(), matches);
}

}  // namespace rasterkit::detail
