// A read-only box for text of any length and content: fixed-width letters, no wrapping, nothing interpreted.
#pragma once

#include <QPlainTextEdit>
#include <string>
#include <string_view>

#include "ui/qt/shown_lines.h"

namespace quorvel {

/// Keeps the bytes it was given beside what it shows, so that bytes() returns them exactly: line ends, unassigned
/// bytes, blanks. 100 MB of log lines are appended in about five seconds, no piece of 64 KB taking more than a few
/// milliseconds.
class PlainTextBox : public QPlainTextEdit {
  Q_OBJECT

 public:
  explicit PlainTextBox(QWidget* parent = nullptr);

  void setBytes(std::string_view text);
  /// Adds to the end; neither the place shown nor the selection moves.
  void appendBytes(std::string_view text);
  [[nodiscard]] const std::string& bytes() const { return m_bytes; }

  /// The box's height in pixels when it has to show so many lines and a scroll bar below them.
  [[nodiscard]] int heightForLines(int lines) const;
  /// Takes the room of so many lines and no more, less where there is not enough.
  void preferLines(int lines);
  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void insertAtEnd(std::string_view text);
  /// Without scrolling. The text inserted at the caret has pushed it to the end.
  void placeCaret(int anchor, int position);

  std::string m_bytes;
  ShownLines m_lines;
  int m_preferredLines = 0;  // 0: as many as there is room for
};

}  // namespace quorvel
