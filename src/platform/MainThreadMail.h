#pragma once

#include <QObject>
#include <memory>
#include <mutex>
#include <vector>

namespace notlet {

/// Has those who have news on another thread tell them on the main thread.
class MainThreadMail : public QObject {
  Q_OBJECT

 public:
  /// Keeps its newest news until it is asked for them.
  class Sender {
   public:
    virtual ~Sender() = default;
    /// Tells the news, on the main thread.
    virtual void deliver() = 0;
  };

  /// From any thread, as long as this object is there.
  void post(std::weak_ptr<Sender> sender);

 private Q_SLOTS:
  void deliver();

 private:
  std::mutex m_mutex;
  std::vector<std::weak_ptr<Sender>> m_senders;
};

} // namespace notlet
