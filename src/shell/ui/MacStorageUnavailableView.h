#pragma once

#include <QWidget>
#include <optional>
#include <string>

namespace notlet {

/// Stands in for a window's content when the notes could not be opened, and says why.
class MacStorageUnavailableView : public QWidget {
  Q_OBJECT

 public:
  explicit MacStorageUnavailableView(const std::optional<std::string>& errorDescription,
                                     QWidget* parent = nullptr);
};

} // namespace notlet
