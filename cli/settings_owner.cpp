#include "cli/settings_owner.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace cli {
namespace {

bool setOwnerAndMode(int file, uid_t owner, gid_t group, mode_t mode) {
  return ::fchown(file, owner, group) == 0 && ::fchmod(file, mode) == 0;
}

}  // namespace

SettingsOwner::SettingsOwner(std::string path) : path_(std::move(path)) {
  struct stat info;
  if (::lstat(path_.c_str(), &info) != 0 && errno == ENOENT) create();
  if (::lstat(path_.c_str(), &info) == 0 && S_ISREG(info.st_mode)) kept_ = info;
}

void SettingsOwner::create() {
  struct stat folder;
  if (::stat(path_.substr(0, path_.rfind('/')).c_str(), &folder) != 0) return;
  const int file =
      ::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
  if (file < 0) return;
  setOwnerAndMode(file, folder.st_uid, folder.st_gid, folder.st_mode & 0666);
  ::close(file);
}

std::error_code SettingsOwner::restore() const {
  if (!kept_) return {};
  const int file = ::open(path_.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
  if (file < 0 && errno == ENOENT) return {};
  const bool done =
      file >= 0 && setOwnerAndMode(file, kept_->st_uid, kept_->st_gid, kept_->st_mode & 07777);
  const std::error_code error =
      done ? std::error_code() : std::error_code(errno, std::generic_category());
  if (file >= 0) ::close(file);
  return error;
}

}  // namespace cli
