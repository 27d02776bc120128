#include "ui/qt/computer_ip_dialog.h"

#include <QCheckBox>
#include <QHostAddress>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>
#include <utility>

#include "classic/tools/lookup.h"
#include "log/text.h"
#include "ui/qt/dialog_parts.h"
#include "ui/qt/plain_text_box.h"
#include "ui/qt/text.h"
#include "ui/qt/window_placement.h"

namespace quorvel {
namespace {

constexpr std::string_view kSection = "COMPUTER-IP";
constexpr std::string_view kAutoClearKey = "AutoClear";

bool isAddress(const QString& host) {
  return !QHostAddress(host).isNull();
}

}  // namespace

frmComputerIP::frmComputerIP(Settings& settings, std::string_view host, Ping::Opener opener, QWidget* parent)
    : QDialog(parent),
      m_settings(settings),
      m_ping(std::move(opener), nullptr),
      m_input(new QLineEdit(this)),
      m_stop(makeDialogButton(QStringLiteral("cmdStop"), QStringLiteral("&Stop"), false, this)),
      m_autoClear(new QCheckBox(QStringLiteral("Clear the list before each lookup"), this)),
      m_results(new PlainTextBox(this)) {
  setObjectName(QStringLiteral("frmComputerIP"));
  setWindowTitle(QStringLiteral("Get IP/Ping"));
  m_input->setObjectName(QStringLiteral("txtHost"));
  m_input->setAccessibleName(QStringLiteral("Computer name or IP address"));
  m_input->setMaxLength(static_cast<int>(kLongestHostName));
  if (isHostOrAddress(host)) m_input->setText(toQString(host));
  m_autoClear->setObjectName(QStringLiteral("chkAutoClear"));
  m_autoClear->setChecked(m_settings.readFlag(kSection, kAutoClearKey));
  m_results->setObjectName(QStringLiteral("lstResult"));
  m_results->setAccessibleName(QStringLiteral("Results"));
  m_results->setTabChangesFocus(true);
  auto* const find = makeDialogButton(QStringLiteral("cmdFind"), QStringLiteral("&Get IP/Ping"), true, this);
  auto* const close = makeDialogButton(QStringLiteral("cmdClose"), QStringLiteral("Close"), false, this);
  connect(find, &QPushButton::clicked, this, &frmComputerIP::cmdFind_Click);
  m_stop->setEnabled(false);
  connect(m_stop, &QPushButton::clicked, this, &frmComputerIP::cmdStop_Click);
  connect(close, &QPushButton::clicked, this, &QDialog::reject);
  connect(m_autoClear, &QCheckBox::clicked, this, &frmComputerIP::chkAutoClear_Click);
  connect(&m_lookup, &HostLookup::found, this, &frmComputerIP::onFound);
  connect(&m_ping, &PingRunner::line, this, &frmComputerIP::addLine);
  connect(&m_ping, &PingRunner::finished, this, [this] { m_stop->setEnabled(false); });
  arrange(*find, *close);
}

void frmComputerIP::arrange(QPushButton& find, QPushButton& close) {
  auto* const label = new QLabel(QStringLiteral("Computer &name or IP address:"), this);
  label->setBuddy(m_input);
  constexpr int kFrameColumns = 2;
  m_input->setMinimumWidth(
      m_input->fontMetrics().horizontalAdvance(QStringLiteral("2001:0db8:85a3:0000:0000:8a2e:0370:7334")) +
      widthOfColumns(*m_input, kFrameColumns));
  auto* const buttons = new QHBoxLayout;
  buttons->addWidget(&find);
  buttons->addWidget(m_stop);
  buttons->addStretch();
  auto* const foot = new QHBoxLayout;
  foot->addWidget(m_autoClear);
  foot->addStretch();
  foot->addWidget(&close);
  auto* const rows = new QVBoxLayout(this);
  rows->addWidget(label);
  rows->addWidget(m_input);
  rows->addLayout(buttons);
  rows->addWidget(m_results, 1);
  rows->addLayout(foot);
  quorvel::setTabOrder({m_input, &find, m_stop, m_results, m_autoClear, &close});
  constexpr int kColumns = 72;
  constexpr int kLines = 16;
  resize(sizeOnScreen(*this, {widthOfColumns(*m_results, kColumns), m_results->heightForLines(kLines)}));
  setSizeGripEnabled(true);
  m_input->setFocus();
}

void frmComputerIP::done(int result) {
  giveUp();
  QDialog::done(result);
}

void frmComputerIP::giveUp() {
  m_lookup.cancel();
  m_ping.cancel();
  m_stop->setEnabled(false);
}

void frmComputerIP::chkAutoClear_Click(bool checked) {
  m_settings.WriteSetting(kSection, kAutoClearKey, checked ? "1" : "0");
}

void frmComputerIP::cmdFind_Click() {
  m_host = m_input->text().trimmed();
  giveUp();
  if (m_settings.readFlag(kSection, kAutoClearKey)) m_results->setBytes({});
  if (!isHostOrAddress(m_host.toStdString())) return addLine(QStringLiteral("Not a computer name or IP address."));
  m_stop->setEnabled(true);
  m_lookup.start(m_host);
}

void frmComputerIP::cmdStop_Click() {
  giveUp();
  addLine(QStringLiteral("Stopped."));
  m_input->setFocus();
}

void frmComputerIP::onFound(const QHostInfo& info) {
  if (isAddress(m_host)) return showName(info);
  showAddresses(info);
}

void frmComputerIP::showName(const QHostInfo& info) {
  const bool hasName = info.error() == QHostInfo::NoError && !info.hostName().isEmpty() && info.hostName() != m_host;
  addLine(hasName ? m_host + QStringLiteral(" is ") + info.hostName() : m_host + QStringLiteral(" has no name."));
  m_ping.start(m_host.toStdString());
}

void frmComputerIP::showAddresses(const QHostInfo& info) {
  const QList<QHostAddress> addresses = info.addresses();
  if (addresses.isEmpty()) {
    m_stop->setEnabled(false);
    return addLine(m_host + QStringLiteral(" was not found."));
  }
  for (const QHostAddress& address : addresses)
    addLine(m_host + QStringLiteral(" is ") + address.toString());
  m_ping.start(addresses.front().toString().toStdString());
}

void frmComputerIP::addLine(const QString& text) {
  m_results->appendBytes(toBytes(toOneLine(text)) + std::string(kLineEnd));
}

}  // namespace quorvel
