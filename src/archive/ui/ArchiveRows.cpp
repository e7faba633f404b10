#include "archive/ui/ArchiveRows.h"

#include "widgets/TextConversion.h"

namespace notlet {

namespace {

constexpr qsizetype keptRows = 256;
constexpr std::size_t keptOffsets = 256;
constexpr std::size_t longestReading = 1000;

} // namespace

ArchiveRows::ArchiveRows(const ArchiveBrowser& browser, const QWidget& widget)
    : m_browser(browser), m_widget(widget), m_rows(keptRows) {
}

std::size_t ArchiveRows::count() const {
  return m_browser.resultCount();
}

const MacArchiveRow& ArchiveRows::rowAt(std::size_t row, int width) {
  const NotletEntry& notlet = m_browser.resultAt(row);
  const MacArchiveRow* kept = m_rows.object(notlet.id);
  if (kept != nullptr && kept->width() == width)
    return *kept;
  auto* made = new MacArchiveRow(notlet, width); // The cache takes it over.
  m_rows.insert(notlet.id, made);
  return *made;
}

int ArchiveRows::height(std::size_t row, int width) {
  return rowAt(row, width).height();
}

void ArchiveRows::paint(QPainter& painter, const QRect& rect, std::size_t row, const PaintState& state) {
  const auto offset = m_chipOffsets.find(m_browser.resultAt(row).id);
  rowAt(row, rect.width())
      .paint(painter, rect, m_widget.palette(), state, offset == m_chipOffsets.end() ? 0 : offset->second);
}

QString ArchiveRows::accessibleText(std::size_t row) const {
  const NotletEntry& notlet = m_browser.resultAt(row);
  const std::string_view content = notlet.content;
  return fromUtf8(content.substr(0, longestReading)) + QStringLiteral("\n") + creationText(notlet);
}

bool ArchiveRows::scrollChips(std::size_t row, const QPoint& position, int pixels) {
  const Uuid id = m_browser.resultAt(row).id;
  const MacArchiveRow* shown = m_rows.object(id);
  if (shown == nullptr || !shown->chipArea().contains(position))
    return false;
  if (m_chipOffsets.size() == keptOffsets)
    m_chipOffsets.clear();
  int& offset = m_chipOffsets[id];
  offset = std::clamp(offset + pixels, 0, shown->chips().furthest(shown->chipArea().width()));
  return true;
}

void ArchiveRows::forget(const Uuid& id) {
  m_rows.remove(id);
  m_chipOffsets.erase(id);
}

void ArchiveRows::forgetAll() {
  m_rows.clear();
  m_chipOffsets.clear();
}

} // namespace notlet
