#include "archive/ui/ArchiveWarmUp.h"

#include <QPainter>

#include "archive/ui/MacArchiveRow.h"

namespace notlet {

namespace {

/// About what a window shows.
constexpr std::size_t firstRows = 12;
/// As many as the list measures to guess its height.
constexpr std::size_t sampledRows = 24;
/// A row may take twenty milliseconds, and a key should have to wait for one at most.
constexpr std::chrono::milliseconds pause{15};

} // namespace

ArchiveWarmUp::ArchiveWarmUp(const ModelContext& list, const QWidget& window, QObject* parent)
    : QObject(parent), m_list(list), m_window(&window) {
  connect(&m_timer, &QTimer::timeout, this, &ArchiveWarmUp::prepareNextRow);
  m_timer.start(pause);
}

std::size_t ArchiveWarmUp::row() const {
  if (m_prepared < firstRows)
    return m_prepared;
  return (m_prepared - firstRows) * m_list.size() / sampledRows;
}

void ArchiveWarmUp::prepareNextRow() {
  if (m_prepared == firstRows + sampledRows || row() >= m_list.size() || !m_window) {
    m_timer.stop();
    return deleteLater();
  }
  const MacArchiveRow prepared(m_list.at(row()), m_window->width());
  ++m_prepared;
  const double ratio = m_window->devicePixelRatioF();
  QImage picture(QSize(prepared.width(), prepared.height()) * ratio, QImage::Format_RGB32);
  picture.setDevicePixelRatio(ratio);
  QPainter painter(&picture);
  prepared.paint(painter, {0, 0, prepared.width(), prepared.height()}, m_window->palette(), {}, 0);
}

} // namespace notlet
