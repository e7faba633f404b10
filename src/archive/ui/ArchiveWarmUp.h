#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include "storage/ModelContext.h"

namespace notlet {

/// Lays out and paints the archive's first rows, and some from further down, where nobody sees them: the font
/// of a script is loaded when the first of its letters is, and the opening of the archive is not to wait for
/// the fonts of ten scripts. One row between two events, then it is gone.
class ArchiveWarmUp : public QObject {
  Q_OBJECT

 public:
  /// The rows look as they will in the window.
  ArchiveWarmUp(const ModelContext& list, const QWidget& window, QObject* parent);

 private:
  void prepareNextRow();
  [[nodiscard]] std::size_t row() const;

  const ModelContext& m_list;
  QPointer<const QWidget> m_window;
  QTimer m_timer;
  std::size_t m_prepared = 0;
};

} // namespace notlet
