// A window to read a text in.
#pragma once

#include <QDialog>
#include <string_view>

namespace quorvel {

class TextViewer : public QDialog {
  Q_OBJECT

 public:
  /// title and text are bytes, shown as they stand.
  TextViewer(std::string_view title, std::string_view text, QWidget* parent);
};

}  // namespace quorvel
