#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <memory>

namespace notlet {

/// Turns SIGTERM, SIGINT and SIGHUP into a signal on the event loop, so that the program can leave in order.
/// One object at a time.
class TerminationSignals : public QObject {
  Q_OBJECT

 public:
  /// Keeps the signals from interrupting this thread and all that it starts from now on. To be called before
  /// the first other thread starts; the signals then wait for an object of this class.
  static void block();

  explicit TerminationSignals(QObject* parent = nullptr);
  ~TerminationSignals() override;

 Q_SIGNALS:
  void received();

 private:
  int m_descriptor = -1;
  std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace notlet
