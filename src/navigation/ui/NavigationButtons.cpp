#include "navigation/ui/NavigationButtons.h"

#include "widgets/AppIcon.h"
#include "widgets/TextConversion.h"

namespace notlet {

namespace {

constexpr NavigationButtons::Appearance sidebarAppearance{{36, 36}, 18, 9};
constexpr NavigationButtons::Appearance compactAppearance{{34, 30}, 17, 8};

Symbol symbolOf(MacSection section) {
  switch (section) {
  case MacSection::notlet:
    return Symbol::squareAndPencil;
  case MacSection::archive:
    return Symbol::archivebox;
  case MacSection::themes:
    return Symbol::paintpalette;
  }
  return Symbol::squareAndPencil;
}

} // namespace

NavigationButtons::NavigationButtons(MainNavigation& navigation, const Appearance& appearance,
                                     QBoxLayout::Direction direction)
    : m_navigation(navigation), m_appearance(appearance), m_row(new QBoxLayout(direction, this)) {
  m_row->setContentsMargins(8, 8, 8, 8);
  m_row->setSpacing(4);
  connect(&m_navigation, &MainNavigation::changed, this, &NavigationButtons::render);
}

IconButton* NavigationButtons::makeButton(Symbol symbol, const QString& name) {
  auto* button = new IconButton(symbol, name);
  button->setSides(m_appearance.symbolSide, m_appearance.buttonSize);
  button->setCornerRadius(m_appearance.highlightRadius);
  m_row->addWidget(button, 0, Qt::AlignCenter);
  return button;
}

void NavigationButtons::addSections() {
  for (const MacSection section : allMacSections) {
    IconButton* button = makeButton(symbolOf(section), fromUtf8(title(section)));
    connect(button, &IconButton::clicked, &m_navigation,
            [&navigation = m_navigation, section] { navigation.select(section); });
    m_sections.push_back(button);
  }
  render();
}

void NavigationButtons::addBubbleButton() {
  connect(makeButton(Symbol::circleCircle, QStringLiteral("Switch to Bubble Mode")), &IconButton::clicked,
          &m_navigation, &MainNavigation::switchToBubbleMode);
}

void NavigationButtons::render() {
  for (const MacSection section : allMacSections) {
    const bool isCurrent = m_navigation.state().selection == section;
    IconButton* button = m_sections[static_cast<std::size_t>(section)];
    button->setSelected(isCurrent);
    button->setAccessibleDescription(isCurrent ? QStringLiteral("Current section") : QString());
  }
}

MacSidebar::MacSidebar(MainNavigation& navigation)
    : NavigationButtons(navigation, sidebarAppearance, QBoxLayout::TopToBottom) {
  constexpr int iconSide = 24;
  constexpr int iconRadius = 6;
  row().addSpacing(4);
  row().addWidget(new AppIconView(iconSide, iconRadius), 0, Qt::AlignCenter);
  row().addSpacing(8);
  addSections();
  row().addStretch();
  addBubbleButton();
}

MacCompactNavigation::MacCompactNavigation(MainNavigation& navigation)
    : NavigationButtons(navigation, compactAppearance, QBoxLayout::LeftToRight) {
  row().setContentsMargins(8, 6, 8, 6);
  addSections();
  row().addStretch();
  addBubbleButton();
}

} // namespace notlet
