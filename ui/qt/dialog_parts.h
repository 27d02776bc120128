// What every dialog needs: its buttons, and the order in which the Tab key visits its controls.
#pragma once

#include <QPushButton>
#include <initializer_list>

namespace quorvel {

/// Width in pixels of so many letters of the widget's font.
[[nodiscard]] inline int widthOfColumns(const QWidget& widget, int columns) {
  return widget.fontMetrics().horizontalAdvance(QString(columns, u'x'));
}

/// Only a default button reacts to the Enter key, wherever the keyboard is in the dialog.
[[nodiscard]] inline QPushButton* makeDialogButton(const QString& name, const QString& text, bool isDefault,
                                                   QWidget* parent) {
  auto* const button = new QPushButton(text, parent);
  button->setObjectName(name);
  button->setAutoDefault(false);
  button->setDefault(isDefault);
  constexpr int kColumnsBeside = 4;
  button->setMinimumWidth(button->fontMetrics().horizontalAdvance(text) + widthOfColumns(*button, kColumnsBeside));
  return button;
}

inline void setTabOrder(std::initializer_list<QWidget*> controls) {
  QWidget* last = nullptr;
  for (QWidget* const control : controls) {
    if (last != nullptr) QWidget::setTabOrder(last, control);
    last = control;
  }
}

}  // namespace quorvel
