#pragma once

#include <filesystem>
#include <string>
#include <variant>
#include <vector>

namespace notlet {

/// A program of the user's choice that reads sound and writes words.
struct SpeechProgram {
  /// Its path and its options.
  std::vector<std::string> command;

  bool operator==(const SpeechProgram&) const = default;
};

/// A Vosk library and one of its models.
struct VoskModel {
  std::filesystem::path library;
  std::filesystem::path directory;

  bool operator==(const VoskModel&) const = default;
};

/// The three parts of a PocketSphinx model.
struct PocketSphinxModel {
  std::filesystem::path acoustics;
  std::filesystem::path language;
  std::filesystem::path dictionary;

  bool operator==(const PocketSphinxModel&) const = default;
};

/// What understands a language, found on disk and not loaded.
using SpeechModel = std::variant<SpeechProgram, VoskModel, PocketSphinxModel>;

} // namespace notlet
