#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "core/Error.h"
#include "platform/SpeechModel.h"

namespace notlet {

/// Finds what understands a language, by looking at files only: the program in the user's settings, a Vosk
/// model that the user has brought, the installed PocketSphinx model for English.
class SpeechModels {
 public:
  struct Places {
    /// `{"program": ["/path/to/recogniser", "--option"], "language": "en"}`; without a language it is for
    /// all.
    std::optional<std::filesystem::path> settings;
    /// The folder with the Vosk library and models.
    std::optional<std::filesystem::path> brought;
    std::filesystem::path installed = "/usr/share/pocketsphinx/model/en-us";
  };

  explicit SpeechModels(Places places);

  /// For a language tag such as "en-US"; nothing when there is nothing for it. An error when what the user
  /// set up for it cannot be used.
  [[nodiscard]] Result<std::optional<SpeechModel>> find(const std::string& language) const;

 private:
  [[nodiscard]] Result<std::optional<SpeechModel>> findProgram(const std::string& language) const;
  [[nodiscard]] Result<std::optional<SpeechModel>> findBrought(const std::string& language) const;
  [[nodiscard]] std::optional<SpeechModel> findInstalled(const std::string& language) const;

  Places m_places;
};

} // namespace notlet
