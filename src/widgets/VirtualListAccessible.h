#pragma once

#include <cstddef>

namespace notlet {

class VirtualListView;

/// Shows a VirtualListView to assistive technology: a list whose items are the rows on the screen. The row
/// widget is the item of its row.
namespace VirtualListAccessible {

/// Makes the lists of the program known; more than one call does no more.
void install();
/// The rows have other numbers now.
void forgetRows(VirtualListView* list);
void announceCurrentRow(VirtualListView* list);

} // namespace VirtualListAccessible

} // namespace notlet
