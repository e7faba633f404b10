#include "widgets/MacHashtagSuggestionsView.h"

#include <QKeyEvent>
#include <QPainter>
#include <QStyle>
#include <algorithm>

#include "widgets/MacHashtagPill.h"
#include "widgets/ThemedButton.h"

namespace notlet {

namespace {

constexpr int spacing = 8;
constexpr int sidePadding = 8;
constexpr int padding = 2;
constexpr int mostRows = 2;

} // namespace

/// One suggested tag.
class MacHashtagSuggestionsView::Chip : public ThemedButton {
 public:
  Chip(const QString& tag, QWidget* parent) : ThemedButton(parent), m_content{tag, std::nullopt, true, true} {
    setText(QLatin1Char('#') + tag);
    setAccessibleName(MacHashtagSuggestionsView::tr("Use hashtag %1").arg(tag));
  }

  [[nodiscard]] QSize sizeHint() const override { return PillPainter::size(m_content); }

  /// Shows the whole tag on request when the chip cannot.
  void explainWhenElided() { setToolTip(width() < sizeHint().width() ? text() : QString()); }

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    // A plain button would walk on by these; here they are the strip's.
    const bool walks = event->key() == Qt::Key_Left || event->key() == Qt::Key_Right ||
                       event->key() == Qt::Key_Up || event->key() == Qt::Key_Down;
    if (walks)
      event->ignore();
    else
      ThemedButton::keyPressEvent(event);
  }

  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    PillContent content = m_content;
    content.isFocused = hasFocus();
    content.isPressed = isDown();
    content.isHovered = underMouse();
    PillPainter::paint(painter, rect(), content, palette());
  }

 private:
  PillContent m_content;
};

MacHashtagSuggestionsView::MacHashtagSuggestionsView(std::vector<std::string> suggestions, OnSelect onSelect,
                                                     QWidget* parent)
    : QWidget(parent), m_suggestions(std::move(suggestions)), m_onSelect(std::move(onSelect)) {
  QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
  policy.setHeightForWidth(true);
  setSizePolicy(policy);
  setAccessibleName(tr("Hashtag suggestions"));
  makeChips();
}

void MacHashtagSuggestionsView::setSuggestions(std::vector<std::string> suggestions) {
  if (suggestions == m_suggestions)
    return;
  m_suggestions = std::move(suggestions);
  makeChips();
  updateGeometry();
}

void MacHashtagSuggestionsView::focusFirst() {
  if (m_shownCount > 0)
    m_chips.front()->setFocus(Qt::TabFocusReason);
}

void MacHashtagSuggestionsView::makeChips() {
  for (Chip* chip : m_chips) {
    // The list may change while one of them is still handling its click.
    chip->hide();
    chip->deleteLater();
  }
  m_chips.clear();
  for (const std::string& tag : m_suggestions) {
    auto* chip = new Chip(QString::fromStdString(tag), this);
    chip->installEventFilter(this);
    connect(chip, &Chip::clicked, this, [this, tag] {
      const OnSelect select = m_onSelect;
      select(tag);
    });
    m_chips.push_back(chip);
  }
  placeChips();
  orderForTab();
  setTabStop(m_chips.empty() ? nullptr : m_chips.front());
}

/// New buttons come last in a window's tab order; these belong where the strip stands among its neighbours.
void MacHashtagSuggestionsView::orderForTab() {
  QWidget* before = previousInFocusChain();
  while (before != this && (before->focusPolicy() == Qt::NoFocus || isAncestorOf(before)))
    before = before->previousInFocusChain();
  for (Chip* chip : m_chips) {
    chip->setFocusPolicy(Qt::TabFocus); // Others have no place in the order.
    if (before != this)
      setTabOrder(before, chip);
    before = chip;
  }
}

std::vector<QRect> MacHashtagSuggestionsView::placement(int width) const {
  std::vector<QRect> places;
  const int right = width - sidePadding;
  int row = 0;
  QPoint next(sidePadding, padding);
  for (const Chip* chip : m_chips) {
    QSize size = chip->sizeHint();
    size.setWidth(std::clamp(right - sidePadding, 0, size.width()));
    if (next.x() > sidePadding && next.x() + size.width() > right) {
      next = QPoint(sidePadding, next.y() + size.height() + spacing);
      ++row;
    }
    if (row == mostRows)
      break;
    places.emplace_back(next, size);
    next.rx() += size.width() + spacing;
  }
  return places;
}

void MacHashtagSuggestionsView::placeChips() {
  const std::vector<QRect> places = placement(width());
  m_shownCount = places.size();
  for (std::size_t index = 0; index < m_chips.size(); ++index) {
    const bool isShown = index < m_shownCount;
    if (isShown) {
      m_chips[index]->setGeometry(QStyle::visualRect(layoutDirection(), rect(), places[index]));
      m_chips[index]->explainWhenElided();
    }
    m_chips[index]->setVisible(isShown);
  }
}

int MacHashtagSuggestionsView::heightForWidth(int width) const {
  const std::vector<QRect> places = placement(width);
  return places.empty() ? 0 : places.back().bottom() + 1 + padding;
}

QSize MacHashtagSuggestionsView::sizeHint() const {
  int width = 2 * sidePadding;
  for (const Chip* chip : m_chips)
    width += chip->sizeHint().width() + (chip == m_chips.front() ? 0 : spacing);
  return {width, heightForWidth(width)};
}

QSize MacHashtagSuggestionsView::minimumSizeHint() const {
  return {0, m_chips.empty() ? 0 : m_chips.front()->sizeHint().height() + 2 * padding};
}

void MacHashtagSuggestionsView::resizeEvent(QResizeEvent*) {
  placeChips();
}

bool MacHashtagSuggestionsView::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::FocusIn)
    setTabStop(watched);
  else if (event->type() == QEvent::FocusOut && !m_chips.empty())
    setTabStop(m_chips.front());
  return QWidget::eventFilter(watched, event);
}

void MacHashtagSuggestionsView::setTabStop(const QObject* stop) {
  for (Chip* chip : m_chips)
    chip->setFocusPolicy(chip == stop ? Qt::TabFocus : Qt::NoFocus);
}

void MacHashtagSuggestionsView::keyPressEvent(QKeyEvent* event) {
  const bool isMirrored = layoutDirection() == Qt::RightToLeft;
  switch (event->key()) {
  case Qt::Key_Left:
    moveFocus(isMirrored ? 1 : -1);
    return;
  case Qt::Key_Right:
    moveFocus(isMirrored ? -1 : 1);
    return;
  case Qt::Key_Escape:
    Q_EMIT dismissed();
    return;
  default:
    QWidget::keyPressEvent(event);
  }
}

void MacHashtagSuggestionsView::moveFocus(std::ptrdiff_t step) {
  const auto focused = std::ranges::find_if(m_chips, &Chip::hasFocus);
  if (focused == m_chips.end())
    return;
  const std::ptrdiff_t last = static_cast<std::ptrdiff_t>(m_shownCount) - 1;
  const std::ptrdiff_t next = std::clamp(focused - m_chips.begin() + step, std::ptrdiff_t{0}, last);
  m_chips[static_cast<std::size_t>(next)]->setFocus(Qt::TabFocusReason);
}

} // namespace notlet
