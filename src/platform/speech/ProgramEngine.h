#pragma once

#include <memory>

#include "platform/SpeechEngine.h"
#include "platform/SpeechModel.h"
#include "platform/speech/FilterProgram.h"
#include "platform/speech/Transcript.h"

namespace notlet {

/// A program of the user's choice, started for each dictation.
///
/// It reads sound on its standard input (signed 16 bit, little-endian, mono, 16,000 a second) until that
/// ends, and writes lines of JSON in UTF-8 on its standard output: `{"partial": "…"}` with its present
/// reading of the sentence being spoken, `{"final": "…"}` with its last one, which begins the next sentence.
/// Other lines mean nothing.
class ProgramEngine final : public SpeechEngine {
 public:
  explicit ProgramEngine(SpeechProgram program);

  Result<void> load() override { return {}; }
  Result<void> begin() override;
  Result<std::string> accept(AudioFrames frames) override;
  Result<std::string> finish() override;
  void abandon() override;

 private:
  void write();
  /// False when the program's output has ended.
  [[nodiscard]] bool read();
  void readLine(std::string_view line);
  [[nodiscard]] Error failed(const std::string& what) const;

  SpeechProgram m_command;
  std::unique_ptr<FilterProgram> m_program;
  /// Sound that the program has not taken yet.
  std::string m_sound;
  /// The beginning of a line.
  std::string m_output;
  bool m_isSkippingLine = false;
  Transcript m_transcript;
  std::string m_partial;
};

} // namespace notlet
