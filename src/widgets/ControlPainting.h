#pragma once

#include <QPainter>
#include <QStyleOption>

namespace notlet {

/// How NotletStyle paints the toolkit's own controls, from the roles of the palette. Rectangles are in
/// logical pixels; the painter comes back as it was.
namespace ControlPainting {

inline constexpr double fieldRadius = 9;
/// The least height of whatever is a field or a button.
inline constexpr int controlHeight = 32;
/// Between the edge of a field and what is in it.
inline constexpr int fieldPadding = 8;
/// The part of a spin or combo box with the chevrons.
inline constexpr int chevronWidth = 24;
/// The side of a box to tick.
inline constexpr int boxSide = 18;

/// A field to type in, with a ring around it while it has the keyboard.
void paintField(QPainter& painter, const QStyleOption& field);
void paintCheckBox(QPainter& painter, const QStyleOption& box);
/// A button, or a box of choices that looks like one.
void paintButton(QPainter& painter, const QStyleOption& button, bool isDefault);
/// A button without a ground of its own until it is touched or on.
void paintToolButton(QPainter& painter, const QStyleOption& button);
void paintTab(QPainter& painter, const QStyleOption& tab);
/// One item of a menu, all of it: ground, symbol, text, shortcut and what tells of its kind.
void paintMenuItem(QPainter& painter, const QStyleOptionMenuItem& item);
/// The ground of a menu and its outline.
void paintMenu(QPainter& painter, const QStyleOption& menu);
/// The heading of a column.
void paintHeader(QPainter& painter, const QStyleOption& header);
/// A small arrow without a shaft.
void paintChevron(QPainter& painter, const QRect& area, Qt::ArrowType direction, const QColor& color);

} // namespace ControlPainting

} // namespace notlet
