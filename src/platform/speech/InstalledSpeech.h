#pragma once

#include <filesystem>
#include <mutex>

#include "platform/Places.h"
#include "platform/SpeechBackend.h"
#include "platform/speech/SpeechModels.h"
#include "platform/speech/SpeechParts.h"

namespace notlet {

/// The microphone and the engines of this installation, whose library is loaded when somebody first dictates.
class InstalledSpeech final : public SpeechBackend {
 public:
  /// `library` is the one for dictation.
  InstalledSpeech(const Places& places, std::filesystem::path library);
  InstalledSpeech(SpeechModels models, std::filesystem::path library);

  /// Where the library lies: beside the program in a build tree, else where it was installed with the
  /// program.
  [[nodiscard]] static std::filesystem::path libraryOf(const std::filesystem::path& programDirectory);

  [[nodiscard]] Result<std::optional<SpeechModel>> modelFor(const std::string& language) const override;
  [[nodiscard]] Result<std::unique_ptr<AudioInput>> makeAudioInput() override;
  [[nodiscard]] Result<std::unique_ptr<SpeechEngine>> makeEngine(const SpeechModel& model) override;

 private:
  [[nodiscard]] Result<const SpeechParts*> parts();

  SpeechModels m_models;
  std::filesystem::path m_library;
  std::mutex m_mutex;
  const SpeechParts* m_parts = nullptr;
};

} // namespace notlet
