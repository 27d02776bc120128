// A table of a page in a file, or on paper.
#pragma once

#include <QString>
#include <filesystem>
#include <memory>
#include <optional>

#include "log/file_system.h"
#include "report/table.h"

class QWidget;

namespace quorvel {

class FileDialogs;
struct FileRequest;

/// Asks for a file to save to, in the folder of the last one; empty where the user gave up.
[[nodiscard]] std::optional<std::filesystem::path> askFile(QWidget& window, FileDialogs& dialogs,
                                                           const FileRequest& request);
/// What a table can be exported as; the name's end decides.
[[nodiscard]] FileRequest exportRequest(const std::filesystem::path& folder);
[[nodiscard]] FileRequest linesRequest(const std::filesystem::path& folder);

/// Writes the rows of a view: .html as a page with the view's columns, .jsonl as JSON lines and everything else as CSV,
/// both with all columns. Empty when it is done, else why not.
[[nodiscard]] QString exportTable(FileSystem& files, const std::filesystem::path& path,
                                  const std::shared_ptr<const Table>& table, const TableView& shown,
                                  const QString& title);

/// Asks for the printer, and prints as many rows as fit on a few hundred pages.
void printTable(QWidget& window, const std::shared_ptr<const Table>& table, const TableView& shown,
                const QString& title);

}  // namespace quorvel
