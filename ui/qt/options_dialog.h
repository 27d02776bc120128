// Draws the options dialog.
#pragma once

#include <QDialog>
#include <array>

#include "app/options.h"

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QListWidget;
class QRadioButton;
class QVBoxLayout;

namespace quorvel {

/// Shows what form holds and tells it what the user does. Neither OK nor Cancel reaches the form: whoever runs the
/// dialog calls cmdOK_Click() when it was accepted.
class OptionsDialog : public QDialog {
  Q_OBJECT

 public:
  /// form must outlive the dialog. Its first page is loaded.
  OptionsDialog(frmOption& form, QWidget* parent);

 private:
  void addPageList();
  void addFrame();
  void addOptionButtons(QVBoxLayout& rows);
  void addCheckBoxes(QVBoxLayout& rows);
  void addBufferRow(QVBoxLayout& rows);
  void arrange();
  [[nodiscard]] QWidget* makeScrollArea();
  void draw();
  void drawOptionButtons();
  void drawCheckBoxes();
  void drawRest();

  frmOption& m_form;
  QListWidget* m_pages;
  QGroupBox* m_frame;
  std::array<QRadioButton*, 10> m_optionButtons{};
  std::array<QCheckBox*, 10> m_checkBoxes{};
  QComboBox* m_sizes;
  QLabel* m_unit;
  QLabel* m_footnote;
};

}  // namespace quorvel
