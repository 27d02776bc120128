// The counter result window: what a count found, to be read, copied or pasted into the filter window.
#pragma once

#include <QDialog>
#include <functional>
#include <string_view>

class QPushButton;

namespace quorvel {

class PlainTextBox;

class frmCounterResult : public QDialog {
  Q_OBJECT

 public:
  /// paste is called by the button "Paste into filter window", any number of times.
  frmCounterResult(std::string_view caption, std::string_view text, std::function<void()> paste, QWidget* parent);

 private:
  void cmdPasteResultTortbFilter_Click();

  std::function<void()> m_paste;
  PlainTextBox* m_result;
  QPushButton* m_pasteButton;
  QPushButton* m_closeButton;
};

}  // namespace quorvel
