#include "ui/qt/pages/answering.h"

#include <utility>

namespace quorvel {

Answering::Answering(QObject* parent) : QObject(parent) {
  connect(&m_job, &NewestJob::ranOutOfMemory, this, &Answering::ranOutOfMemory);
}

void Answering::ask(Inquiry inquiry) {
  m_job.start([this, inquiry = std::move(inquiry), activity = m_activity,
               scope = m_scope](const std::atomic<bool>&) -> NewestJob::Show {
    if (!m_last || m_last->activity != activity || m_last->scope != scope)
      m_last = std::make_shared<const Subject>(Subject{activity, scope, select(*activity, scope)});
    return [this, show = inquiry(m_last)] {
      show();
      emit answered();
    };
  });
}

}  // namespace quorvel
