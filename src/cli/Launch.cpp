#include "cli/Launch.h"

#include <optional>

#include "cli/DesktopProgram.h"
#include "core/Text.h"
#include "platform/InstanceSocket.h"

namespace notlet {
namespace {

CommandResult<LaunchRequest> requestFor(const CommandLine& line) {
  for (const std::string& link : line.words) {
    if (!isValidUtf8(link))
      return commandFailure("The link is not UTF-8.");
    if (!link.starts_with("notlet:"))
      return usageFailure(inQuotes(link) + " is not a link that begins with “notlet:”; nothing was opened.");
  }
  const auto kind = line.verb == Verb::Capture ? LaunchRequest::Kind::capture
                    : line.verb == Verb::Open  ? LaunchRequest::Kind::open
                                               : LaunchRequest::Kind::activate;
  return LaunchRequest{kind, line.words, activationTokenFromEnvironment()};
}

CommandResult<HandOver> handToRunning(const LaunchRequest& request) {
  for (const auto& directory : instanceDirectories(Places::fromEnvironment()))
    if (const auto outcome = handOver(request, instanceSocket(directory));
        !outcome || *outcome == HandOver::accepted)
      return outcome;
  return HandOver::nobodyThere;
}

} // namespace

CommandResult<void> launch(const CommandLine& line) {
  const CommandResult<LaunchRequest> request = requestFor(line);
  if (!request)
    return std::unexpected(request.error());
  const CommandResult<HandOver> handedOver = handToRunning(*request);
  if (!handedOver)
    return std::unexpected(handedOver.error());
  if (*handedOver == HandOver::accepted)
    return {};
  return startDesktopProgram(*request);
}

} // namespace notlet
