#include "ui/qt/pages/export_table.h"

#include <QWidget>
#include <utility>

#include "app/view.h"
#include "log/clock.h"
#include "log/text.h"
#include "report/csv_writer.h"
#include "report/html_writer.h"
#include "report/json_writer.h"
#include "report/text_writer.h"
#include "report/viewed_table.h"
#include "ui/qt/file_dialogs.h"
#include "ui/qt/plain_message.h"
#include "ui/qt/print_command.h"
#include "ui/qt/print_pages.h"
#include "ui/qt/text.h"

namespace quorvel {
namespace {

/// Keeps what is written, for what wants it in one piece.
class TextOutput final : public Output {
 public:
  [[nodiscard]] const std::string& text() const { return m_written; }

 protected:
  Status write(std::string_view piece) override {
    m_written += piece;
    return {};
  }

 private:
  std::string m_written;
};

std::unique_ptr<Table> viewed(const std::shared_ptr<const Table>& table, const TableView& shown) {
  // Rows of sums stay at the end however the table is sorted, and are the first that a cut takes away.
  const bool isWhole = shown.rows.size() == table->rowCount();
  const std::size_t totals = isWhole ? table->totalRows() : 0;
  return std::make_unique<ViewedTable>(table, shown, totals);
}

Report asReport(std::unique_ptr<Table> table, const QString& title) {
  Report report;
  report.title = title.toStdString();
  ReportPart part;
  part.table = std::move(table);
  part.whenEmpty = "There are no rows.";
  report.parts.push_back(std::move(part));
  return report;
}

Status write(Output& output, const QString& suffix, const std::shared_ptr<const Table>& table, TableView shown,
             const QString& title) {
  if (suffix == QStringLiteral(".html") || suffix == QStringLiteral(".htm"))
    return writeHtml(asReport(viewed(table, shown), title), output);
  shown.columns = allColumns(*table);  // files for other programs always hold all of them, in the same order
  const auto whole = viewed(table, shown);
  const bool isJson = suffix == QStringLiteral(".jsonl") || suffix == QStringLiteral(".json");
  return isJson ? writeJsonLines(*whole, output) : writeCsv(*whole, {}, output);
}

}  // namespace

FileRequest exportRequest(const std::filesystem::path& folder) {
  FileRequest request;
  request.title = "Export what is shown: CSV, or by its name JSON lines (.jsonl) or a page (.html)";
  request.filter = "CSV; a name with .jsonl or .html at its end makes these|*.csv";
  request.folder = folder;
  request.existing = ExistingFile::AskedToReplace;
  return request;
}

FileRequest linesRequest(const std::filesystem::path& folder) {
  FileRequest request;
  request.title = "Save the lines of the session";
  request.filter = "Text|*.txt";
  request.folder = folder;
  request.existing = ExistingFile::AskedToReplace;
  return request;
}

std::optional<std::filesystem::path> askFile(QWidget& window, FileDialogs& dialogs, const FileRequest& request) {
  const FileChoice choice = dialogs.askSaveFile(&window, request);
  if (choice.outcome == FileChoice::Outcome::Failed) showPlainMessage(&window, toQString(choice.error));
  if (choice.outcome != FileChoice::Outcome::Chosen || choice.path.empty()) return std::nullopt;
  return choice.path;
}

QString exportTable(FileSystem& files, const std::filesystem::path& path, const std::shared_ptr<const Table>& table,
                    const TableView& shown, const QString& title) {
  auto output = openOutput(files, path);
  if (!output.isOk()) return toQString(output.error().sentence());
  Status status = write(*output.value(), toFileName(path.extension()).toLower(), table, shown, title);
  if (status.isOk()) status = output.value()->finish();
  return status.isOk() ? QString() : toQString(status.error().sentence());
}

void printTable(QWidget& window, const std::shared_ptr<const Table>& table, const TableView& shown,
                const QString& title) {
  constexpr std::size_t kMostRows = 20'000;
  TableView few = shown;
  const bool isCut = few.rows.size() > kMostRows;
  if (isCut) few.rows.resize(kMostRows);
  Report report = asReport(viewed(table, few), title);
  if (isCut) report.parts.front().sentences.emplace_back("The first 20,000 rows.");
  TextOutput output;
  if (!writeText(report, {}, output).isOk() || !output.finish().isOk()) return;
  const DateTime now = localNow();
  printDocument(window, {toBytes(title), now.date + " " + now.time, toWindows1252(output.text())}, [] { return true; });
}

}  // namespace quorvel
