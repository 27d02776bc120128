// frmAbout: version and whereabouts of the program.
#pragma once

#include <QDialog>
#include <filesystem>

namespace quorvel {

class frmAbout : public QDialog {
  Q_OBJECT

 public:
  frmAbout(const std::filesystem::path& programFolder, QWidget* parent);
};

}  // namespace quorvel
