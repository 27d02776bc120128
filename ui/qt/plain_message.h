// A message box that shows its text as it stands.
#pragma once

#include <QObject>
#include <QString>

#include "app/view.h"

class QWidget;

namespace quorvel {

/// True for OK or Yes; closing the box counts as the other answer where there is one. An empty title stands for the
/// program's name.
bool showPlainMessage(QWidget* parent, const QString& text, Buttons buttons = Buttons::Ok, const QString& title = {});

/// While it lives, the message boxes that Qt opens by itself, as its file and print dialogs do, show file names as they
/// stand too.
class PlainMessages final : public QObject {
 public:
  PlainMessages();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace quorvel
