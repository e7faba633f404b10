#include "platform/LaunchMessage.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

namespace notlet {

namespace {

constexpr std::string_view mark = "NLT1";
constexpr std::size_t lengthBytes = 4;
constexpr std::size_t headerBytes = mark.size() + lengthBytes;
constexpr unsigned bitsPerByte = 8;
constexpr char fieldEnd = '\0';

using Kind = LaunchRequest::Kind;
constexpr std::array<std::pair<Kind, std::string_view>, 3> kindNames{{
    {Kind::activate, "activate"},
    {Kind::capture, "capture"},
    {Kind::open, "open"},
}};

std::unexpected<Error> tooLong() {
  return failure("The links are too long: Notlet takes at most 4 MB of them at a time.");
}

std::unexpected<Error> tooMany() {
  return failure("There are too many links: Notlet takes at most " + std::to_string(launchLinkLimit) +
                 " of them at a time.");
}

std::unexpected<Error> notUnderstood() {
  return failure("The message is none that this version of Notlet understands.");
}

std::string lengthText(std::size_t length) {
  std::string bytes;
  for (std::size_t index = lengthBytes; index-- > 0;)
    bytes.push_back(static_cast<char>(length >> (bitsPerByte * index)));
  return bytes;
}

std::size_t lengthIn(std::string_view bytes) {
  std::size_t length = 0;
  for (const char byte : bytes)
    length = length << bitsPerByte | static_cast<std::uint8_t>(byte);
  return length;
}

/// Takes the next field away from the front of the fields; nothing when none is complete.
std::optional<std::string_view> takeField(std::string_view& fields) {
  const std::size_t end = fields.find(fieldEnd);
  if (end == std::string_view::npos)
    return std::nullopt;
  const std::string_view field = fields.substr(0, end);
  fields.remove_prefix(end + 1);
  return field;
}

Result<std::optional<LaunchRequest>> decode(std::string_view fields) {
  const std::optional<std::string_view> name = takeField(fields);
  const std::optional<std::string_view> token = takeField(fields);
  if (!name || !token)
    return notUnderstood();
  const auto* kind = std::ranges::find(kindNames, *name, &std::pair<Kind, std::string_view>::second);
  if (kind == kindNames.end())
    return notUnderstood();
  LaunchRequest request{kind->first, {}, std::string(*token)};
  while (!fields.empty()) {
    const std::optional<std::string_view> link = takeField(fields);
    if (!link || link->empty())
      return notUnderstood();
    if (request.urls.size() == launchLinkLimit)
      return tooMany();
    request.urls.emplace_back(*link);
  }
  if (request.urls.empty() == (request.kind == Kind::open))
    return notUnderstood();
  return request;
}

} // namespace

Result<std::string> encodeLaunchMessage(const LaunchRequest& request) {
  if (request.urls.size() > launchLinkLimit)
    return tooMany();
  std::string fields;
  bool endsInside = false;
  const auto add = [&](std::string_view field) {
    endsInside |= field.find(fieldEnd) != std::string_view::npos;
    fields.append(field).push_back(fieldEnd);
  };
  add(std::ranges::find(kindNames, request.kind, &std::pair<Kind, std::string_view>::first)->second);
  add(request.activationToken);
  for (const std::string& link : request.urls)
    add(link);
  if (endsInside)
    return failure("A link cannot have a NUL character inside.");
  if (headerBytes + fields.size() > launchMessageLimit)
    return tooLong();
  return std::string(mark) + lengthText(fields.size()) + fields;
}

Result<std::optional<LaunchRequest>> LaunchMessageReader::take(std::string_view bytes) {
  m_received.append(bytes);
  const std::string_view received = m_received;
  if (!mark.starts_with(received.substr(0, mark.size())))
    return notUnderstood();
  if (received.size() < headerBytes)
    return std::nullopt;
  const std::size_t length = lengthIn(received.substr(mark.size(), lengthBytes));
  if (length > launchMessageLimit - headerBytes)
    return tooLong();
  const std::string_view fields = received.substr(headerBytes);
  if (fields.size() > length)
    return notUnderstood();
  return fields.size() < length ? std::nullopt : decode(fields);
}

} // namespace notlet
