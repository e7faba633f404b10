#pragma once

#include <QLabel>
#include <QWidget>

namespace notlet {

/// A text that is not in the store, with what can be done about it, above the list.
class ArchiveBanner : public QWidget {
  Q_OBJECT

 public:
  explicit ArchiveBanner(QWidget* parent = nullptr);

  /// The text of a notlet that was deleted.
  void setOrphanedEdit(const QString& text);

 Q_SIGNALS:
  void saveRequested();
  void discardRequested();

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QLabel* m_message;
};

} // namespace notlet
