#include "report/text_writer.h"

#include <algorithm>

#include "report/cell_text.h"
#include "report/viewed_table.h"

namespace quorvel {
namespace {

constexpr std::string_view kGap = "  ";
constexpr std::string_view kEllipsis = "\xE2\x80\xA6";
constexpr std::size_t kNarrowest = 12;  ///< a column of texts is not cut to less
constexpr std::size_t kBarWidth = 40;

bool isContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// Columns that a character of three or four bytes takes: those of East Asian writing, and pictures, two.
std::size_t widthOf(std::string_view character) {
  const auto byte = [character](std::size_t i) { return static_cast<unsigned char>(character[i]); };
  if (character.size() == 4) return byte(0) == 0xF0 && (byte(1) == 0x9F || byte(1) >= 0xA0) ? 2 : 1;
  if (character.size() == 2) return byte(0) == 0xCC || (byte(0) == 0xCD && byte(1) < 0xB0) ? 0 : 1;  // accents
  if (character.size() != 3) return 1;
  const unsigned code = (byte(0) & 0xFu) << 12 | (byte(1) & 0x3Fu) << 6 | (byte(2) & 0x3Fu);
  const bool isWide = (code >= 0x1100 && code <= 0x115F) || (code >= 0x2E80 && code <= 0xA4CF) ||
                      (code >= 0xAC00 && code <= 0xD7A3) || (code >= 0xF900 && code <= 0xFAFF) ||
                      (code >= 0xFE30 && code <= 0xFE6F) || (code >= 0xFF00 && code <= 0xFF60);
  return isWide ? 2 : 1;
}

std::size_t characterLength(std::string_view text) {
  std::size_t length = 1;
  while (length < text.size() && isContinuation(text[length]))
    ++length;
  return length;
}

bool isNumber(CellKind kind) {
  return kind == CellKind::Count || kind == CellKind::Bytes || kind == CellKind::Seconds || kind == CellKind::Percent;
}

class TextWriter {
 public:
  TextWriter(const TextOptions& options, Output& output) : m_options(options), m_output(output) {}

  Status write(const Report& report) {
    if (report.parts.size() > 1) heading(report.title);
    for (const ReportPart& part : report.parts) {
      if (Status written = write(part); !written.isOk()) return written;
    }
    return m_output.endRecord();
  }

 private:
  Status write(const ReportPart& part) {
    if (!part.title.empty()) {
      if (m_hasText) line({});
      heading(part.title);
    }
    for (const std::string& sentence : part.sentences)
      tell(sentence);
    if (part.table == nullptr) return m_output.endRecord();
    if (m_hasText && part.title.empty()) line({});
    m_hasText = true;
    if (part.table->rowCount() == 0) {
      if (!part.whenEmpty.empty()) line(withoutControls(part.whenEmpty));
      return m_output.endRecord();
    }
    switch (part.form) {
      case PartForm::Record:
        return writeRecord(*part.table);
      case PartForm::Bars:
        return writeBars(*part.table);
      case PartForm::WeekGrid:
        return writeWeek(*part.table);
      case PartForm::Rows:
        return writeRows(*part.table);
    }
    return {};
  }

  Status writeRows(const Table& table) {
    const std::vector<std::size_t> widths = widthsOf(table);
    std::string header;
    for (std::size_t column = 0; column < widths.size(); ++column)
      appendAligned(header, table.columns()[column].title, column, widths, table);
    heading(header);
    for (std::size_t row = 0; row < table.rowCount(); ++row) {
      if (table.totalRows() > 0 && row == table.rowCount() - table.totalRows())
        line(std::string(lineWidth(widths), '-'));
      std::string text;
      for (std::size_t column = 0; column < widths.size(); ++column)
        appendAligned(text, textOf(table, row, column), column, widths, table);
      line(text);
      if (Status written = m_output.endRecord(); !written.isOk()) return written;
    }
    return {};
  }

  /// As wide as the widest value; texts less where the terminal is narrower.
  [[nodiscard]] std::vector<std::size_t> widthsOf(const Table& table) const {
    std::vector<std::size_t> widths;
    for (std::size_t column = 0; column < table.columns().size(); ++column) {
      std::size_t width = displayWidth(table.columns()[column].title);
      for (std::size_t row = 0; row < table.rowCount(); ++row)
        width = std::max(width, displayWidth(textOf(table, row, column)));
      widths.push_back(width);
    }
    while (m_options.width > 0 && lineWidth(widths) > m_options.width) {
      std::size_t* widest = nullptr;
      for (std::size_t column = 0; column < widths.size(); ++column) {
        const bool isText = table.columns()[column].kind == CellKind::Text;
        if (isText && (widest == nullptr || widths[column] > *widest)) widest = &widths[column];
      }
      if (widest == nullptr || *widest <= kNarrowest) break;
      --*widest;
    }
    return widths;
  }

  static std::size_t lineWidth(const std::vector<std::size_t>& widths) {
    std::size_t sum = 0;
    for (const std::size_t width : widths)
      sum += width + kGap.size();
    return sum - std::min(sum, kGap.size());
  }

  static void appendAligned(std::string& line, std::string_view text, std::size_t column,
                            const std::vector<std::size_t>& widths, const Table& table) {
    const std::string cut = cutToWidth(text, widths[column]);
    const std::size_t blanks = widths[column] - displayWidth(cut);
    if (column > 0) line.append(kGap);
    const bool isRight = isNumber(table.columns()[column].kind);
    if (isRight) line.append(blanks, ' ');
    line.append(cut);
    if (!isRight && column + 1 < widths.size()) line.append(blanks, ' ');
  }

  Status writeRecord(const Table& table) {
    std::size_t width = 0;
    for (const Column& column : table.columns())
      width = std::max(width, displayWidth(column.title));
    for (std::size_t column = 0; column < table.columns().size(); ++column) {
      const std::string_view title = table.columns()[column].title;
      line(std::string(title) + std::string(width - displayWidth(title), ' ') + std::string(kGap) +
           textOf(table, 0, column));
    }
    return m_output.endRecord();
  }

  Status writeBars(const Table& table) {
    const auto bytes = columnNamed(table, "bytes");
    if (!bytes) return writeRows(table);
    const std::size_t rows = table.rowCount() - table.totalRows();
    std::int64_t most = 1;
    std::size_t labelWidth = 0;
    for (std::size_t row = 0; row < rows; ++row) {
      most = std::max(most, table.cell(row, *bytes).number);
      labelWidth = std::max(labelWidth, displayWidth(textOf(table, row, 0)));
    }
    for (std::size_t row = 0; row < rows; ++row) {
      const std::string label = textOf(table, row, 0);
      const double share = static_cast<double>(table.cell(row, *bytes).number) / static_cast<double>(most);
      const auto length = static_cast<std::size_t>(share * kBarWidth + 0.5);
      line(label + std::string(labelWidth - displayWidth(label), ' ') + std::string(kGap) + std::string(length, '#') +
           std::string(kBarWidth - length, ' ') + std::string(kGap) + textOf(table, row, *bytes));
    }
    return m_output.endRecord();
  }

  Status writeWeek(const Table& table) {
    constexpr std::string_view kShades = " .:-=+*#";
    std::int64_t most = 1;
    for (std::size_t row = 0; row < table.rowCount(); ++row) {
      for (std::size_t column = 1; column < table.columns().size(); ++column)
        most = std::max(most, table.cell(row, column).number);
    }
    line("     0     6     12    18");
    for (std::size_t row = 0; row < table.rowCount(); ++row) {
      std::string text = textOf(table, row, 0) + " |";
      for (std::size_t column = 1; column < table.columns().size(); ++column) {
        const std::int64_t bytes = table.cell(row, column).number;
        const double share = static_cast<double>(bytes) / static_cast<double>(most);
        const auto shade = static_cast<std::size_t>(share * static_cast<double>(kShades.size() - 1));
        text += kShades[bytes > 0 ? std::max<std::size_t>(shade, 1) : 0];
      }
      line(text + "|");
    }
    return m_output.endRecord();
  }

  static std::string textOf(const Table& table, std::size_t row, std::size_t column) {
    return withoutControls(readableText(table.cell(row, column)));
  }

  void tell(const std::string& sentence) {
    m_hasText = true;
    const std::string text = withoutControls(sentence);
    const bool isUrgent = m_options.isColoured && text.starts_with("! ");
    m_output.record().append(isUrgent ? "\x1B[1;31m" : "").append(text).append(isUrgent ? "\x1B[0m\n" : "\n");
  }

  void heading(std::string_view text) {
    if (text.empty()) return;
    m_hasText = true;
    const std::string cut = cutLine(withoutControls(text));
    m_output.record()
        .append(m_options.isColoured ? "\x1B[1m" : "")
        .append(cut)
        .append(m_options.isColoured ? "\x1B[0m\n" : "\n");
  }

  void line(std::string_view text) {
    const std::string cut = cutLine(text);
    m_output.record().append(cut, 0, cut.find_last_not_of(' ') + 1).append("\n");
  }

  [[nodiscard]] std::string cutLine(std::string_view text) const {
    return m_options.width > 0 ? cutToWidth(text, m_options.width) : std::string(text);
  }

  const TextOptions& m_options;
  Output& m_output;
  bool m_hasText = false;
};

}  // namespace

std::size_t displayWidth(std::string_view utf8) {
  std::size_t width = 0;
  while (!utf8.empty()) {
    const std::size_t length = characterLength(utf8);
    width += widthOf(utf8.substr(0, length));
    utf8.remove_prefix(length);
  }
  return width;
}

std::string cutToWidth(std::string_view utf8, std::size_t width) {
  if (displayWidth(utf8) <= width) return std::string(utf8);
  std::string cut;
  std::size_t room = width > 0 ? width - 1 : 0;
  while (!utf8.empty()) {
    const std::string_view character = utf8.substr(0, characterLength(utf8));
    if (widthOf(character) > room) break;
    room -= widthOf(character);
    cut.append(character);
    utf8.remove_prefix(character.size());
  }
  return width > 0 ? cut.append(kEllipsis) : cut;
}

Status writeText(const Report& report, const TextOptions& options, Output& output) {
  return TextWriter(options, output).write(report);
}

}  // namespace quorvel
