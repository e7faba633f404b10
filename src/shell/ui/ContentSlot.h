#pragma once

#include <QPointer>
#include <QWidget>
#include <functional>

namespace notlet {

/// The place of a window's content, which can be exchanged while the window is up. It takes on the content's
/// limits of size.
class ContentSlot : public QWidget {
  Q_OBJECT

 public:
  /// Makes the content, anew each time.
  using ContentMaker = std::function<QWidget*()>;

  explicit ContentSlot(ContentMaker makeContent, QWidget* parent = nullptr);

  void renew();

 Q_SIGNALS:
  void renewed();

 private:
  ContentMaker m_makeContent;
  QPointer<QWidget> m_content;
};

} // namespace notlet
