// A sunken field for one line of plain text, shortened with dots where it does not fit: a panel of the status bar.
#pragma once

#include <QFrame>
#include <QString>

namespace quorvel {

class OneLineLabel : public QFrame {
  Q_OBJECT

 public:
  explicit OneLineLabel(QWidget* parent = nullptr);

  void setText(const QString& text);
  [[nodiscard]] const QString& text() const { return m_text; }

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QString m_text;
};

}  // namespace quorvel
