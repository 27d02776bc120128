// Which transfers broke off, why, and did they finish in the end?
#pragma once

#include "ui/qt/pages/table_page.h"

namespace quorvel {

class TransfersPage final : public TablePage {
  Q_OBJECT

 public:
  explicit TransfersPage(QWidget* parent = nullptr);
  [[nodiscard]] Inquiry inquiry() override;

 private:
  QComboBox* m_choice;
};

}  // namespace quorvel
