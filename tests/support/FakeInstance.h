#pragma once

#include <sys/socket.h>

#include <array>
#include <filesystem>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "platform/Descriptor.h"
#include "platform/InstanceSocket.h"
#include "platform/LaunchMessage.h"

namespace notlet {

/// Stands in for the running program: listens at its socket and gives every request the same answer.
class FakeInstance {
 public:
  enum class Reads { wholeMessage, nothing };

  /// Without an answer the request is left waiting.
  explicit FakeInstance(const std::filesystem::path& socket, std::optional<std::string> answer = "+",
                        Reads reads = Reads::wholeMessage)
      : m_answer(std::move(answer)),
        m_reads(reads),
        m_listener(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    std::filesystem::create_directories(socket.parent_path());
    const SocketAddress address(socket);
    if (bind(m_listener.number(), address.data(), address.size()) != 0 ||
        listen(m_listener.number(), 16) != 0)
      throw std::runtime_error("no socket for the test");
    m_thread = std::thread([this] { serve(); });
  }
  ~FakeInstance() {
    shutdown(m_listener.number(), SHUT_RDWR); // Wakes the thread.
    m_thread.join();
  }
  FakeInstance(const FakeInstance&) = delete;
  FakeInstance& operator=(const FakeInstance&) = delete;

  [[nodiscard]] std::vector<LaunchRequest> requests() const {
    const std::lock_guard guard(m_mutex);
    return m_requests;
  }

 private:
  void serve() {
    std::vector<Descriptor> waiting;
    for (;;) {
      Descriptor connection(accept(m_listener.number(), nullptr, nullptr));
      if (!connection.isOpen())
        return;
      if (m_reads == Reads::wholeMessage)
        read(connection.number());
      if (m_answer)
        send(connection.number(), m_answer->data(), m_answer->size(), MSG_NOSIGNAL);
      else
        waiting.push_back(std::move(connection));
    }
  }

  void read(int connection) {
    LaunchMessageReader reader;
    std::array<char, 1000> portion{};
    for (;;) {
      const ssize_t count = recv(connection, portion.data(), portion.size(), 0);
      const auto request =
          reader.take({portion.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))});
      if (count <= 0 || !request)
        return;
      if (*request) {
        const std::lock_guard guard(m_mutex);
        m_requests.push_back(**request);
        return;
      }
    }
  }

  std::optional<std::string> m_answer;
  Reads m_reads;
  Descriptor m_listener;
  mutable std::mutex m_mutex;
  std::vector<LaunchRequest> m_requests;
  std::thread m_thread;
};

} // namespace notlet
