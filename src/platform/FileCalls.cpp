#include "platform/FileCalls.h"

#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace notlet {

int FileCalls::open(const char* path, int flags, mode_t mode) {
  return ::open(path, flags, mode);
}

ssize_t FileCalls::write(int descriptor, const void* bytes, std::size_t count) {
  return ::write(descriptor, bytes, count);
}

int FileCalls::setMode(int descriptor, mode_t mode) {
  return ::fchmod(descriptor, mode);
}

int FileCalls::sync(int descriptor) {
  return ::fsync(descriptor);
}

int FileCalls::close(int descriptor) {
  return ::close(descriptor);
}

int FileCalls::link(const char* existing, const char* added) {
  return ::link(existing, added);
}

int FileCalls::rename(const char* from, const char* to) {
  return std::rename(from, to);
}

FileCalls& FileCalls::system() {
  static FileCalls calls;
  return calls;
}

} // namespace notlet
