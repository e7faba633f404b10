#include "shell/ui/ContentSlot.h"

#include <QVBoxLayout>

namespace notlet {

ContentSlot::ContentSlot(ContentMaker makeContent, QWidget* parent)
    : QWidget(parent), m_makeContent(std::move(makeContent)) {
  (new QVBoxLayout(this))->setContentsMargins({});
  renew();
}

void ContentSlot::renew() {
  if (m_content) {
    // The wish for another content may come from this one.
    m_content->hide();
    m_content->deleteLater();
    layout()->removeWidget(m_content);
  }
  m_content = m_makeContent();
  layout()->addWidget(m_content);
  setMinimumSize(m_content->minimumSize());
  setMaximumSize(m_content->maximumSize());
  // A layout would show it only a turn later, when commands to it may have arrived already.
  m_content->show();
  Q_EMIT renewed();
}

} // namespace notlet
