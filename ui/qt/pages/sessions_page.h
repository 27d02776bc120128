// Which sessions were there?
#pragma once

#include "ui/qt/pages/table_page.h"

namespace quorvel {

class SessionsPage final : public TablePage {
  Q_OBJECT

 public:
  explicit SessionsPage(QWidget* parent = nullptr);
  [[nodiscard]] Inquiry inquiry() override;
};

}  // namespace quorvel
