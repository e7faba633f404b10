#pragma once

#include <QMargins>
#include <QPixmap>
#include <QRectF>
#include <QSize>

namespace notlet {

/// The soft shadow of a rounded shape. It needs no more room than windows keep from the edges of the screen,
/// so no desktop has a reason to move a window for its shadow's sake.
namespace WindowShadow {

/// What it takes around the shape, in logical pixels.
inline constexpr QMargins room{8, 8, 8, 8};

/// The shadow in a picture of that size; all in logical pixels but the ratio, which is the picture's.
[[nodiscard]] QPixmap picture(const QSize& size, const QRectF& shape, double radius, double ratio);

} // namespace WindowShadow

} // namespace notlet
