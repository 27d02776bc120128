// Lays plain text out on pages: a head line, lines of fixed-width letters, the page number.
#pragma once

#include <QString>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

class QFont;
class QPagedPaintDevice;
class QPaintDevice;

namespace quorvel {

struct PrintedDocument {
  std::string title;  ///< on the left of every page's head line
  std::string date;   ///< on the right
  std::string text;
};

/// The lines of a text, those longer than a page is wide cut into several. CR LF, CR and LF each end a line.
class PrintedLines {
 public:
  /// text must stay unchanged while lines are taken; columns is at least 1.
  PrintedLines(std::string_view text, int columns);

  /// The next line, without its end and with blanks for tabs; empty behind the last one.
  [[nodiscard]] std::optional<QString> next();
  /// Passes over one line; false behind the last one.
  bool skip() { return take().has_value(); }

 private:
  [[nodiscard]] std::optional<std::string_view> take();

  std::string_view m_rest;
  std::size_t m_columns;
};

/// How many letters of the fixed-width font fit side by side; at least 1.
[[nodiscard]] int columnsPerLine(const QFont& font, QPaintDevice& device);

enum class PrintOutcome {
  Printed,
  Stopped,
  Failed,  ///< the device could not be opened or gave no further page
};

/// Prints the pages that the device's page ranges ask for. keepGoing is asked after each page, and now and then while
/// the pages of a long text are counted before; false ends the print with that page.
[[nodiscard]] PrintOutcome printPages(QPagedPaintDevice& device, const PrintedDocument& document,
                                      const std::function<bool()>& keepGoing);

}  // namespace quorvel
