#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>
#include <system_error>

namespace cli {

/// Keeps the owner and mode of the daemon's settings file, which a reset by root would otherwise
/// take over: administrators could not reset it in the window any more. A missing file is made
/// first, empty, with the owner and the access of its folder. A symbolic link is left alone.
class SettingsOwner {
 public:
  explicit SettingsOwner(std::string path);

  /// Gives the file its owner and mode back. A file that is missing now is not an error.
  [[nodiscard]] std::error_code restore() const;

 private:
  void create();

  std::string path_;
  std::optional<struct stat> kept_;
};

}  // namespace cli
