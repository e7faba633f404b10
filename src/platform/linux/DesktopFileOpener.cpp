#include "platform/linux/DesktopFileOpener.h"

#include <QDesktopServices>
#include <QString>
#include <QUrl>

namespace notlet {

Result<void> DesktopFileOpener::open(const std::filesystem::path& file) {
  const QString path = QString::fromStdString(file.string());
  if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
    return failure("No application was found that opens “" + file.string() + "”.");
  return {};
}

} // namespace notlet
