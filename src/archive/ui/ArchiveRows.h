#pragma once

#include <QCache>
#include <unordered_map>

#include "archive/ArchiveBrowser.h"
#include "archive/ui/MacArchiveRow.h"

namespace notlet {

[[nodiscard]] inline std::size_t qHash(const Uuid& id, std::size_t seed = 0) {
  return std::hash<Uuid>()(id) ^ seed;
}

/// The results of the archive as rows of a list. Keeps the layouts of the rows that were shown lately.
class ArchiveRows final : public VirtualListRows {
 public:
  /// The palette is that of the widget.
  ArchiveRows(const ArchiveBrowser& browser, const QWidget& widget);

  [[nodiscard]] std::size_t count() const override;
  [[nodiscard]] int height(std::size_t row, int width) override;
  void paint(QPainter& painter, const QRect& rect, std::size_t row, const PaintState& state) override;
  [[nodiscard]] QString accessibleText(std::size_t row) const override;

  /// Scrolls the chips of a row if the position in the row is on them; whether they moved.
  bool scrollChips(std::size_t row, const QPoint& position, int pixels);
  void forget(const Uuid& id);
  void forgetAll();

 private:
  [[nodiscard]] const MacArchiveRow& rowAt(std::size_t row, int width);

  const ArchiveBrowser& m_browser;
  const QWidget& m_widget;
  QCache<Uuid, MacArchiveRow> m_rows;
  // How far the chips of a row were scrolled, where they were.
  std::unordered_map<Uuid, int> m_chipOffsets;
};

} // namespace notlet
