#pragma once

#include <QPointer>
#include <QWidget>

#include "archive/ArchiveBrowser.h"
#include "archive/ui/ArchiveRows.h"

namespace notlet {

class MacArchiveRowWidget;

/// The results of the archive as a list whose selected row is a widget. Scroll position, selection and an
/// open editor survive whatever happens to the archive.
class ArchiveList : public QWidget {
  Q_OBJECT

 public:
  /// The browser must outlive the list.
  explicit ArchiveList(ArchiveBrowser& browser, QWidget* parent = nullptr);
  ~ArchiveList() override;

  [[nodiscard]] VirtualListView& view() const { return *m_view; }

  bool eventFilter(QObject* watched, QEvent* event) override;

 Q_SIGNALS:
  /// The user has moved the keyboard to the list or into its active row, by a click or by Tab.
  void entered();

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void follow(const ListChange& change);
  void followReset();
  void render();
  void renderActiveRow(std::size_t row, const NotletEntry& notlet);
  void renderContent(const NotletEntry& notlet);
  [[nodiscard]] MacArchiveRowWidget* makeActiveRow();
  /// Of the active row, once it has the keyboard.
  void showControl(const QWidget* control);
  /// The keyboard must not be left with what is about to be hidden.
  void takeKeyboardFromRow();

  ArchiveBrowser& m_browser;
  ArchiveRows m_rows;
  VirtualListView* m_view;
  QPointer<MacArchiveRowWidget> m_activeRow;
  /// What the active row shows.
  std::optional<Uuid> m_activeID;
  /// The selection that was last scrolled to.
  std::optional<Uuid> m_shownSelection;
  /// The edit whose editor has been given the keyboard.
  std::optional<Uuid> m_shownEdit;
};

} // namespace notlet
