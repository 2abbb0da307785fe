#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>
#include <system_error>

namespace cli {

/// Keeps the owner and mode of the daemon's settings file, which a reset by root would otherwise
/// take over: administrators could no longer reset it in the window. A missing file is created
/// first, empty, with the owner and access rights of its folder. A symbolic link is left alone.
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
