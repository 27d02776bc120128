// frmComputerIP: looks up a computer's name or addresses and pings it.
#pragma once

#include <QDialog>
#include <QHostInfo>

#include "app/settings.h"
#include "classic/tools/ping.h"
#include "ui/qt/host_lookup.h"
#include "ui/qt/ping_runner.h"

class QCheckBox;
class QLineEdit;
class QPushButton;

namespace quorvel {

class PlainTextBox;

/// Never waits for the network; closing the window gives up what is in progress.
class frmComputerIP : public QDialog {
  Q_OBJECT

 public:
  /// settings must outlive the window. host stands in the input field at first; what is no host is left out.
  frmComputerIP(Settings& settings, std::string_view host, Ping::Opener opener, QWidget* parent);

 protected:
  void done(int result) override;

 private:
  void arrange(QPushButton& find, QPushButton& close);
  void cmdFind_Click();
  void cmdStop_Click();
  void giveUp();
  void chkAutoClear_Click(bool checked);
  void onFound(const QHostInfo& info);
  void showName(const QHostInfo& info);
  void showAddresses(const QHostInfo& info);
  void addLine(const QString& text);

  Settings& m_settings;
  HostLookup m_lookup;
  PingRunner m_ping;
  QString m_host;  // what is looked up
  QLineEdit* m_input;
  QPushButton* m_stop;  // enabled while there is something to stop
  QCheckBox* m_autoClear;
  PlainTextBox* m_results;
};

}  // namespace quorvel
