#pragma once

#include <string_view>

namespace notlet {

/// Desktop widgets that show notlets outside the program.
class WidgetTimelines {
 public:
  virtual ~WidgetTimelines() = default;
  /// Asks the widgets of one kind to read the store again.
  virtual void reload(std::string_view kind) = 0;
};

} // namespace notlet
