#include "platform/speech/InstalledSpeech.h"

#include <dlfcn.h>

namespace notlet {

namespace {

SpeechModels modelsIn(const Places& places) {
  SpeechModels::Places files;
  if (places.settings)
    files.settings = *places.settings / "speech.json";
  if (places.data)
    files.brought = *places.data / "speech";
  return SpeechModels(std::move(files));
}

} // namespace

InstalledSpeech::InstalledSpeech(const Places& places, std::filesystem::path library)
    : InstalledSpeech(modelsIn(places), std::move(library)) {
}

InstalledSpeech::InstalledSpeech(SpeechModels models, std::filesystem::path library)
    : m_models(std::move(models)), m_library(std::move(library)) {
}

std::filesystem::path InstalledSpeech::libraryOf(const std::filesystem::path& programDirectory) {
  std::filesystem::path beside = programDirectory / NOTLET_SPEECH_LIBRARY;
  if (std::error_code ignored; std::filesystem::exists(beside, ignored))
    return beside;
  return programDirectory / NOTLET_PROGRAM_TO_LIBRARIES / NOTLET_SPEECH_LIBRARY;
}

Result<std::optional<SpeechModel>> InstalledSpeech::modelFor(const std::string& language) const {
  return m_models.find(language);
}

Result<std::unique_ptr<AudioInput>> InstalledSpeech::makeAudioInput() {
  const auto loaded = parts();
  if (!loaded)
    return std::unexpected(loaded.error());
  return (*loaded)->makeAudioInput();
}

Result<std::unique_ptr<SpeechEngine>> InstalledSpeech::makeEngine(const SpeechModel& model) {
  const auto loaded = parts();
  if (!loaded)
    return std::unexpected(loaded.error());
  return (*loaded)->makeEngine(model);
}

Result<const SpeechParts*> InstalledSpeech::parts() {
  const std::lock_guard lock(m_mutex);
  if (m_parts != nullptr)
    return m_parts;
  // It stays: the libraries that it brings along do not take well to being unloaded.
  void* library = dlopen(m_library.c_str(), RTLD_NOW | RTLD_LOCAL);
  const auto function = library == nullptr
                            ? nullptr
                            : reinterpret_cast<SpeechPartsFunction>(dlsym(library, speechPartsFunctionName));
  if (function == nullptr)
    return failure("Dictation is not installed completely: " + std::string(dlerror()) + ".");
  m_parts = function();
  return m_parts;
}

} // namespace notlet
