#include "storage/MacStorage.h"

namespace notlet {
namespace {

constexpr std::chrono::seconds patience{2};

std::optional<std::filesystem::path>& sharedDirectory() {
  static std::optional<std::filesystem::path> directory;
  return directory;
}

} // namespace

MacStorage::MacStorage(const std::optional<std::filesystem::path>& dataDirectory, QObject* parent)
    : QObject(parent) {
  auto container = SharedModelContainer::prepare([&] { return dataDirectory; }, true, false);
  if (!container) {
    m_errorDescription = std::move(container.error().message);
    return;
  }
  m_container = std::move(*container);
  if (context()->isOpen())
    return;
  // A save may have opened it; whoever hears of it may put its screen away.
  connect(context(), &ModelContext::hasOpened, this, &MacStorage::stopWaiting, Qt::QueuedConnection);
  connect(context(), &ModelContext::storeFailed, this, &MacStorage::stopWaiting);
  connect(&m_patience, &QTimer::timeout, this, &MacStorage::changed);
  m_patience.setSingleShot(true);
  m_patience.start(patience);
}

void MacStorage::stopWaiting() {
  m_patience.stop();
  Q_EMIT changed();
}

SharedModelContainer* MacStorage::container() const {
  return m_container && context()->isOpen() ? m_container.get() : nullptr;
}

ModelContext* MacStorage::context() const {
  return m_container ? &m_container->mainContext() : nullptr;
}

std::optional<std::string> MacStorage::errorDescription() const {
  if (container())
    return std::nullopt;
  if (!m_container)
    return m_errorDescription;
  const std::optional<StoreError>& obstacle = context()->obstacle();
  return (obstacle ? obstacle->message : std::string()) +
         (context()->failure() ? "" : " Notlet goes on trying to open it.");
}

MacStorage& MacStorage::shared() {
  // Never destroyed: its timers and watches would outlive the application object that they need.
  static MacStorage& storage = *new MacStorage(sharedDirectory());
  return storage;
}

void MacStorage::setSharedDirectory(std::optional<std::filesystem::path> dataDirectory) {
  sharedDirectory() = std::move(dataDirectory);
}

} // namespace notlet
