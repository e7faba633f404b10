#pragma once

#include <QLabel>
#include <QWidget>

namespace notlet {

class TextButton;

/// What the user must know or decide about texts that are not in the store, above the list.
class ArchiveBanner : public QWidget {
  Q_OBJECT

 public:
  explicit ArchiveBanner(QWidget* parent = nullptr);

  /// A text whose notlet was deleted, with what can be done about it.
  void showOrphanedEdit(const QString& text);
  void showWarning(const QString& warning);

 Q_SIGNALS:
  void saveRequested();
  void discardRequested();

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void show(const QString& message, bool withButtons);

  QLabel* m_message;
  TextButton* m_save;
  TextButton* m_discard;
};

} // namespace notlet
