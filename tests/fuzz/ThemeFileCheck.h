#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/Text.h"
#include "themes/ThemeConfigurationDocument.h"

namespace notlet {

/// What is wrong with how these bytes are read as a theme file; nothing when all is well. Good files and bad
/// ones alike must keep some promises.
inline std::optional<std::string> complaintAboutThemeFile(std::string_view bytes) {
  using Document = ThemeConfigurationDocument;
  const Result<Document> document = Document::readFileContents(bytes);
  if (!document) {
    const std::string& message = document.error().message;
    if (message.empty() || message.size() > 1000 || !isValidUtf8(message))
      return "The message is not fit to be shown: " + message;
    return std::nullopt;
  }
  if (document->themes.size() > Document::mostThemesInFile)
    return "More themes were taken than a file may hold.";
  if (Document::read(document->json()) != *document || Document::read(document->compactJson()) != *document)
    return "What was written reads as something else.";
  return std::nullopt;
}

} // namespace notlet
