#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <string>
#include <string_view>

#include "check.h"

namespace fuzz {

/// A regular file in memory, with a path.
class MemoryFile {
 public:
  explicit MemoryFile(std::string_view content) : descriptor_(::memfd_create("fuzz", MFD_CLOEXEC)) {
    check(::write(descriptor_, content.data(), content.size()) ==
              static_cast<ssize_t>(content.size()),
          "cannot write a memory file");
  }
  ~MemoryFile() { ::close(descriptor_); }
  MemoryFile(const MemoryFile &) = delete;
  MemoryFile &operator=(const MemoryFile &) = delete;

  std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

 private:
  int descriptor_;
};

}  // namespace fuzz
