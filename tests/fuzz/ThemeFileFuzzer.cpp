#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "fuzz/ThemeFileCheck.h"

/// Called by libFuzzer with inputs that it invents.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  if (const auto complaint = notlet::complaintAboutThemeFile(text)) {
    std::fprintf(stderr, "%s\n", complaint->c_str());
    std::abort();
  }
  return 0;
}
