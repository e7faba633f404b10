#include "archive/ui/ArchiveHashtagBar.h"

#include <QFocusEvent>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QStyle>
#include <QWheelEvent>
#include <algorithm>

#include "widgets/MacHashtagPill.h"
#include "widgets/Motion.h"
#include "widgets/SymbolIcon.h"
#include "widgets/TextConversion.h"
#include "widgets/TextStyle.h"
#include "widgets/ThemePalette.h"
#include "widgets/ThemedButton.h"

namespace notlet {

namespace {

constexpr int spacing = 8;
/// A tag that needs more is elided.
constexpr int widestChip = 280;
constexpr int widestSearchText = 120;

PillContent contentOf(const std::string& tag, bool isSelected, bool isPointedAt) {
  return {fromUtf8(tag), isSelected, true, false, isPointedAt};
}

} // namespace

/// A hashtag as a button.
class ArchiveHashtagBar::Chip : public ThemedButton {
 public:
  explicit Chip(QWidget* parent) : ThemedButton(parent) {
    setFocusPolicy(Qt::NoFocus); // The bar has the keyboard for all of them.
    setCheckable(true);
  }

  void setContent(const std::string& tag, const PillContent& content) {
    if (content == m_content)
      return;
    m_tag = tag;
    m_content = content;
    setChecked(content.isSelected == true);
    setText(QLatin1Char('#') + content.tag);
    setAccessibleName(ArchiveHashtagBar::tr("Filter by hashtag %1").arg(content.tag));
    setToolTip(PillPainter::size(content).width() > widestChip ? text() : QString());
    update();
  }
  [[nodiscard]] const std::string& tag() const { return m_tag; }
  [[nodiscard]] QSize sizeHint() const override { return PillPainter::size(m_content); }

 protected:
  // Whether it is selected is for its owner to say.
  void nextCheckState() override {}

  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    PillContent content = m_content;
    content.isPressed = isDown();
    content.isHovered = underMouse();
    PillPainter::paint(painter, rect(), content, palette());
  }

 private:
  std::string m_tag;
  PillContent m_content;
};

/// What is being searched for among the hashtags.
class ArchiveHashtagBar::SearchLabel : public QWidget {
 public:
  explicit SearchLabel(QWidget* parent) : QWidget(parent), m_text(new QLabel) {
    m_text->setTextFormat(Qt::PlainText);
    m_text->setForegroundRole(ThemeRole::primaryText);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(8, 4, 8, 4);
    row->setSpacing(4);
    row->addWidget(new SymbolIcon(Symbol::magnifyingglass, 12, ThemeRole::secondaryText));
    row->addWidget(m_text);
    adoptFont();
    hide();
  }

  void setInput(const QString& input) {
    // The end is what was typed last.
    m_text->setText(m_text->fontMetrics().elidedText(input, Qt::ElideLeft, widestSearchText));
    m_text->setAccessibleName(ArchiveHashtagBar::tr("Searching hashtags for %1").arg(input));
    setVisible(!input.isEmpty());
  }

  void adoptFont() {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSizeF(textFont(TextStyle::caption).pointSizeF());
    m_text->setFont(font);
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor ground = palette().color(ThemeRole::surface);
    ground.setAlphaF(0.7F);
    painter.setBrush(ground);
    painter.setPen(QPen(palette().color(ThemeRole::separator), 1));
    constexpr double radius = 7;
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
  }

 private:
  QLabel* m_text;
};

ArchiveHashtagBar::ArchiveHashtagBar(QWidget* parent)
    : QWidget(parent), m_searchLabel(new SearchLabel(this)), m_strip(new QWidget(this)) {
  setFocusPolicy(Qt::TabFocus);
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
  setAccessibleName(tr("Hashtag filters"));
  m_scrolling.setEasingCurve(Motion::curve());
  connect(&m_scrolling, &QVariantAnimation::valueChanged, this,
          [this](const QVariant& value) { scrollTo(value.toInt()); });
}

QSize ArchiveHashtagBar::sizeHint() const {
  return {200, PillPainter::size(contentOf("x", false, false)).height()};
}

void ArchiveHashtagBar::setTags(const std::vector<std::string>& tags) {
  if (tags == m_tags)
    return;
  m_tags = tags;
  m_rightEdges.clear();
  m_scrolling.stop();
  if (m_pointerIsShown)
    scrollToPointer(false);
  else
    scrollTo(m_scroll);
}

void ArchiveHashtagBar::setSelectedTags(const std::set<std::string>& tags) {
  if (tags == m_selectedTags)
    return;
  m_selectedTags = tags;
  measureAnew();
}

/// A selected chip is wider than others; what is in sight stays where it is.
void ArchiveHashtagBar::measureAnew() {
  const std::size_t anchor = firstInSight();
  const int before = m_tags.empty() ? 0 : m_scroll - leftOf(anchor);
  m_rightEdges.clear();
  m_scrolling.stop();
  if (m_tags.empty())
    return;
  measureThrough(anchor);
  scrollTo(leftOf(anchor) + before);
}

void ArchiveHashtagBar::setPointer(int index, bool isShown) {
  const bool hasMoved = index != m_pointedIndex;
  if (!hasMoved && isShown == m_pointerIsShown)
    return;
  m_pointedIndex = index;
  m_pointerIsShown = isShown;
  if (hasMoved)
    scrollToPointer(isVisible());
  placeChips();
}

void ArchiveHashtagBar::setSearchInput(const QString& input) {
  m_searchLabel->setInput(input);
  arrange();
}

void ArchiveHashtagBar::arrange() {
  QRect rest = rect();
  if (!m_searchLabel->isHidden()) {
    const QSize size = m_searchLabel->sizeHint();
    const QRect label(0, (height() - size.height()) / 2, std::min(size.width(), width()), size.height());
    m_searchLabel->setGeometry(QStyle::visualRect(layoutDirection(), rect(), label));
    rest.setLeft(std::min(label.right() + 1 + spacing, width()));
  }
  m_strip->setGeometry(QStyle::visualRect(layoutDirection(), rect(), rest));
  scrollTo(m_scroll);
}

int ArchiveHashtagBar::widthOf(std::size_t index) {
  const std::string& tag = m_tags[index];
  const auto measured = [&](bool isSelected) {
    return std::min(widestChip, PillPainter::size(contentOf(tag, isSelected, false)).width());
  };
  if (m_selectedTags.contains(tag))
    return measured(true);
  const auto known = m_plainWidths.find(tag);
  return known != m_plainWidths.end() ? known->second
                                      : m_plainWidths.emplace(tag, measured(false)).first->second;
}

int ArchiveHashtagBar::leftOf(std::size_t index) const {
  return index == 0 ? 0 : m_rightEdges[index - 1] + spacing;
}

void ArchiveHashtagBar::measureThrough(std::size_t index) {
  while (m_rightEdges.size() <= index)
    m_rightEdges.push_back(leftOf(m_rightEdges.size()) + widthOf(m_rightEdges.size()));
}

void ArchiveHashtagBar::measureUpTo(int x) {
  while (!isMeasured() && leftOf(m_rightEdges.size()) <= x)
    measureThrough(m_rightEdges.size());
}

std::size_t ArchiveHashtagBar::firstInSight() const {
  const auto found = std::ranges::upper_bound(m_rightEdges, m_scroll);
  const auto index = static_cast<std::size_t>(found - m_rightEdges.begin());
  return std::min(index, m_rightEdges.empty() ? 0 : m_rightEdges.size() - 1);
}

void ArchiveHashtagBar::scrollTo(int x) {
  x = std::max(x, 0);
  measureUpTo(x + m_strip->width());
  if (isMeasured()) {
    const int end = m_rightEdges.empty() ? 0 : m_rightEdges.back();
    x = std::clamp(x, 0, std::max(0, end - m_strip->width()));
  }
  m_scroll = x;
  placeChips();
}

void ArchiveHashtagBar::scrollToPointer(bool animated) {
  const auto index = static_cast<std::size_t>(m_pointedIndex);
  if (index >= m_tags.size())
    return scrollTo(m_scroll);
  measureThrough(index);
  const int target = std::max(0, (leftOf(index) + m_rightEdges[index] - m_strip->width()) / 2);
  m_scrolling.stop();
  const auto duration = animated ? Motion::duration(this) : std::chrono::milliseconds::zero();
  if (duration.count() == 0)
    return scrollTo(target);
  measureUpTo(target + m_strip->width());
  m_scrolling.setDuration(static_cast<int>(duration.count()));
  m_scrolling.setStartValue(m_scroll);
  m_scrolling.setEndValue(target);
  m_scrolling.start();
}

ArchiveHashtagBar::Chip* ArchiveHashtagBar::chip(std::size_t number) {
  if (number == m_chips.size()) {
    auto* made = new Chip(m_strip);
    connect(made, &Chip::clicked, this, [this, made] {
      const std::string tag = made->tag(); // The chip may show another one before this is over.
      Q_EMIT chosen(tag);
    });
    m_chips.push_back(made);
  }
  return m_chips[number];
}

void ArchiveHashtagBar::placeChips() {
  std::size_t used = 0;
  measureUpTo(m_scroll + m_strip->width());
  for (std::size_t index = firstInSight(); index < m_rightEdges.size(); ++index) {
    const int left = leftOf(index) - m_scroll;
    if (left >= m_strip->width())
      break;
    const bool isPointedAt = m_pointerIsShown && m_pointedIndex == static_cast<int>(index);
    const bool isSelected = m_selectedTags.contains(m_tags[index]);
    Chip* shown = chip(used++);
    shown->setContent(m_tags[index], contentOf(m_tags[index], isSelected, isPointedAt));
    const QRect place(left, 0, m_rightEdges[index] - leftOf(index), m_strip->height());
    shown->setGeometry(QStyle::visualRect(layoutDirection(), m_strip->rect(), place));
    shown->show();
  }
  for (; used < m_chips.size(); ++used)
    m_chips[used]->hide();
  namePointer();
}

/// The bar has the keyboard, so assistive technology reads its name; that tells where it points.
void ArchiveHashtagBar::namePointer() {
  QString name = tr("Hashtag filters");
  const auto pointed = static_cast<std::size_t>(m_pointedIndex);
  if (m_pointerIsShown && pointed < m_tags.size()) {
    const QString tag = fromUtf8(m_tags[pointed]);
    const bool isSelected = m_selectedTags.contains(m_tags[pointed]);
    name = (isSelected ? tr("Hashtag filters, %1, selected") : tr("Hashtag filters, %1")).arg(tag);
  }
  if (name != accessibleName())
    setAccessibleName(name);
}

void ArchiveHashtagBar::resizeEvent(QResizeEvent*) {
  arrange();
}

/// Either wheel scrolls: a row has only one direction to go.
void ArchiveHashtagBar::wheelEvent(QWheelEvent* event) {
  constexpr double pixelsPerAngle = 0.5;
  const QPointF moved = event->pixelDelta().isNull() ? QPointF(event->angleDelta()) * pixelsPerAngle
                                                     : QPointF(event->pixelDelta());
  const bool isMirrored = layoutDirection() == Qt::RightToLeft;
  const double sideways = isMirrored ? -moved.x() : moved.x();
  m_scrolling.stop();
  scrollTo(m_scroll - qRound(sideways != 0 ? sideways : moved.y()));
  event->accept();
}

void ArchiveHashtagBar::changeEvent(QEvent* event) {
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
    m_plainWidths.clear();
    m_searchLabel->adoptFont();
    measureAnew();
    updateGeometry();
  } else if (event->type() == QEvent::LayoutDirectionChange) {
    arrange();
  }
  QWidget::changeEvent(event);
}

void ArchiveHashtagBar::focusInEvent(QFocusEvent* event) {
  if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason)
    Q_EMIT entered();
  QWidget::focusInEvent(event);
}

} // namespace notlet
