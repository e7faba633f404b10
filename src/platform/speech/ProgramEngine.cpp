#include "platform/speech/ProgramEngine.h"

#include <algorithm>

#include "platform/JsonText.h"

namespace notlet {

namespace {

using namespace std::chrono_literals;

constexpr std::size_t bytesPerSecond = std::size_t{AudioInput::sampleRate} * sizeof(std::int16_t);
/// A program may load its model first, but it has to begin some time.
constexpr std::size_t mostSound = 30 * bytesPerSecond;
/// Far more than anybody says.
constexpr std::size_t longestLine = std::size_t{64} << 10;
constexpr std::size_t longestText = std::size_t{1} << 20;
/// Read at a time, so that a program that never stops writing does not keep the sound waiting.
constexpr int mostReadings = 4;
/// For the last words, once the sound has ended.
constexpr auto timeToFinish = 5s;

/// Lines and controls within a reading would become part of the user's text.
std::string plainText(std::string text) {
  std::ranges::replace_if(text, [](unsigned char byte) { return byte < ' ' || byte == 0x7f; }, ' ');
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string::npos)
    return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

} // namespace

ProgramEngine::ProgramEngine(SpeechProgram program) : m_command(std::move(program)) {
}

Error ProgramEngine::failed(const std::string& what) const {
  return {"The speech program " + m_command.command.front() + " cannot be used: " + what + "."};
}

Result<void> ProgramEngine::begin() {
  m_sound.clear();
  m_output.clear();
  m_isSkippingLine = false;
  m_transcript.clear();
  m_partial.clear();
  auto started = FilterProgram::start(m_command.command);
  if (!started)
    return std::unexpected(started.error());
  m_program = std::move(*started);
  return {};
}

Result<std::string> ProgramEngine::accept(AudioFrames frames) {
  m_sound.append(reinterpret_cast<const char*>(frames.data()), frames.size_bytes());
  write();
  if (!read())
    return std::unexpected(failed(m_program->fate()));
  if (m_sound.size() > mostSound)
    return std::unexpected(failed("it does not read the sound"));
  if (m_transcript.standing().size() > longestText)
    return std::unexpected(failed("it writes more than anybody can say"));
  return m_transcript.with(m_partial);
}

Result<std::string> ProgramEngine::finish() {
  const auto deadline = std::chrono::steady_clock::now() + timeToFinish;
  bool isWriting = true;
  while (isWriting && std::chrono::steady_clock::now() < deadline) {
    write();
    if (m_sound.empty())
      m_program->closeInput();
    isWriting = read();
    if (isWriting)
      m_program->wait(!m_sound.empty(), 50ms);
  }
  m_program.reset();
  return m_transcript.with(m_partial);
}

void ProgramEngine::abandon() {
  m_program.reset();
}

void ProgramEngine::write() {
  m_sound.erase(0, m_program->write(m_sound));
}

bool ProgramEngine::read() {
  for (int readings = 0; readings < mostReadings; ++readings) {
    const auto reading = m_program->read(m_output);
    std::size_t begin = 0;
    for (std::size_t end; (end = m_output.find('\n', begin)) != std::string::npos; begin = end + 1)
      if (!std::exchange(m_isSkippingLine, false))
        readLine(std::string_view(m_output).substr(begin, end - begin));
    m_output.erase(0, begin);
    if (m_output.size() > longestLine) {
      m_output.clear();
      m_isSkippingLine = true;
    }
    if (reading != FilterProgram::Reading::some)
      return reading != FilterProgram::Reading::ended;
  }
  return true;
}

void ProgramEngine::readLine(std::string_view line) {
  // Most of what means nothing is told without being read.
  const std::size_t first = line.find_first_not_of(" \t");
  if (first == std::string_view::npos || line[first] != '{')
    return;
  const auto json = parseJsonText(line, longestLine);
  if (!json || !json->is_object())
    return;
  if (const auto partial = json->find("partial"); partial != json->end() && partial->is_string())
    m_partial = plainText(partial->get<std::string>());
  if (const auto last = json->find("final"); last != json->end() && last->is_string()) {
    m_transcript.commit(plainText(last->get<std::string>()));
    m_partial.clear();
  }
}

} // namespace notlet
