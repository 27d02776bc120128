#include "ui/qt/counter_result_window.h"

#include <QHBoxLayout>
#include <QVBoxLayout>
#include <utility>

#include "ui/qt/dialog_parts.h"
#include "ui/qt/plain_text_box.h"
#include "ui/qt/text.h"
#include "ui/qt/window_placement.h"

namespace quorvel {

frmCounterResult::frmCounterResult(std::string_view caption, std::string_view text, std::function<void()> paste,
                                   QWidget* parent)
    : QDialog(parent),
      m_paste(std::move(paste)),
      m_result(new PlainTextBox(this)),
      m_pasteButton(makeDialogButton(QStringLiteral("cmdPasteResultTortbFilter"),
                                     QStringLiteral("&Paste into filter window"), false, this)),
      m_closeButton(makeDialogButton(QStringLiteral("cmdClose"), QStringLiteral("Close"), true, this)) {
  setObjectName(QStringLiteral("frmCounterResult"));
  setWindowTitle(toTitle(caption));
  m_result->setObjectName(QStringLiteral("rtbCounterResult"));
  m_result->setAccessibleName(QStringLiteral("Counter result"));
  m_result->setBytes(text);
  connect(m_pasteButton, &QPushButton::clicked, this, &frmCounterResult::cmdPasteResultTortbFilter_Click);
  connect(m_closeButton, &QPushButton::clicked, this, &QDialog::accept);

  auto* const buttons = new QHBoxLayout;
  buttons->addWidget(m_pasteButton);
  buttons->addStretch();
  buttons->addWidget(m_closeButton);
  auto* const rows = new QVBoxLayout(this);
  rows->addWidget(m_result);
  rows->addLayout(buttons);
  constexpr int kColumns = 64;
  constexpr int kLines = 11;
  const int height = m_result->heightForLines(kLines) + m_closeButton->sizeHint().height();
  resize(sizeOnScreen(*this, {widthOfColumns(*m_result, kColumns), height}));
  setSizeGripEnabled(true);
  m_closeButton->setFocus();
}

void frmCounterResult::cmdPasteResultTortbFilter_Click() {
  m_paste();
  m_closeButton->setFocus();
}

}  // namespace quorvel
