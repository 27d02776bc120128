#include "ui/qt/goto_position_dialog.h"

#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>
#include <utility>

#include "classic/tools/go_to_position.h"
#include "ui/qt/dialog_parts.h"
#include "ui/qt/plain_text_box.h"
#include "ui/qt/text.h"
#include "ui/qt/window_placement.h"

namespace quorvel {

frmGotoPosInLog::frmGotoPosInLog(FileSystem& files, std::filesystem::path log, QWidget* parent)
    : QDialog(parent),
      m_files(files),
      m_log(std::move(log)),
      m_position(new QLineEdit(this)),
      m_result(new PlainTextBox(this)) {
  setObjectName(QStringLiteral("frmGotoPosInLog"));
  setWindowTitle(QStringLiteral("Goto position in logfile"));
  m_position->setObjectName(QStringLiteral("txtPosition"));
  m_position->setAccessibleName(QStringLiteral("Position"));
  m_result->setObjectName(QStringLiteral("rtbResult"));
  m_result->setAccessibleName(QStringLiteral("Text of the log"));
  m_result->setTabChangesFocus(true);
  auto* const label = new QLabel(QStringLiteral("&Position:"), this);
  label->setObjectName(QStringLiteral("lblPosition"));
  label->setBuddy(m_position);
  auto* const info = new QLabel(QStringLiteral("500 bytes before the position, then the text from there on."), this);
  info->setObjectName(QStringLiteral("lblInfo"));
  info->setWordWrap(true);
  auto* const find = makeDialogButton(QStringLiteral("cmdFind"), QStringLiteral("&Find"), true, this);
  auto* const close = makeDialogButton(QStringLiteral("cmdClose"), QStringLiteral("Close"), false, this);
  connect(find, &QPushButton::clicked, this, &frmGotoPosInLog::cmdFind_Click);
  connect(close, &QPushButton::clicked, this, &QDialog::reject);

  auto* const question = new QHBoxLayout;
  question->addWidget(label);
  question->addWidget(m_position);
  question->addWidget(find);
  question->addStretch();
  question->addWidget(close);
  auto* const rows = new QVBoxLayout(this);
  rows->addLayout(question);
  rows->addWidget(info);
  rows->addWidget(m_result, 1);
  quorvel::setTabOrder({m_position, find, close, m_result});
  constexpr int kColumns = 90;
  constexpr int kLines = 24;
  resize(sizeOnScreen(*this, {widthOfColumns(*m_result, kColumns), m_result->heightForLines(kLines)}));
  setSizeGripEnabled(true);
  m_position->setFocus();
}

void frmGotoPosInLog::cmdFind_Click() {
  const auto text = textAroundPosition(m_files, m_log, toBytes(m_position->text()));
  if (text) m_result->setBytes(*text);
}

}  // namespace quorvel
