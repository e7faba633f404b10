#include "platform/speech/SpeechModels.h"

#include <unistd.h>

#include <algorithm>

#include "platform/DurableFile.h"
#include "platform/JsonText.h"
#include "platform/speech/LanguageTag.h"
#include "platform/speech/VoskFiles.h"

namespace notlet {

namespace {

namespace fs = std::filesystem;
using Found = Result<std::optional<SpeechModel>>;

constexpr std::size_t largestSettings = std::size_t{64} << 10;
constexpr const char* libraryName = "libvosk.so";

/// The folders in the folder, by name, so that the same one is chosen each time.
std::vector<fs::path> foldersIn(const fs::path& directory) {
  std::vector<fs::path> folders;
  std::error_code error;
  for (fs::directory_iterator entry(directory, error), end; !error && entry != end; entry.increment(error))
    if (std::error_code ignored; entry->is_directory(ignored))
      folders.push_back(entry->path());
  std::ranges::sort(folders);
  return folders;
}

/// The library, in the folder itself or in the one that its archive unpacks to; the former when there is
/// none.
fs::path libraryIn(const fs::path& directory, const std::vector<fs::path>& folders) {
  std::error_code ignored;
  if (!fs::exists(directory / libraryName, ignored))
    for (const fs::path& folder : folders)
      if (fs::exists(folder / libraryName, ignored))
        return folder / libraryName;
  return directory / libraryName;
}

Found unusable(const fs::path& settings, const std::string& reason) {
  return failure("Dictation cannot use " + settings.string() + ": " + reason);
}

} // namespace

SpeechModels::SpeechModels(Places places) : m_places(std::move(places)) {
}

Found SpeechModels::find(const std::string& language) const {
  if (auto found = findProgram(language); !found || *found)
    return found;
  if (auto found = findBrought(language); !found || *found)
    return found;
  return findInstalled(language);
}

Found SpeechModels::findProgram(const std::string& language) const {
  if (!m_places.settings)
    return std::nullopt;
  const fs::path& file = *m_places.settings;
  const auto reading = readWholeFile(file, largestSettings);
  if (!reading)
    return std::unexpected(reading.error());
  const std::optional<std::string>& contents = *reading;
  if (!contents)
    return std::nullopt;
  const auto json = parseJsonText(*contents, largestSettings);
  if (!json)
    return unusable(file, json.error().message);
  try {
    if (!json->is_object() || !json->contains("program"))
      return unusable(file, "It names no \"program\".");
    SpeechProgram program{json->at("program").get<std::vector<std::string>>()};
    if (json->contains("language") &&
        !LanguageTag(json->at("language").get<std::string>()).covers(LanguageTag(language)))
      return std::nullopt;
    if (program.command.empty() || !fs::path(program.command.front()).is_absolute())
      return unusable(file, "\"program\" must be a list that begins with the program's whole path.");
    std::error_code ignored;
    if (!fs::is_regular_file(program.command.front(), ignored) ||
        access(program.command.front().c_str(), X_OK) != 0)
      return unusable(file, program.command.front() + " is no program.");
    return program;
  } catch (const nlohmann::json::exception&) {
    return unusable(file, "\"program\" must be a list of texts, and \"language\" a text.");
  }
}

Found SpeechModels::findBrought(const std::string& language) const {
  if (!m_places.brought)
    return std::nullopt;
  const LanguageTag wanted(language);
  const auto folders = foldersIn(*m_places.brought);
  const fs::path* best = nullptr;
  for (const fs::path& folder : folders) {
    const LanguageTag tag = LanguageTag::ofModel(folder.filename().string());
    if (!tag.hasSameLanguage(wanted))
      continue;
    // The model for the user's region goes before those for others.
    if (best == nullptr || (tag == wanted && LanguageTag::ofModel(best->filename().string()) != wanted))
      best = &folder;
  }
  if (best == nullptr)
    return std::nullopt;
  VoskModel model{libraryIn(*m_places.brought, folders), *best};
  std::error_code ignored;
  if (!fs::exists(model.library, ignored))
    return failure("The speech model in " + best->string() + " needs the library " + model.library.string() +
                   ", which is missing.");
  for (const auto& checked : {checkVoskLibrary(model.library), checkVoskModel(model.directory)})
    if (!checked)
      return std::unexpected(checked.error());
  return model;
}

std::optional<SpeechModel> SpeechModels::findInstalled(const std::string& language) const {
  if (!LanguageTag("en").covers(LanguageTag(language)))
    return std::nullopt;
  PocketSphinxModel model{m_places.installed / "en-us", m_places.installed / "en-us.lm.bin",
                          m_places.installed / "cmudict-en-us.dict"};
  const auto isThere = [](const fs::path& file) {
    std::error_code error;
    return fs::file_size(file, error) > 0 && !error;
  };
  const auto parts = {"feat.params", "mdef", "means", "sendump", "transition_matrices", "variances"};
  if (!std::ranges::all_of(parts, [&](const char* name) { return isThere(model.acoustics / name); }) ||
      !isThere(model.language) || !isThere(model.dictionary))
    return std::nullopt;
  return model;
}

} // namespace notlet
