#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>
#include <chrono>
#include <string_view>

#include "platform/Descriptor.h"
#include "platform/LaunchMessage.h"
#include "platform/LaunchRequest.h"

namespace notlet {

/// A later start that is telling over a connection what it wants. Reads as the bytes come, never waits for
/// them, and hangs up with an answer as soon as the message is whole, cannot be one, or takes too long.
class LaunchPeer : public QObject {
  Q_OBJECT

 public:
  /// Takes over a connection that does not block.
  LaunchPeer(Descriptor connection, std::chrono::milliseconds patience, QObject* parent);

  /// Hangs up, telling why.
  void refuse(std::string_view reason);

 Q_SIGNALS:
  /// After hanging up.
  void received(const notlet::LaunchRequest& request);
  /// The connection is closed; comes once, before `received`.
  void ended();

 private:
  void read();
  void take(std::string_view bytes);
  void answer(std::string_view text);
  void hangUp();

  Descriptor m_connection;
  LaunchMessageReader m_reader;
  QSocketNotifier m_notifier;
  QTimer m_limit;
};

} // namespace notlet
