#include "ui/qt/about_dialog.h"

#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include "app/program.h"
#include "ui/qt/dialog_parts.h"
#include "ui/qt/text.h"
#include "ui/qt/window_icon.h"
#include "ui/qt/window_placement.h"

namespace quorvel {
namespace {

QLabel* nameLabel(QWidget* parent) {
  auto* const label = new QLabel(toQString(kProgramName), parent);
  label->setTextFormat(Qt::PlainText);
  QFont font = label->font();
  font.setPointSizeF(font.pointSizeF() * 1.5);
  font.setBold(true);
  label->setFont(font);
  return label;
}

/// A line edit, so that a long value can be scrolled and copied.
void addRow(QFormLayout& form, const QString& caption, const QString& value) {
  auto* const field = new QLineEdit(toOneLine(value), form.parentWidget());
  field->setReadOnly(true);
  field->setFrame(false);
  QPalette palette = field->palette();
  palette.setColor(QPalette::Base, palette.color(QPalette::Window));
  field->setPalette(palette);
  field->setAccessibleName(caption);
  field->setCursorPosition(0);
  form.addRow(caption + u':', field);
}

}  // namespace

frmAbout::frmAbout(const std::filesystem::path& programFolder, QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("frmAbout"));
  setWindowTitle(QStringLiteral("About ") + toQString(kProgramName));
  constexpr int kIconSize = 64;
  auto* const icon = new QLabel(this);
  icon->setPixmap(quorvel::windowIcon().pixmap(QSize(kIconSize, kIconSize), devicePixelRatioF()));
  auto* const head = new QHBoxLayout;
  head->addWidget(icon);
  head->addWidget(nameLabel(this), 1);

  auto* const rows = new QVBoxLayout(this);
  rows->addLayout(head);
  auto* const form = new QFormLayout;
  rows->addLayout(form);
  addRow(*form, QStringLiteral("Version"), toQString(kVersion));
  addRow(*form, QStringLiteral("Qt version"), QString::fromLatin1(qVersion()));
  addRow(*form, QStringLiteral("Program folder"), toFileName(programFolder));
  addRow(*form, QStringLiteral("Licence"), QStringLiteral("MIT License"));
  addRow(*form, QStringLiteral("Web"), toQString(kWebAddress));
  auto* const close = makeDialogButton(QStringLiteral("cmdClose"), QStringLiteral("Close"), true, this);
  connect(close, &QPushButton::clicked, this, &QDialog::accept);
  rows->addWidget(close, 0, Qt::AlignRight);
  constexpr int kColumns = 66;
  resize(sizeOnScreen(*this, {widthOfColumns(*this, kColumns), sizeHint().height()}));
  close->setFocus();
}

}  // namespace quorvel
