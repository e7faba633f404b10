#include "widgets/SymbolIcon.h"

#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

// Resources of a static library are left out of the program unless they are asked for, outside any namespace.
static void loadIcons() {
  Q_INIT_RESOURCE(icons);
}

namespace notlet {

namespace {

QString fileName(Symbol symbol) {
  switch (symbol) {
  case Symbol::archivebox:
    return QStringLiteral("archivebox");
  case Symbol::arrowUpCircleFill:
    return QStringLiteral("arrow-up-circle-fill");
  case Symbol::checkmark:
    return QStringLiteral("checkmark");
  case Symbol::checkmarkCircleFill:
    return QStringLiteral("checkmark-circle-fill");
  case Symbol::circleCircle:
    return QStringLiteral("circle-circle");
  case Symbol::ellipsisCircle:
    return QStringLiteral("ellipsis-circle");
  case Symbol::externaldriveBadgeExclamationmark:
    return QStringLiteral("externaldrive-badge-exclamationmark");
  case Symbol::keyboard:
    return QStringLiteral("keyboard");
  case Symbol::macwindow:
    return QStringLiteral("macwindow");
  case Symbol::magnifyingglass:
    return QStringLiteral("magnifyingglass");
  case Symbol::mic:
    return QStringLiteral("mic");
  case Symbol::micFill:
    return QStringLiteral("mic-fill");
  case Symbol::paintpalette:
    return QStringLiteral("paintpalette");
  case Symbol::pencil:
    return QStringLiteral("pencil");
  case Symbol::plus:
    return QStringLiteral("plus");
  case Symbol::squareAndArrowDown:
    return QStringLiteral("square-and-arrow-down");
  case Symbol::squareAndArrowUp:
    return QStringLiteral("square-and-arrow-up");
  case Symbol::squareAndPencil:
    return QStringLiteral("square-and-pencil");
  case Symbol::trash:
    return QStringLiteral("trash");
  case Symbol::xmarkCircleFill:
    return QStringLiteral("xmark-circle-fill");
  }
  return {};
}

QPixmap render(Symbol symbol, int pixels, const QColor& color) {
  loadIcons();
  QPixmap pixmap(pixels, pixels);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  QSvgRenderer(QStringLiteral(":/icons/%1.svg").arg(fileName(symbol))).render(&painter);
  painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
  painter.fillRect(pixmap.rect(), color);
  return pixmap;
}

class TintedIconEngine : public QIconEngine {
 public:
  TintedIconEngine(Symbol symbol, const QColor& color) : m_symbol(symbol), m_color(color) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
    paintSymbol(*painter, m_symbol, rect, colorFor(mode));
  }
  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State) override {
    return symbolPixmap(m_symbol, qMin(size.width(), size.height()), colorFor(mode), 1);
  }
  QIconEngine* clone() const override { return new TintedIconEngine(m_symbol, m_color); }

 private:
  [[nodiscard]] QColor colorFor(QIcon::Mode mode) const {
    QColor color = m_color;
    if (mode == QIcon::Disabled)
      color.setAlphaF(color.alphaF() * 0.4F);
    return color;
  }

  Symbol m_symbol;
  QColor m_color;
};

} // namespace

QPixmap symbolPixmap(Symbol symbol, int side, const QColor& color, qreal devicePixelRatio) {
  const int pixels = qRound(side * devicePixelRatio);
  const QString key = QStringLiteral("symbol-%1-%2-%3")
                          .arg(static_cast<int>(symbol))
                          .arg(pixels)
                          .arg(color.rgba(), 8, 16, QLatin1Char('0'));
  QPixmap pixmap;
  if (!QPixmapCache::find(key, &pixmap)) {
    pixmap = render(symbol, pixels, color);
    QPixmapCache::insert(key, pixmap);
  }
  pixmap.setDevicePixelRatio(devicePixelRatio);
  return pixmap;
}

void paintSymbol(QPainter& painter, Symbol symbol, const QRect& rect, const QColor& color) {
  const int side = qMin(rect.width(), rect.height());
  QRect square(0, 0, side, side);
  square.moveCenter(rect.center());
  painter.drawPixmap(square.topLeft(),
                     symbolPixmap(symbol, side, color, painter.device()->devicePixelRatioF()));
}

QIcon symbolQIcon(Symbol symbol, const QColor& color) {
  return QIcon(new TintedIconEngine(symbol, color));
}

SymbolIcon::SymbolIcon(Symbol symbol, int side, QPalette::ColorRole role, QWidget* parent)
    : QWidget(parent), m_symbol(symbol), m_role(role) {
  setFixedSize(side, side);
  setAttribute(Qt::WA_TransparentForMouseEvents);
}

void SymbolIcon::setSymbol(Symbol symbol) {
  m_symbol = symbol;
  update();
}

void SymbolIcon::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  paintSymbol(painter, m_symbol, rect(), palette().color(m_role));
}

} // namespace notlet
