#pragma once

#include <string>
#include <vector>

#include "platform/WidgetTimelines.h"

namespace notlet {

/// Notes which kinds of widgets it was asked to reload.
class FakeWidgetTimelines final : public WidgetTimelines {
 public:
  void reload(std::string_view kind) override { reloaded.emplace_back(kind); }

  std::vector<std::string> reloaded;
};

} // namespace notlet
