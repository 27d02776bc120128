#include "ui/qt/plain_text_box.h"

#include <QFontDatabase>
#include <QResizeEvent>
#include <QScrollBar>
#include <QTextCursor>
#include <QTextDocument>
#include <algorithm>
#include <cmath>

namespace quorvel {

PlainTextBox::PlainTextBox(QWidget* parent) : QPlainTextEdit(parent) {
  setReadOnly(true);
  setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  setUndoRedoEnabled(false);
  setLineWrapMode(NoWrap);
  setTabChangesFocus(true);
  setAcceptDrops(false);
  setCornerWidget(new QWidget(this));  // between the scroll bars: painted by the style, it would stand out
  setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
}

void PlainTextBox::setBytes(std::string_view text) {
  const std::string kept(text);  // text may be a view of our own bytes
  m_bytes = std::string();       // gives the memory of a long text back
  m_lines.restart();
  clear();
  appendBytes(kept);
}

void PlainTextBox::appendBytes(std::string_view text) {
  m_bytes += text;
  const QTextCursor caret = textCursor();
  const bool caretIsAtEnd = std::max(caret.position(), caret.anchor()) == document()->characterCount() - 1;
  const int anchor = caret.anchor();
  const int position = caret.position();
  insertAtEnd(text);
  if (caretIsAtEnd) placeCaret(anchor, position);
}

void PlainTextBox::insertAtEnd(std::string_view text) {
  QTextCursor end(document());
  constexpr std::size_t kPiece = 64 * 1024;
  while (!text.empty()) {
    end.movePosition(QTextCursor::End);
    end.insertText(m_lines.next(text.substr(0, kPiece)));
    text.remove_prefix(std::min(kPiece, text.size()));
  }
}

void PlainTextBox::placeCaret(int anchor, int position) {
  const int row = verticalScrollBar()->value();
  const int column = horizontalScrollBar()->value();
  QTextCursor caret = textCursor();
  caret.setPosition(anchor);
  caret.setPosition(position, QTextCursor::KeepAnchor);
  setTextCursor(caret);  // scrolls to the caret
  verticalScrollBar()->setValue(row);
  horizontalScrollBar()->setValue(column);
}

int PlainTextBox::heightForLines(int lines) const {
  const double margins = 4 * document()->documentMargin() + 2 * frameWidth();
  const int scrollBar = horizontalScrollBar()->sizeHint().height();
  return static_cast<int>(std::ceil(lines * fontMetrics().lineSpacing() + margins)) + scrollBar;
}

void PlainTextBox::preferLines(int lines) {
  m_preferredLines = lines;
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Maximum);
}

QSize PlainTextBox::sizeHint() const {
  const QSize usual = QPlainTextEdit::sizeHint();
  return m_preferredLines == 0 ? usual : QSize(usual.width(), heightForLines(m_preferredLines));
}

void PlainTextBox::resizeEvent(QResizeEvent* event) {
  // Without wrapping no line depends on the width; told of a new one, the base class would lay out a million lines.
  const QSize oldSize(event->size().width(), event->oldSize().height());
  QResizeEvent sameWidth(event->size(), oldSize);
  QPlainTextEdit::resizeEvent(&sameWidth);
}

}  // namespace quorvel
