#pragma once

#include <QFile>
#include <QProcess>
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <vector>

#include "platform/AudioInput.h"
#include "support/TemporaryDirectory.h"

namespace notlet {

/// The text as a synthetic voice says it, with half a second of silence before and after.
inline std::vector<std::int16_t> spoken(const std::string& text) {
  const TemporaryDirectory directory;
  const QString file = QString::fromStdString(directory.path() / "speech.wav");
  if (QProcess::execute(QStringLiteral("flite"),
                        {QStringLiteral("-voice"), QStringLiteral("rms"), QStringLiteral("-t"),
                         QString::fromStdString(text), QStringLiteral("-o"), file}) != 0)
    throw std::runtime_error("flite does not speak");
  QFile sound(file);
  sound.open(QIODevice::ReadOnly);
  constexpr int header = 44;
  const QByteArray bytes = sound.readAll().mid(header);
  constexpr std::size_t silence = AudioInput::sampleRate / 2;
  std::vector<std::int16_t> frames(2 * silence +
                                   static_cast<std::size_t>(bytes.size()) / sizeof(std::int16_t));
  std::memcpy(frames.data() + silence, bytes.constData(), static_cast<std::size_t>(bytes.size()));
  return frames;
}

/// The same without any silence before and after.
inline std::vector<std::int16_t> spokenWithoutPause(const std::string& text) {
  std::vector<std::int16_t> sound = spoken(text);
  const auto isLoud = [](std::int16_t frame) { return std::abs(frame) > 300; };
  sound.erase(std::find_if(sound.rbegin(), sound.rend(), isLoud).base(), sound.end());
  sound.erase(sound.begin(), std::ranges::find_if(sound, isLoud));
  return sound;
}

} // namespace notlet
