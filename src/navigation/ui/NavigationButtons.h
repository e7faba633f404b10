#pragma once

#include <QBoxLayout>
#include <QWidget>
#include <vector>

#include "navigation/MainNavigation.h"
#include "widgets/IconButton.h"

namespace notlet {

/// The buttons that both forms of the navigation have: one for each section, and the one for the bubble.
class NavigationButtons : public QWidget {
  Q_OBJECT

 public:
  /// How a form draws its buttons; sizes in logical pixels.
  struct Appearance {
    QSize buttonSize;
    int symbolSide;
    double highlightRadius;
  };

 protected:
  NavigationButtons(MainNavigation& navigation, const Appearance& appearance,
                    QBoxLayout::Direction direction);

  void addSections();
  void addBubbleButton();
  [[nodiscard]] QBoxLayout& row() const { return *m_row; }

 private:
  [[nodiscard]] IconButton* makeButton(Symbol symbol, const QString& name);
  void render();

  MainNavigation& m_navigation;
  Appearance m_appearance;
  QBoxLayout* m_row;
  std::vector<IconButton*> m_sections;
};

/// The navigation of a wide window: a strip of icons at its left.
class MacSidebar : public NavigationButtons {
  Q_OBJECT

 public:
  /// The navigation must outlive the strip.
  explicit MacSidebar(MainNavigation& navigation);
};

/// The navigation of a narrow window: a bar of icons at its top.
class MacCompactNavigation : public NavigationButtons {
  Q_OBJECT

 public:
  /// The navigation must outlive the bar.
  explicit MacCompactNavigation(MainNavigation& navigation);
};

} // namespace notlet
