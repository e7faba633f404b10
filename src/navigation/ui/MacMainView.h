#pragma once

#include <QBoxLayout>
#include <QPointer>
#include <QWidget>
#include <functional>

#include "navigation/MainNavigation.h"
#include "navigation/ui/NavigationButtons.h"
#include "widgets/Hairline.h"

namespace notlet {

/// The content of the main window: the navigation, beside or above the section on show.
class MacMainView : public QWidget {
  Q_OBJECT

 public:
  /// Makes the screen of a section, anew each time it is shown.
  using SectionMaker = std::function<QWidget*(MacSection)>;

  /// The navigation must outlive the view.
  MacMainView(MainNavigation& navigation, SectionMaker makeSection, QWidget* parent = nullptr);

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void arrange();
  void render();

  MainNavigation& m_navigation;
  SectionMaker m_makeSection;
  QBoxLayout* m_layout;
  MacSidebar* m_sidebar;
  MacCompactNavigation* m_compact;
  Hairline* m_divider;
  QPointer<QWidget> m_section;
  std::optional<MacSection> m_shownSection;
};

} // namespace notlet
