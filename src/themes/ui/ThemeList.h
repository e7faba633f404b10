#pragma once

#include <QMenu>
#include <QPointer>
#include <QWidget>

#include "themes/ThemeBrowser.h"
#include "themes/ui/ThemeRows.h"

namespace notlet {

/// The themes in groups. A click applies one; those of the user have a context menu, which the keyboard opens
/// for the active row. The theme in force is wholly in sight when the list first comes up.
class ThemeList : public QWidget {
  Q_OBJECT

 public:
  /// The browser must outlive the list.
  explicit ThemeList(ThemeBrowser& browser, QWidget* parent = nullptr);
  ~ThemeList() override;

  [[nodiscard]] VirtualListView& view() const { return *m_view; }
  [[nodiscard]] const ThemeRows& rows() const { return m_rows; }
  /// Null while none is open.
  [[nodiscard]] QMenu* menu() const { return m_menu; }
  /// Does nothing when the active row has no menu, or is out of sight.
  void openMenuOfActiveRow();

 protected:
  void changeEvent(QEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void render();
  void renderRows();
  void showSelected();
  void openMenu(std::size_t row, const QPoint& globalPosition);

  ThemeBrowser& m_browser;
  ThemeRows m_rows;
  VirtualListView* m_view;
  QPointer<QMenu> m_menu;
  /// What was last shown of the browser's state.
  std::string m_shownSearch;
  std::optional<std::string> m_shownActive;
  bool m_wasShown = false;
};

} // namespace notlet
