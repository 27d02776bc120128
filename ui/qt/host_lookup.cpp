#include "ui/qt/host_lookup.h"

namespace quorvel {

HostLookup::~HostLookup() {
  cancel();
}

void HostLookup::start(const QString& host) {
  cancel();
  // By name: Qt loses the memory of a slot given as a pointer when the lookup is given up.
  m_id = QHostInfo::lookupHost(host, this, SLOT(onLookedUp(QHostInfo)));
}

void HostLookup::cancel() {
  if (m_id >= 0) QHostInfo::abortHostLookup(m_id);
  m_id = -1;
}

void HostLookup::onLookedUp(const QHostInfo& info) {
  if (info.lookupId() != m_id) return;  // of a lookup given up meanwhile
  m_id = -1;
  emit found(info);
}

}  // namespace quorvel
