#include "ui/qt/shown_lines.h"

#include "ui/qt/text.h"

namespace quorvel {

QString ShownLines::next(std::string_view piece) {
  const QString text = toQString(piece);
  QString shown;
  shown.reserve(text.size() + 1);
  for (const QChar c : text) {
    if (m_hasPendingReturn) add(shown, u'\n');
    const bool endsPair = m_hasPendingReturn && c == u'\n';
    m_hasPendingReturn = c == u'\r';
    if (!endsPair && !m_hasPendingReturn) add(shown, c);
  }
  return shown;
}

void ShownLines::restart() {
  *this = ShownLines();
}

void ShownLines::add(QString& shown, QChar c) {
  if (c == u'\n') {
    m_lineLength = 0;
  } else if (++m_lineLength > kLongestLine) {
    shown += u'\n';
    m_lineLength = 1;
  }
  shown += c;
}

}  // namespace quorvel
