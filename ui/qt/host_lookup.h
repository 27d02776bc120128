// Resolving a name or an address without waiting.
#pragma once

#include <QHostInfo>
#include <QObject>

namespace quorvel {

class HostLookup : public QObject {
  Q_OBJECT

 public:
  using QObject::QObject;
  ~HostLookup() override;

  /// Gives up a lookup in progress. A name becomes its addresses, an address its name.
  void start(const QString& host);
  void cancel();

 signals:
  /// error() of info tells whether it was found.
  void found(const QHostInfo& info);

 private slots:
  void onLookedUp(const QHostInfo& info);

 private:
  int m_id = -1;  // -1: none in progress
};

}  // namespace quorvel
