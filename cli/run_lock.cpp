#include "cli/run_lock.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstddef>
#include <string_view>

namespace cli {
namespace {

constexpr const char *kFile = "apply";
constexpr std::string_view kReset = "reset";

std::error_code lastError() { return {errno, std::generic_category()}; }

/// The folder, when it is the caller's own and nobody else may write to it; else -1 with errno.
int openFolder(const std::string &folder) {
  const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (descriptor < 0) return -1;
  struct stat info;
  const bool isKnown = ::fstat(descriptor, &info) == 0;
  if (isKnown && info.st_uid == ::geteuid() && (info.st_mode & (S_IWGRP | S_IWOTH)) == 0) {
    return descriptor;
  }
  const int error = isKnown ? EPERM : errno;
  ::close(descriptor);
  errno = error;
  return -1;
}

/// The file in that folder, or -1 with errno.
int openFile(const std::string &folder, int flags) {
  const int parent = openFolder(folder);
  if (parent < 0) return -1;
  const int descriptor = ::openat(parent, kFile, flags | O_NOFOLLOW | O_CLOEXEC, 0600);
  const int saved = errno;
  ::close(parent);
  errno = saved;
  return descriptor;
}

std::optional<UnfinishedMark> markIn(int file) {
  std::array<char, 64> buffer;
  const ssize_t count = ::pread(file, buffer.data(), buffer.size(), 0);
  if (count <= 0) return std::nullopt;
  const std::string_view text(buffer.data(), static_cast<std::size_t>(count));
  UnfinishedMark mark;
  std::from_chars(text.data(), text.data() + text.size(), mark.processGroup);
  mark.reset = text.find(kReset) != std::string_view::npos;
  return mark;
}

bool exists(pid_t group) { return ::kill(-group, 0) == 0 || errno != ESRCH; }

}  // namespace

std::optional<UnfinishedMark> readMark(const std::string &folder) {
  const int file = openFile(folder, O_RDONLY);
  if (file < 0) return std::nullopt;
  const std::optional<UnfinishedMark> mark = markIn(file);
  ::close(file);
  return mark;
}

RunLock::RunLock(const std::string &folder) {
  if (::mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) {
    error_ = lastError();
    return;
  }
  file_ = openFile(folder, O_RDWR | O_CREAT);
  if (file_ >= 0 && ::flock(file_, LOCK_EX | LOCK_NB) == 0) return;
  if (file_ >= 0 && errno == EWOULDBLOCK) {
    isBusy_ = true;
  } else {
    error_ = lastError();
  }
}

RunLock::~RunLock() {
  if (file_ >= 0) ::close(file_);
}

std::optional<UnfinishedMark> RunLock::mark() const { return markIn(file_); }

std::error_code RunLock::setMark(const UnfinishedMark &mark) const {
  // One write, so that a run killed here leaves a complete mark or none.
  const std::string text =
      std::to_string(mark.processGroup) + (mark.reset ? " " + std::string(kReset) : "") + "\n";
  const auto length = static_cast<off_t>(text.size());
  const bool done =
      ::pwrite(file_, text.data(), text.size(), 0) == length && ::ftruncate(file_, length) == 0;
  return done ? std::error_code() : lastError();
}

std::error_code RunLock::clearMark() const {
  return ::ftruncate(file_, 0) == 0 ? std::error_code() : lastError();
}

void waitForProcessGroup(pid_t group, double seconds) {
  constexpr double kStep = 0.01;
  constexpr timespec kPause{.tv_sec = 0, .tv_nsec = 10'000'000};
  if (group <= 1 || group == ::getpgrp()) return;
  for (double waited = 0; waited < seconds && exists(group); waited += kStep) {
    ::nanosleep(&kPause, nullptr);
  }
}

}  // namespace cli
