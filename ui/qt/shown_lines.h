// Turns bytes that arrive in pieces into the lines a text box shows.
#pragma once

#include <QString>
#include <string_view>

namespace quorvel {

/// CR LF, CR and LF each end a line, also where a CR LF is cut in two by a piece's end. A line without an end in sight
/// is broken for showing, because a text box needs a second to draw a line of a million characters.
class ShownLines {
 public:
  static constexpr qsizetype kLongestLine = 10'000;

  /// What the piece adds to the text shown, lines ended by LF. A CR at its very end is kept back until it is known
  /// what follows.
  [[nodiscard]] QString next(std::string_view piece);
  void restart();

 private:
  void add(QString& shown, QChar c);

  bool m_hasPendingReturn = false;
  qsizetype m_lineLength = 0;
};

}  // namespace quorvel
