// What happened to a file, and where is it busy?
#pragma once

#include "ui/qt/pages/table_page.h"

namespace quorvel {

/// The history of the paths that the scope asks for, renames followed; or the same summed by folder.
class FilesPage final : public TablePage {
  Q_OBJECT

 public:
  explicit FilesPage(QWidget* parent = nullptr);
  [[nodiscard]] Inquiry inquiry() override;
  [[nodiscard]] TableBox* mainTable() override;
  void save(QSettings& settings) const override;
  void restore(QSettings& settings) override;

 private:
  [[nodiscard]] bool showsFolders() const;

  QComboBox* m_choice;
  TableBox* m_folders;
};

}  // namespace quorvel
