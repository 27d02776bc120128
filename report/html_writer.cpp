#include "report/html_writer.h"

#include <algorithm>

#include "report/cell_text.h"
#include "report/viewed_table.h"

namespace quorvel {
namespace {

constexpr std::string_view kHead = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'">
<style>
:root { color-scheme: light dark; --ink: #1b1f24; --paper: #fff; --line: #d5dae0; --soft: #f3f5f7; --down: #2f6fb2; --up: #c2702c; --alarm: #b3261e; }
@media (prefers-color-scheme: dark) { :root { --ink: #e4e7eb; --paper: #16191d; --line: #39404a; --soft: #1f242a; --down: #6ea8e0; --up: #e0a065; --alarm: #f2857d; } }
@media print { :root { --ink: #000; --paper: #fff; --line: #bbb; --soft: #fff; } body { margin: 0; } thead { display: table-header-group; } tr, svg { break-inside: avoid; } }
body { margin: 2rem; color: var(--ink); background: var(--paper); font: 15px/1.45 system-ui, sans-serif; }
h1 { font-size: 1.5rem; } h2 { font-size: 1.1rem; margin-top: 2rem; }
table { border-collapse: collapse; font-variant-numeric: tabular-nums; }
th, td { padding: .2rem .7rem .2rem 0; border-bottom: 1px solid var(--line); text-align: left; vertical-align: top; overflow-wrap: anywhere; }
thead th { border-bottom: 2px solid var(--line); white-space: nowrap; }
.n { text-align: right; white-space: nowrap; }
tfoot td { font-weight: 600; border-bottom: 0; }
.urgent { color: var(--alarm); font-weight: 600; }
svg { display: block; max-width: 100%; height: auto; } svg text { fill: currentColor; font: 12px system-ui, sans-serif; }
.down { fill: var(--down); } .up { fill: var(--up); } .empty { fill: var(--soft); }
</style>
)";

bool isNumber(CellKind kind) {
  return kind == CellKind::Count || kind == CellKind::Bytes || kind == CellKind::Seconds || kind == CellKind::Percent;
}

class HtmlWriter {
 public:
  explicit HtmlWriter(Output& output) : m_output(output) {}

  Status write(const Report& report) {
    add(kHead)
        .add("<title>")
        .text(report.title)
        .add("</title>\n</head>\n<body>\n<h1>")
        .text(report.title)
        .add("</h1>\n");
    for (const ReportPart& part : report.parts) {
      if (Status written = write(part); !written.isOk()) return written;
    }
    add("</body>\n</html>\n");
    return m_output.endRecord();
  }

 private:
  Status write(const ReportPart& part) {
    if (!part.title.empty()) add("<h2>").text(part.title).add("</h2>\n");
    for (const std::string& sentence : part.sentences)
      add(sentence.starts_with("! ") ? "<p class=\"urgent\">" : "<p>").text(sentence).add("</p>\n");
    if (part.table == nullptr) return m_output.endRecord();
    if (part.table->rowCount() == 0) {
      add("<p>").text(part.whenEmpty).add("</p>\n");
      return m_output.endRecord();
    }
    if (part.form == PartForm::Record) return writeRecord(*part.table);
    if (part.form == PartForm::WeekGrid) return writeWeek(*part.table);
    if (part.form == PartForm::Bars) writeBars(*part.table, part.title);
    return writeRows(*part.table);
  }

  Status writeRows(const Table& table) {
    add("<table>\n<thead><tr>");
    for (const Column& column : table.columns())
      add(isNumber(column.kind) ? "<th class=\"n\">" : "<th>").text(column.title).add("</th>");
    add("</tr></thead>\n<tbody>\n");
    const std::size_t rows = table.rowCount() - table.totalRows();
    for (std::size_t row = 0; row < table.rowCount(); ++row) {
      if (row == rows) add("</tbody>\n<tfoot>\n");
      add("<tr>");
      for (std::size_t column = 0; column < table.columns().size(); ++column) {
        add(isNumber(table.columns()[column].kind) ? "<td class=\"n\">" : "<td>");
        text(readableText(table.cell(row, column))).add("</td>");
      }
      add("</tr>\n");
      if (Status written = m_output.endRecord(); !written.isOk()) return written;
    }
    add(table.totalRows() > 0 ? "</tfoot>\n</table>\n" : "</tbody>\n</table>\n");
    return m_output.endRecord();
  }

  Status writeRecord(const Table& table) {
    add("<table>\n<tbody>\n");
    for (std::size_t column = 0; column < table.columns().size(); ++column) {
      add("<tr><th scope=\"row\">").text(table.columns()[column].title).add("</th><td class=\"n\">");
      text(readableText(table.cell(0, column))).add("</td></tr>\n");
    }
    add("</tbody>\n</table>\n");
    return m_output.endRecord();
  }

  /// Upright bars, downloads below, uploads above.
  void writeBars(const Table& table, std::string_view title) {
    const auto down = columnNamed(table, "download_bytes");
    const auto up = columnNamed(table, "upload_bytes");
    if (!down || !up) return;
    const std::size_t rows = table.rowCount() - table.totalRows();
    std::int64_t most = 1;
    for (std::size_t row = 0; row < rows; ++row)
      most = std::max(most, table.cell(row, *down).number + table.cell(row, *up).number);
    constexpr std::int64_t kHeight = 160;
    const std::size_t step = std::clamp<std::size_t>(900 / rows, 2, 40);
    const auto heightOf = [most](std::int64_t bytes) {
      return static_cast<std::int64_t>(static_cast<double>(bytes) / static_cast<double>(most) * kHeight + 0.5);
    };
    add("<svg role=\"img\" viewBox=\"0 0 ").add(std::max<std::size_t>(rows * step, 200)).add(" 180\" width=\"");
    add(std::max<std::size_t>(rows * step, 200)).add("\" height=\"180\"><title>").text(title).add("</title>\n");
    for (std::size_t row = 0; row < rows; ++row) {
      const std::int64_t downHeight = heightOf(table.cell(row, *down).number);
      const std::int64_t upHeight = heightOf(table.cell(row, *up).number);
      const std::string label = readableText(table.cell(row, 0)) + ": " + readableText(table.cell(row, *down)) +
                                " down, " + readableText(table.cell(row, *up)) + " up";
      add("<g><title>").text(label).add("</title>");
      bar("down", row * step, kHeight - downHeight, step, downHeight);
      bar("up", row * step, kHeight - downHeight - upHeight, step, upHeight);
      add("</g>\n");
    }
    add("<text x=\"0\" y=\"176\">").text(readableText(table.cell(0, 0))).add("</text>");
    if (rows > 1) {
      add("<text x=\"").add(std::max<std::size_t>(rows * step, 200)).add("\" y=\"176\" text-anchor=\"end\">");
      text(readableText(table.cell(rows - 1, 0))).add("</text>");
    }
    add("</svg>\n");
  }

  void bar(std::string_view kind, std::size_t x, std::int64_t y, std::size_t step, std::int64_t height) {
    if (height <= 0) return;
    add("<rect class=\"")
        .add(kind)
        .add("\" x=\"")
        .add(x)
        .add("\" y=\"")
        .add(static_cast<std::size_t>(std::max<std::int64_t>(y, 0)));
    add("\" width=\"").add(step - 1).add("\" height=\"").add(static_cast<std::size_t>(height)).add("\"/>");
  }

  Status writeWeek(const Table& table) {
    constexpr std::size_t kCell = 22;
    constexpr std::size_t kLeft = 40;
    constexpr std::size_t kTop = 18;
    std::int64_t most = 1;
    for (std::size_t row = 0; row < table.rowCount(); ++row) {
      for (std::size_t column = 1; column < table.columns().size(); ++column)
        most = std::max(most, table.cell(row, column).number);
    }
    add("<svg role=\"img\" viewBox=\"0 0 570 175\" width=\"570\" height=\"175\"><title>Bytes by weekday and "
        "hour</title>\n");
    for (std::size_t hour = 0; hour < 24; hour += 6)
      add("<text x=\"").add(kLeft + hour * kCell).add("\" y=\"12\">").add(hour).add("</text>");
    for (std::size_t row = 0; row < table.rowCount(); ++row) {
      const std::string day = readableText(table.cell(row, 0));
      add("<text x=\"0\" y=\"").add(kTop + row * kCell + 15).add("\">").text(day).add("</text>");
      for (std::size_t column = 1; column < table.columns().size(); ++column) {
        const std::int64_t bytes = table.cell(row, column).number;
        const auto shade =
            static_cast<std::size_t>(15.0 + 85.0 * static_cast<double>(bytes) / static_cast<double>(most));
        add("<rect class=\"").add(bytes > 0 ? "down" : "empty").add("\" x=\"").add(kLeft + (column - 1) * kCell);
        add("\" y=\"").add(kTop + row * kCell).add("\" width=\"20\" height=\"20\"");
        if (bytes > 0) add(" opacity=\"").add(shade == 100 ? "1" : "." + std::to_string(shade)).add("\"");
        add("><title>")
            .text(day + " " + std::string(table.columns()[column].title) + ":00, " + readableBytes(bytes))
            .add("</title></rect>");
      }
      add("\n");
    }
    add("</svg>\n");
    return m_output.endRecord();
  }

  HtmlWriter& add(std::string_view markup) {
    m_output.record().append(markup);
    return *this;
  }
  HtmlWriter& add(std::size_t number) { return add(std::to_string(number)); }
  HtmlWriter& text(std::string_view text) { return add(htmlText(text)); }

  Output& m_output;
};

}  // namespace

std::string htmlText(std::string_view text) {
  std::string escaped;
  for (const char c : withoutControls(text)) {
    switch (c) {
      case '&':
        escaped.append("&amp;");
        break;
      case '<':
        escaped.append("&lt;");
        break;
      case '>':
        escaped.append("&gt;");
        break;
      case '"':
        escaped.append("&quot;");
        break;
      case '\'':
        escaped.append("&#39;");
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

Status writeHtml(const Report& report, Output& output) {
  return HtmlWriter(output).write(report);
}

}  // namespace quorvel
