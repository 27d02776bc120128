#include "ui/qt/plain_text_box.h"

#include <QFontDatabase>
#include <QResizeEvent>
#include <QTextCursor>
#include <QTextDocument>
#include <cmath>

namespace quorvel {

PlainTextBox::PlainTextBox(QWidget* parent) : QPlainTextEdit(parent) {
  setReadOnly(true);
  setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  setUndoRedoEnabled(false);
  setLineWrapMode(NoWrap);
  setTabChangesFocus(true);
  setAcceptDrops(false);
  setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
}

void PlainTextBox::setBytes(std::string_view text) {
  const std::string kept(text);  // text may be a view of our own bytes
  m_bytes.clear();
  m_lines.restart();
  clear();
  QTextCursor caret = textCursor();
  caret.setKeepPositionOnInsert(true);  // else text added at the caret would push it to the end
  setTextCursor(caret);
  appendBytes(kept);
}

void PlainTextBox::appendBytes(std::string_view text) {
  m_bytes += text;
  QTextCursor end(document());
  constexpr std::size_t kPiece = 64 * 1024;
  while (!text.empty()) {
    end.movePosition(QTextCursor::End);
    end.insertText(m_lines.next(text.substr(0, kPiece)));
    text.remove_prefix(std::min(kPiece, text.size()));
  }
}

int PlainTextBox::heightForLines(int lines) const {
  const double margins = 2 * (document()->documentMargin() + frameWidth());
  return static_cast<int>(std::ceil(lines * fontMetrics().lineSpacing() + margins));
}

void PlainTextBox::resizeEvent(QResizeEvent* event) {
  // Without wrapping no line depends on the width; told of a new one, the base class would lay out a million lines.
  const QSize oldSize(event->size().width(), event->oldSize().height());
  QResizeEvent sameWidth(event->size(), oldSize);
  QPlainTextEdit::resizeEvent(&sameWidth);
}

}  // namespace quorvel
