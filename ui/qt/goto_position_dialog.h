// The window that shows the log around a byte position.
#pragma once

#include <QDialog>
#include <filesystem>

#include "log/file_system.h"

class QLineEdit;

namespace quorvel {

class PlainTextBox;

class frmGotoPosInLog : public QDialog {
  Q_OBJECT

 public:
  /// files must outlive the window. log is the log that is open; empty: none.
  frmGotoPosInLog(FileSystem& files, std::filesystem::path log, QWidget* parent);

 private:
  void cmdFind_Click();

  FileSystem& m_files;
  std::filesystem::path m_log;
  QLineEdit* m_position;
  PlainTextBox* m_result;
};

}  // namespace quorvel
