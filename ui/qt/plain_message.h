// A message box that shows its text as it stands.
#pragma once

#include <QString>

#include "ui/view.h"

class QWidget;

namespace quorvel {

/// True for OK or Yes; closing the box counts as the other answer where there is one. An empty title stands for the
/// program's name.
bool showPlainMessage(QWidget* parent, const QString& text, Buttons buttons = Buttons::Ok, const QString& title = {});

}  // namespace quorvel
