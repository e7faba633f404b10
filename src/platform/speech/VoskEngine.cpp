#include "platform/speech/VoskEngine.h"

#include <dlfcn.h>

#include "platform/JsonText.h"
#include "platform/speech/VoskFiles.h"

namespace notlet {

namespace {

/// Far more than anybody says in one sentence.
constexpr std::size_t largestAnswer = std::size_t{1} << 20;

/// The text under the key of one of the library's answers; empty when there is none.
std::string textOf(const char* answer, const char* key) {
  const auto json = parseJsonText(answer == nullptr ? "" : answer, largestAnswer);
  if (!json || !json->is_object() || !json->contains(key) || !json->at(key).is_string())
    return {};
  return json->at(key).get<std::string>();
}

} // namespace

Result<void> VoskEngine::Library::open(const std::filesystem::path& file) {
  // It stays open: the libraries that it brings along do not take well to being unloaded.
  void* handle = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr)
    return failure("The speech library could not be opened: " + std::string(dlerror()) + ".");
  std::string missing;
  const auto find = [&](auto& function, const char* name) {
    function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(dlsym(handle, name));
    if (function == nullptr)
      missing = name;
  };
  find(vosk_set_log_level, "vosk_set_log_level");
  find(vosk_model_new, "vosk_model_new");
  find(vosk_model_free, "vosk_model_free");
  find(vosk_recognizer_new, "vosk_recognizer_new");
  find(vosk_recognizer_free, "vosk_recognizer_free");
  find(vosk_recognizer_reset, "vosk_recognizer_reset");
  find(vosk_recognizer_accept_waveform_s, "vosk_recognizer_accept_waveform_s");
  find(vosk_recognizer_result, "vosk_recognizer_result");
  find(vosk_recognizer_partial_result, "vosk_recognizer_partial_result");
  find(vosk_recognizer_final_result, "vosk_recognizer_final_result");
  if (!missing.empty())
    return failure("The speech library " + file.string() + " is no Vosk library: it has no “" + missing +
                   "”.");
  return {};
}

VoskEngine::VoskEngine(VoskModel model) : m_files(std::move(model)) {
}

VoskEngine::~VoskEngine() {
  if (m_recognizer != nullptr)
    m_library.vosk_recognizer_free(m_recognizer);
  if (m_model != nullptr)
    m_library.vosk_model_free(m_model);
}

Result<void> VoskEngine::load() {
  // Once more: the files may have changed since they were chosen, and the library ends the program over some.
  if (auto checked = checkVoskLibrary(m_files.library); !checked)
    return checked;
  if (auto checked = checkVoskModel(m_files.directory); !checked)
    return checked;
  if (auto opened = m_library.open(m_files.library); !opened)
    return opened;
  m_library.vosk_set_log_level(-1);
  m_model = m_library.vosk_model_new(m_files.directory.c_str());
  if (m_model != nullptr)
    m_recognizer = m_library.vosk_recognizer_new(m_model, AudioInput::sampleRate);
  if (m_recognizer == nullptr)
    return failure("The speech model in " + m_files.directory.string() + " could not be loaded.");
  return {};
}

Result<void> VoskEngine::begin() {
  m_transcript.clear();
  m_library.vosk_recognizer_reset(m_recognizer);
  return {};
}

Result<std::string> VoskEngine::accept(AudioFrames frames) {
  const int answer = m_library.vosk_recognizer_accept_waveform_s(m_recognizer, frames.data(),
                                                                 static_cast<int>(frames.size()));
  if (answer < 0)
    return failure("The speech recogniser stopped working.");
  if (answer == 0)
    return m_transcript.with(textOf(m_library.vosk_recognizer_partial_result(m_recognizer), "partial"));
  m_transcript.commit(textOf(m_library.vosk_recognizer_result(m_recognizer), "text"));
  return m_transcript.standing();
}

Result<std::string> VoskEngine::finish() {
  m_transcript.commit(textOf(m_library.vosk_recognizer_final_result(m_recognizer), "text"));
  return m_transcript.standing();
}

void VoskEngine::abandon() {
  m_library.vosk_recognizer_reset(m_recognizer);
}

} // namespace notlet
