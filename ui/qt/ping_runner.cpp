#include "ui/qt/ping_runner.h"

#include <QSocketNotifier>
#include <utility>

#include "ui/qt/text.h"

namespace quorvel {
namespace {

constexpr std::chrono::milliseconds kPollInterval{50};

/// Deleted later: it may be its own signal that ends it.
void retire(QSocketNotifier* notifier) {
  notifier->setEnabled(false);
  notifier->deleteLater();
}

}  // namespace

PingRunner::PingRunner(Ping::Opener opener, QObject* parent)
    : QObject(parent), m_ping(std::move(opener)), m_notifier(nullptr, &retire) {
  m_timer.setInterval(kPollInterval);
  connect(&m_timer, &QTimer::timeout, this, &PingRunner::poll);
}

PingRunner::~PingRunner() {
  cancel();
}

void PingRunner::start(const std::string& address) {
  cancel();
  m_address = address;
  const auto events = m_ping.start(address, Ping::Clock::now());
  listen();
  report(events);
}

void PingRunner::cancel() {
  stopListening();
  m_ping.cancel();
}

void PingRunner::listen() {
  if (!m_ping.isRunning()) return;
  m_timer.start();
  if (m_ping.descriptor() < 0) return;
  m_notifier.reset(new QSocketNotifier(m_ping.descriptor(), QSocketNotifier::Read));
  connect(m_notifier.get(), &QSocketNotifier::activated, this, &PingRunner::poll);
}

void PingRunner::stopListening() {
  m_timer.stop();
  m_notifier.reset();
}

void PingRunner::poll() {
  report(m_ping.poll(Ping::Clock::now()));
}

void PingRunner::report(const std::vector<PingEvent>& events) {
  const bool isFinished = !m_ping.isRunning();
  if (isFinished) stopListening();
  for (const PingEvent& event : events)
    emit line(toQString(pingLine(m_address, event)));
  if (isFinished) emit finished();
}

}  // namespace quorvel
