// Asking for a file: the dialogs behind a small interface, so that a test can answer them.
#pragma once

#include <QString>

#include "app/view.h"

class QWidget;

namespace quorvel {

class FileDialogs {
 public:
  virtual ~FileDialogs() = default;
  [[nodiscard]] virtual FileChoice askOpenFile(QWidget* parent, const FileRequest& request) = 0;
  [[nodiscard]] virtual FileChoice askSaveFile(QWidget* parent, const FileRequest& request) = 0;
};

/// The desktop's own dialogs.
class QtFileDialogs : public FileDialogs {
 public:
  [[nodiscard]] FileChoice askOpenFile(QWidget* parent, const FileRequest& request) override;
  /// A name typed without a suffix gets the filter's. Asks here before a file that exists is taken: the desktop's
  /// dialog would ask about the name without the suffix.
  [[nodiscard]] FileChoice askSaveFile(QWidget* parent, const FileRequest& request) override;
};

/// "Serv-U log file   (*.*)|*.*" as Qt wants it: the description, then "(*)", which stands for every file.
[[nodiscard]] QString nameFilter(const std::string& filter);
/// "txt" for a filter of "*.txt"; empty when the pattern names no single suffix.
[[nodiscard]] QString filterSuffix(const std::string& filter);
/// fileName with the filter's suffix when it has none of its own.
[[nodiscard]] QString withSuffix(const QString& fileName, const std::string& filter);

}  // namespace quorvel
