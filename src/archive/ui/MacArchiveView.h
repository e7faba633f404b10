#pragma once

#include <QPointer>
#include <QStackedLayout>
#include <QTimer>
#include <QWidget>

#include "archive/ArchiveBrowser.h"
#include "archive/ui/ArchiveBanner.h"
#include "archive/ui/ArchiveHashtagBar.h"
#include "archive/ui/ArchiveList.h"
#include "archive/ui/ArchivePlaceholder.h"
#include "widgets/Alert.h"
#include "widgets/NoticeBar.h"
#include "widgets/SearchField.h"

namespace notlet {

/// The main window's section in which all notlets are found, edited and deleted.
///
/// The browser appears and disappears with the section, not with the window that it is in.
class MacArchiveView : public QWidget {
  Q_OBJECT

 public:
  /// The browser must outlive the view.
  explicit MacArchiveView(ArchiveBrowser& browser, QWidget* parent = nullptr);
  ~MacArchiveView() override;

  [[nodiscard]] QSize minimumSizeHint() const override { return {0, 0}; }

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void layOut();
  void connectHandlers();
  void render();
  void renderHashtags();
  void renderContent();
  void renderNotices();
  void renderFocus();
  [[nodiscard]] QWidget* keyboardWidget() const;
  void renderDeleteConfirmation();
  void renderSaveAlert();
  void askToDiscard();

  ArchiveBrowser& m_browser;
  SearchField* m_search;
  ArchiveHashtagBar* m_hashtags;
  NoticeBar* m_notice;
  ArchiveBanner* m_banner;
  QStackedLayout* m_content;
  ArchiveList* m_list;
  ArchivePlaceholder* m_placeholder;
  QPointer<Alert> m_deleteConfirmation;
  QPointer<Alert> m_saveAlert;
  QTimer m_hashtagTimer;
};

} // namespace notlet
