#pragma once

#include <string>

#include "platform/Defaults.h"
#include "platform/DesktopCapabilities.h"

namespace notlet {

/// Tells what the desktop keeps the program's windows from, until the user has read it.
class DesktopLimits {
 public:
  /// The defaults must outlive this object.
  explicit DesktopLimits(Defaults& defaults) : m_defaults(defaults) {}

  /// A whole sentence (UTF-8); empty when there is nothing to tell.
  [[nodiscard]] std::string notice(const DesktopCapabilities& capabilities) const;
  /// To be called when the user has put the notice away.
  void noteRead();

 private:
  Defaults& m_defaults;
};

} // namespace notlet
