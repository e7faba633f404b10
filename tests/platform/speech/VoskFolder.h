#pragma once

#include <fstream>

#include "support/TemporaryDirectory.h"

namespace notlet {

/// A user's folder with the stand-in for the Vosk library and models that have all their parts.
class VoskFolder {
 public:
  VoskFolder() { std::filesystem::copy_file(NOTLET_STAND_IN_VOSK, library()); }

  [[nodiscard]] std::filesystem::path path() const { return m_directory.path(); }
  [[nodiscard]] std::filesystem::path library() const { return path() / "libvosk.so"; }

  std::filesystem::path addModel(const std::string& name) const {
    const std::filesystem::path model = path() / name;
    for (const char* file : {"am/final.mdl", "ivector/final.ie", "ivector/final.dubm", "ivector/final.mat"})
      write(model / file, std::string("\0B<Model>", 9));
    for (const char* file : {"graph/HCLr.fst", "graph/Gr.fst"})
      write(model / file, "\xd6\xfd\xb2\x7e and more");
    for (const char* file :
         {"conf/mfcc.conf", "ivector/global_cmvn.stats", "ivector/online_cmvn.conf", "ivector/splice.conf"})
      write(model / file, "text");
    return model;
  }
  static void write(const std::filesystem::path& file, std::string_view contents) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << contents;
  }

 private:
  TemporaryDirectory m_directory;
};

} // namespace notlet
