#include "agent/atomic_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

namespace agent {
namespace {

std::error_code lastError() { return {errno, std::generic_category()}; }

/// A file next to the target, removed again unless it was renamed over the target.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string &target)
      : path_(target + ".XXXXXX"), descriptor_(::mkstemp(path_.data())) {}
  ~TemporaryFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
    if (exists_) ::unlink(path_.c_str());
  }
  TemporaryFile(const TemporaryFile &) = delete;
  TemporaryFile &operator=(const TemporaryFile &) = delete;

  bool isOpen() const { return descriptor_ >= 0; }
  int descriptor() const { return descriptor_; }

  bool renameTo(const std::string &target) {
    if (::rename(path_.c_str(), target.c_str()) != 0) return false;
    exists_ = false;
    return true;
  }

 private:
  std::string path_;
  int descriptor_;
  bool exists_ = descriptor_ >= 0;
};

mode_t modeFor(const std::string &path) {
  struct stat info;
  const bool regular = ::lstat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
  return regular ? info.st_mode & 07777 : 0644;
}

bool writeAll(int descriptor, std::string_view content) {
  while (!content.empty()) {
    const ssize_t count = ::write(descriptor, content.data(), content.size());
    if (count >= 0) {
      content.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      return false;
    }
  }
  return true;
}

}  // namespace

std::error_code writeFileAtomically(const std::string &path, std::string_view content) {
  TemporaryFile file(path);
  const bool done = file.isOpen() && writeAll(file.descriptor(), content) &&
                    ::fchmod(file.descriptor(), modeFor(path)) == 0 &&
                    ::fsync(file.descriptor()) == 0 && file.renameTo(path);
  return done ? std::error_code() : lastError();
}

}  // namespace agent
