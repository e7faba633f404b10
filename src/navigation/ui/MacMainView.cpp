#include "navigation/ui/MacMainView.h"

namespace notlet {

namespace {

constexpr QSize smallestSize{360, 420};
constexpr int sidebarFromWidth = 520;

} // namespace

MacMainView::MacMainView(MainNavigation& navigation, SectionMaker makeSection, QWidget* parent)
    : QWidget(parent),
      m_navigation(navigation),
      m_makeSection(std::move(makeSection)),
      m_layout(new QBoxLayout(QBoxLayout::LeftToRight, this)),
      m_sidebar(new MacSidebar(navigation)),
      m_compact(new MacCompactNavigation(navigation)),
      m_divider(new Hairline(Qt::Vertical)) {
  setMinimumSize(smallestSize);
  m_layout->setContentsMargins(0, 0, 0, 0);
  m_layout->setSpacing(0);
  m_layout->addWidget(m_sidebar);
  m_layout->addWidget(m_compact);
  m_layout->addWidget(m_divider);
  connect(&m_navigation, &MainNavigation::changed, this, &MacMainView::render);
  arrange();
  render();
}

void MacMainView::resizeEvent(QResizeEvent*) {
  arrange();
}

void MacMainView::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  m_navigation.appear();
}

void MacMainView::arrange() {
  const bool isWide = width() >= sidebarFromWidth;
  m_layout->setDirection(isWide ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
  m_divider->setOrientation(isWide ? Qt::Vertical : Qt::Horizontal);
  m_sidebar->setVisible(isWide);
  m_compact->setVisible(!isWide);
}

void MacMainView::render() {
  const MacSection section = m_navigation.state().shownSection();
  if (m_shownSection == section)
    return;
  m_shownSection = section;
  if (m_section) {
    // The command that changes the section may come from the old one itself.
    m_section->hide();
    m_section->deleteLater();
  }
  m_section = m_makeSection(section);
  m_layout->addWidget(m_section, 1);
  // A layout would show it only a turn later, when commands to it may have arrived already.
  m_section->show();
}

} // namespace notlet
