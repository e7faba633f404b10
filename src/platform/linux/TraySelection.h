#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <cstdint>

struct xcb_connection_t;

namespace notlet {

/// Whether a tray of the X server's kind (XEmbed) is there: whoever owns the selection `_NET_SYSTEM_TRAY_S0`.
/// On other window systems there is none.
class TraySelection : public QObject, public QAbstractNativeEventFilter {
  Q_OBJECT

 public:
  explicit TraySelection(QObject* parent = nullptr);
  ~TraySelection() override;

  void start();
  [[nodiscard]] bool isOwned() const { return m_owner != 0; }

  bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

 Q_SIGNALS:
  /// When one tray takes over from another it comes twice, without an owner in between.
  void changed();

 private:
  void watchOwner(xcb_connection_t* connection);
  void setOwner(std::uint32_t owner);

  std::uint32_t m_selection = 0;
  std::uint32_t m_owner = 0;
  /// The number of XFixes' event about selections; 0 while not listening.
  int m_eventNumber = 0;
};

} // namespace notlet
