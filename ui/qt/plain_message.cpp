#include "ui/qt/plain_message.h"

#include <QApplication>
#include <QEvent>
#include <QMessageBox>

#include "app/program.h"
#include "ui/qt/busy_pointer.h"
#include "ui/qt/text.h"

namespace quorvel {
namespace {

QMessageBox::StandardButtons toQt(Buttons buttons) {
  switch (buttons) {
    case Buttons::OkCancel:
      return QMessageBox::Ok | QMessageBox::Cancel;
    case Buttons::YesNo:
      return QMessageBox::Yes | QMessageBox::No;
    case Buttons::Ok:
      break;
  }
  return QMessageBox::Ok;
}

/// Long words, such as a name of 500 characters, would make the box wider than the screen.
QString breakable(QString text) {
  constexpr qsizetype kLongestWord = 80;
  qsizetype wordLength = 0;
  for (qsizetype i = 0; i < text.size(); ++i) {
    wordLength = text[i].isSpace() ? 0 : wordLength + 1;
    if (wordLength <= kLongestWord) continue;
    text.insert(i, u'\n');
    wordLength = 0;
  }
  return text;
}

}  // namespace

bool showPlainMessage(QWidget* parent, const QString& text, Buttons buttons, const QString& title) {
  const NormalPointer normalPointer;
  QMessageBox box(parent);
  box.setWindowTitle(title.isEmpty() ? toQString(kProgramName) : title);
  box.setTextFormat(Qt::PlainText);
  box.setIcon(buttons == Buttons::Ok ? QMessageBox::Information : QMessageBox::Question);
  box.setText(breakable(withoutDirectionMarks(text).remove(u'\r')));
  box.setStandardButtons(toQt(buttons));
  const int answer = box.exec();
  return answer == QMessageBox::Ok || answer == QMessageBox::Yes;
}

PlainMessages::PlainMessages() {
  qApp->installEventFilter(this);
}

bool PlainMessages::eventFilter(QObject* watched, QEvent* event) {
  auto* const box = event->type() == QEvent::Polish ? qobject_cast<QMessageBox*>(watched) : nullptr;
  if (box != nullptr) box->setTextFormat(Qt::PlainText);
  return false;
}

}  // namespace quorvel
