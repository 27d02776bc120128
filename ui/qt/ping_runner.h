// Runs a ping from the event loop.
#pragma once

#include <QObject>
#include <QTimer>
#include <memory>

#include "classic/tools/ping.h"

class QSocketNotifier;

namespace quorvel {

class PingRunner : public QObject {
  Q_OBJECT

 public:
  explicit PingRunner(Ping::Opener opener, QObject* parent);
  ~PingRunner() override;

  /// Ends a ping in progress. address is numeric.
  void start(const std::string& address);
  void cancel();

 signals:
  /// One line for the list of results.
  void line(const QString& text);
  void finished();

 private:
  void listen();
  void stopListening();
  void poll();
  void report(const std::vector<PingEvent>& events);

  Ping m_ping;
  std::string m_address;
  QTimer m_timer;
  std::unique_ptr<QSocketNotifier, void (*)(QSocketNotifier*)> m_notifier;
};

}  // namespace quorvel
