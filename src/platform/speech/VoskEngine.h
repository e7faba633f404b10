#pragma once

#include "platform/SpeechEngine.h"
#include "platform/SpeechModel.h"
#include "platform/speech/Transcript.h"

namespace notlet {

/// A Vosk library and model that the user has brought.
class VoskEngine final : public SpeechEngine {
 public:
  explicit VoskEngine(VoskModel model);
  VoskEngine(const VoskEngine&) = delete;
  VoskEngine& operator=(const VoskEngine&) = delete;
  ~VoskEngine() override;

  Result<void> load() override;
  Result<void> begin() override;
  Result<std::string> accept(AudioFrames frames) override;
  Result<std::string> finish() override;
  void abandon() override;

 private:
  /// The library's functions, which have been the same since its version 0.3.
  struct Library {
    void (*vosk_set_log_level)(int) = nullptr;
    void* (*vosk_model_new)(const char*) = nullptr;
    void (*vosk_model_free)(void*) = nullptr;
    void* (*vosk_recognizer_new)(void*, float) = nullptr;
    void (*vosk_recognizer_free)(void*) = nullptr;
    void (*vosk_recognizer_reset)(void*) = nullptr;
    int (*vosk_recognizer_accept_waveform_s)(void*, const short*, int) = nullptr;
    const char* (*vosk_recognizer_result)(void*) = nullptr;
    const char* (*vosk_recognizer_partial_result)(void*) = nullptr;
    const char* (*vosk_recognizer_final_result)(void*) = nullptr;

    [[nodiscard]] Result<void> open(const std::filesystem::path& file);
  };

  VoskModel m_files;
  Library m_library;
  void* m_model = nullptr;
  void* m_recognizer = nullptr;
  Transcript m_transcript;
};

} // namespace notlet
