#include "support/VirtualDisplay.h"

#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "support/X11Client.h"

namespace notlet {

namespace {

[[noreturn]] void giveUp(const char* message) {
  std::fprintf(stderr, "%s\n", message);
  std::exit(1);
}

/// What the server writes once it takes connections.
std::string readNumber(int descriptor) {
  std::string number;
  char digit = 0;
  while (read(descriptor, &digit, 1) == 1 && digit != '\n')
    number += digit;
  return number;
}

} // namespace

VirtualDisplay::VirtualDisplay(std::vector<std::string> serverCommand) {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0)
    giveUp("There is no pipe to the X server.");
  serverCommand.insert(serverCommand.end(), {"-displayfd", std::to_string(ends[1])});
  m_server = std::make_unique<ChildProcess>(serverCommand);
  close(ends[1]);
  const std::string number = readNumber(ends[0]);
  close(ends[0]);
  if (number.empty())
    giveUp("The X server did not start.");
  m_name = ":" + number;
}

void VirtualDisplay::startWindowManager() {
  setenv("DISPLAY", m_name.c_str(), 1);
  m_windowManager = std::make_unique<ChildProcess>(std::vector<std::string>{"openbox"});
  const X11Client client(m_name);
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!client.hasWindowManager())
    if (std::chrono::steady_clock::now() > deadline)
      giveUp("The window manager did not start.");
}

void VirtualDisplay::stopWindowManager() {
  m_windowManager.reset();
}

void VirtualDisplay::killServer() {
  m_server->signal(SIGKILL);
  m_server->wait();
}

} // namespace notlet
