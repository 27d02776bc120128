#include "ui/qt/readable_colours.h"

#include <QApplication>
#include <QPalette>
#include <QStyle>
#include <utility>

namespace quorvel {
namespace {

QColor between(const QColor& a, const QColor& b) {
  return {(a.red() + b.red()) / 2, (a.green() + b.green()) / 2, (a.blue() + b.blue()) / 2};
}

QPalette withReadableDisabledText(const QPalette& desktop) {
  QPalette changed;
  for (const auto& [text, ground] :
       {std::pair(QPalette::WindowText, QPalette::Window), std::pair(QPalette::ButtonText, QPalette::Button),
        std::pair(QPalette::Text, QPalette::Base)}) {
    changed.setColor(QPalette::Disabled, text, between(desktop.color(text), desktop.color(ground)));
  }
  return changed.resolve(desktop);
}

/// The Fusion style draws outlines in a darker shade of the window's colour, which is lost on a dark ground.
void lightenOutlines(const QPalette& desktop) {
  constexpr int kDarkerByStyle = 140;  // percent
  QPalette outlined;
  const QColor outline = between(desktop.color(QPalette::Text), desktop.color(QPalette::Base));
  outlined.setColor(QPalette::Window, outline.lighter(kDarkerByStyle));
  // Only the views of this program: a file dialog's have corners that would show the changed colour.
  for (const char* const widget :
       {"QCheckBox", "QRadioButton", "QMenu", "QListWidget", "quorvel::SessionTreeBox", "quorvel::PlainTextBox"})
    QApplication::setPalette(outlined.resolve(desktop), widget);
}

}  // namespace

void useReadableColours() {
  const QPalette desktop = withReadableDisabledText(QApplication::palette());
  QApplication::setPalette(desktop);
  const bool isDark = desktop.color(QPalette::Base).lightness() < desktop.color(QPalette::Text).lightness();
  const bool isFusion = QApplication::style()->objectName() == QStringLiteral("fusion");
  if (isDark && isFusion) lightenOutlines(desktop);
}

}  // namespace quorvel
