#include "ui/qt/text_viewer.h"

#include <QVBoxLayout>

#include "ui/qt/dialog_parts.h"
#include "ui/qt/plain_text_box.h"
#include "ui/qt/text.h"
#include "ui/qt/window_placement.h"

namespace quorvel {

TextViewer::TextViewer(std::string_view title, std::string_view text, QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("frmTextViewer"));
  setWindowTitle(toTitle(title));
  auto* const box = new PlainTextBox(this);
  box->setAccessibleName(toTitle(title));
  box->setTabChangesFocus(true);
  box->setBytes(text);
  auto* const close = makeDialogButton(QStringLiteral("cmdClose"), QStringLiteral("Close"), true, this);
  connect(close, &QPushButton::clicked, this, &QDialog::accept);
  auto* const rows = new QVBoxLayout(this);
  rows->addWidget(box);
  rows->addWidget(close, 0, Qt::AlignRight);
  constexpr int kColumns = 86;
  constexpr int kLines = 30;
  resize(sizeOnScreen(*this, {widthOfColumns(*box, kColumns), box->heightForLines(kLines)}));
  setSizeGripEnabled(true);
  box->setFocus();
}

}  // namespace quorvel
