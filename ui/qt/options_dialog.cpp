#include "ui/qt/options_dialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QRadioButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include "ui/qt/dialog_parts.h"
#include "ui/qt/text.h"
#include "ui/qt/window_placement.h"

namespace quorvel {
namespace {

constexpr int kListSpacing = 2;  // pixels around each entry

QLabel* plainLabel(QWidget* parent) {
  auto* const label = new QLabel(parent);
  label->setTextFormat(Qt::PlainText);
  return label;
}

Qt::CheckState toQt(CheckState state) {
  switch (state) {
    case CheckState::Clear:
      return Qt::Unchecked;
    case CheckState::Checked:
      return Qt::Checked;
    case CheckState::Greyed:
      break;
  }
  return Qt::PartiallyChecked;
}

}  // namespace

OptionsDialog::OptionsDialog(frmOption& form, QWidget* parent)
    : QDialog(parent),
      m_form(form),
      m_pages(new QListWidget(this)),
      m_frame(new QGroupBox(this)),
      m_sizes(new QComboBox(m_frame)),
      m_unit(plainLabel(m_frame)),
      m_footnote(plainLabel(m_frame)) {
  setObjectName(QStringLiteral("frmOption"));
  setWindowTitle(QStringLiteral("Options"));
  addPageList();
  addFrame();
  arrange();
  m_form.Form_Load();
  draw();
  m_pages->setFocus();
}

void OptionsDialog::addPageList() {
  m_pages->setObjectName(QStringLiteral("lstSelectOption"));
  m_pages->setAccessibleName(QStringLiteral("Pages of options"));
  for (const std::string_view entry : frmOption::lstSelectOption())
    m_pages->addItem(toQString(entry));
  m_pages->setCurrentRow(0);
  m_pages->setSpacing(kListSpacing);
  const int border = 2 * kListSpacing + 4 * m_pages->frameWidth() + widthOfColumns(*m_pages, 2);
  m_pages->setMaximumWidth(m_pages->sizeHintForColumn(0) + border);
  connect(m_pages, &QListWidget::currentRowChanged, this, [this](int page) {
    m_form.lstSelectOption_Click(page);
    draw();
  });
}

void OptionsDialog::addFrame() {
  auto* const rows = new QVBoxLayout(m_frame);
  addOptionButtons(*rows);
  addCheckBoxes(*rows);
  addBufferRow(*rows);
  rows->addStretch();
  m_footnote->setWordWrap(true);
  rows->addWidget(m_footnote);
}

void OptionsDialog::addOptionButtons(QVBoxLayout& rows) {
  for (std::size_t i = 0; i < m_optionButtons.size(); ++i) {
    auto* const button = new QRadioButton(m_frame);
    button->setObjectName(QStringLiteral("optOption%1").arg(i));
    connect(button, &QRadioButton::clicked, this, [this, i] {
      m_form.optOption_Click(i);
      draw();
    });
    rows.addWidget(button);
    m_optionButtons[i] = button;
  }
}

void OptionsDialog::addCheckBoxes(QVBoxLayout& rows) {
  for (std::size_t i = 0; i < m_checkBoxes.size(); ++i) {
    auto* const box = new QCheckBox(m_frame);
    box->setObjectName(QStringLiteral("chkOption%1").arg(i));
    connect(box, &QCheckBox::clicked, this, [this, i] {
      m_form.chkOption_Click(i);
      draw();
    });
    rows.addWidget(box);
    m_checkBoxes[i] = box;
  }
}

void OptionsDialog::addBufferRow(QVBoxLayout& rows) {
  m_sizes->setAccessibleName(QStringLiteral("Buffer size in bytes"));
  auto* const row = new QHBoxLayout;
  row->addWidget(m_sizes);
  row->addWidget(m_unit);
  row->addStretch();
  rows.addLayout(row);
}

void OptionsDialog::arrange() {
  auto* const ok = makeDialogButton(QStringLiteral("cmdOK"), QStringLiteral("OK"), true, this);
  auto* const cancel = makeDialogButton(QStringLiteral("cmdCancel"), QStringLiteral("Cancel"), false, this);
  connect(ok, &QPushButton::clicked, this, &QDialog::accept);
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  auto* const buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(ok);
  buttons->addWidget(cancel);
  auto* const panes = new QHBoxLayout;
  panes->addWidget(m_pages);
  panes->addWidget(makeScrollArea(), 1);
  auto* const rows = new QVBoxLayout(this);
  rows->addLayout(panes);
  rows->addLayout(buttons);
  constexpr int kFrameColumns = 83;
  constexpr int kFrameLines = 23;
  const QSize whole(m_pages->maximumWidth() + widthOfColumns(*this, kFrameColumns),
                    fontMetrics().height() * kFrameLines);
  resize(sizeOnScreen(*this, whole));
}

QWidget* OptionsDialog::makeScrollArea() {
  auto* const area = new QScrollArea(this);
  area->setFrameShape(QFrame::NoFrame);
  area->setWidgetResizable(true);
  area->setFocusPolicy(Qt::NoFocus);
  area->setWidget(m_frame);
  return area;
}

void OptionsDialog::draw() {
  m_frame->setTitle(toQString(m_form.controls().frameCaption));
  drawOptionButtons();
  drawCheckBoxes();
  drawRest();
}

void OptionsDialog::drawOptionButtons() {
  for (std::size_t i = 0; i < m_optionButtons.size(); ++i) {
    const OptionButtonControl& control = m_form.controls().optOption[i];
    QRadioButton& button = *m_optionButtons[i];
    button.setText(toQString(control.caption));
    button.setAutoExclusive(false);  // else none could be off on a page that starts with none on
    button.setChecked(control.isOn);
    button.setAutoExclusive(true);
    button.setVisible(control.isVisible);
  }
}

void OptionsDialog::drawCheckBoxes() {
  for (std::size_t i = 0; i < m_checkBoxes.size(); ++i) {
    const CheckBoxControl& control = m_form.controls().chkOption[i];
    QCheckBox& box = *m_checkBoxes[i];
    box.setText(toQString(control.caption));
    box.setToolTip(toQString(control.toolTip));
    box.setTristate(control.value == CheckState::Greyed);
    box.setCheckState(toQt(control.value));
    box.setEnabled(control.isEnabled);
    box.setVisible(control.isVisible);
  }
}

void OptionsDialog::drawRest() {
  const OptionControls& controls = m_form.controls();
  m_sizes->clear();
  for (const std::string& entry : controls.comboBox.entries)
    m_sizes->addItem(toQString(entry));
  m_sizes->setCurrentIndex(controls.comboBox.selected);
  m_sizes->setVisible(controls.comboBox.isVisible);
  m_unit->setText(toQString(controls.unitLabel.text));
  m_unit->setVisible(controls.unitLabel.isVisible);
  m_footnote->setText(toQString(controls.footnote.text).remove(u'\r'));
  m_footnote->setVisible(controls.footnote.isVisible);
}

}  // namespace quorvel
