#pragma once

#include <cstddef>
#include <sys/types.h>

namespace notlet {

/// The system calls behind checked file writing; a test brings its own and lets each of them fail.
class FileCalls {
 public:
  FileCalls() = default;
  FileCalls(const FileCalls&) = delete;
  FileCalls& operator=(const FileCalls&) = delete;
  virtual ~FileCalls() = default;

  virtual int open(const char* path, int flags, mode_t mode);
  virtual ssize_t write(int descriptor, const void* bytes, std::size_t count);
  virtual int setMode(int descriptor, mode_t mode);
  virtual int sync(int descriptor);
  virtual int close(int descriptor);
  virtual int link(const char* existing, const char* added);
  virtual int rename(const char* from, const char* to);

  /// Those of the operating system.
  [[nodiscard]] static FileCalls& system();
};

} // namespace notlet
