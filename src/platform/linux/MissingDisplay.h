#pragma once

#include <QtGlobal>

namespace notlet {

/// While it lives, an application object that finds no display to show windows on ends the program with a
/// sentence on standard error and status 1, where Qt would abort. For the time of making that object; one at
/// a time.
class MissingDisplay {
 public:
  MissingDisplay();
  MissingDisplay(const MissingDisplay&) = delete;
  MissingDisplay& operator=(const MissingDisplay&) = delete;
  /// Lets Qt tell what it had to tell.
  ~MissingDisplay();

 private:
  QtMessageHandler m_before;
};

} // namespace notlet
