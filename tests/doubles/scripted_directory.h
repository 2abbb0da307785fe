#pragma once

#include <functional>
#include <string>

/// Stands in for the local directory: who is an administrator is what a test says.
namespace doubles {

struct ScriptedDirectory {
  /// Nobody unless a test says otherwise.
  std::function<bool(const std::string &username, const std::string &password)> authenticate;
};

ScriptedDirectory &scriptedDirectory();

}  // namespace doubles
