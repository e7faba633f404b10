#include "platform/speech/VoskFiles.h"

#include <elf.h>
#include <link.h>

#include <cstring>
#include <fstream>
#include <optional>
#include <vector>

namespace notlet {

namespace {

namespace fs = std::filesystem;
using Header = ElfW(Ehdr);
using Segment = ElfW(Phdr);

template<typename Record>
std::optional<Record> readRecord(std::ifstream& stream, std::uint64_t offset) {
  Record record{};
  stream.seekg(static_cast<std::streamoff>(offset));
  if (!stream.read(reinterpret_cast<char*>(&record), sizeof record))
    return std::nullopt;
  return record;
}

std::optional<Header> readHeader(std::ifstream& stream) {
  const auto header = readRecord<Header>(stream, 0);
  if (!header || std::memcmp(header->e_ident, ELFMAG, SELFMAG) != 0)
    return std::nullopt;
  return header;
}

/// Libraries fit this program when they are made for the machine that it was made for.
bool isForThisMachine(const Header& header) {
  std::ifstream stream("/proc/self/exe", std::ios::binary);
  const auto own = readHeader(stream);
  return own && header.e_ident[EI_CLASS] == own->e_ident[EI_CLASS] &&
         header.e_ident[EI_DATA] == own->e_ident[EI_DATA] && header.e_machine == own->e_machine;
}

bool isWhole(std::ifstream& stream, const Header& header, std::uint64_t size) {
  if (header.e_type != ET_DYN || header.e_phentsize != sizeof(Segment))
    return false;
  if (header.e_shoff + std::uint64_t{header.e_shnum} * header.e_shentsize > size)
    return false;
  for (unsigned number = 0; number < header.e_phnum; ++number) {
    const auto segment = readRecord<Segment>(stream, header.e_phoff + number * sizeof(Segment));
    if (!segment || segment->p_filesz > size || segment->p_offset > size - segment->p_filesz)
      return false;
  }
  return header.e_phnum > 0;
}

/// What the two kinds of files in a model begin with.
constexpr std::string_view kaldiFile("\0B", 2);
constexpr std::string_view transducerFile("\xd6\xfd\xb2\x7e", 4);

/// Whether it is a file that begins like this and has more to it; a text file only has to have something in
/// it.
bool beginsWith(const fs::path& file, std::string_view beginning) {
  std::ifstream stream(file, std::ios::binary);
  std::string bytes(beginning.size() + 1, '\0');
  return fs::is_regular_file(file) && stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size())) &&
         bytes.starts_with(beginning);
}

struct Part {
  const char* name;
  std::string_view beginning;
};

/// Models come in two layouts; the older one has everything in one folder.
const std::vector<Part>& partsOf(const fs::path& directory) {
  static const std::vector<Part> folders{{"am/final.mdl", kaldiFile}, {"conf/mfcc.conf", ""}};
  static const std::vector<Part> flat{{"final.mdl", kaldiFile}, {"mfcc.conf", ""}};
  return fs::exists(directory / "final.mdl") ? flat : folders;
}

const std::vector<Part> speakerParts{{"ivector/final.ie", kaldiFile},  {"ivector/final.dubm", kaldiFile},
                                     {"ivector/final.mat", kaldiFile}, {"ivector/global_cmvn.stats", ""},
                                     {"ivector/online_cmvn.conf", ""}, {"ivector/splice.conf", ""}};

Result<void> brokenPart(const fs::path& file) {
  return failure("The speech model is incomplete or damaged: " + file.string() + ".");
}

Result<void> checkParts(const fs::path& directory, const std::vector<Part>& parts) {
  for (const auto& [name, beginning] : parts)
    if (!beginsWith(directory / name, beginning))
      return brokenPart(directory / name);
  return {};
}

Result<void> checkGraph(const fs::path& directory) {
  const fs::path graph = fs::exists(directory / "graph") ? directory / "graph" : directory;
  const bool isOnePiece = fs::exists(graph / "HCLG.fst");
  for (const char* name : isOnePiece ? std::vector{"HCLG.fst"} : std::vector{"HCLr.fst", "Gr.fst"})
    if (!beginsWith(graph / name, transducerFile))
      return brokenPart(graph / name);
  return {};
}

} // namespace

Result<void> checkVoskLibrary(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  std::error_code error;
  const std::uint64_t size = fs::file_size(file, error);
  const auto header = readHeader(stream);
  if (error || !header || !isForThisMachine(*header))
    return failure("The speech library " + file.string() + " is not for this kind of computer.");
  if (!isWhole(stream, *header, size))
    return failure("The speech library " + file.string() + " is damaged.");
  return {};
}

Result<void> checkVoskModel(const fs::path& directory) {
  if (auto checked = checkParts(directory, partsOf(directory)); !checked)
    return checked;
  if (auto checked = checkGraph(directory); !checked)
    return checked;
  return fs::exists(directory / "ivector") ? checkParts(directory, speakerParts) : Result<void>{};
}

} // namespace notlet
