#pragma once

#include <functional>
#include <string>

/// Stands in for the local directory: who is an administrator is what a test says.
namespace doubles {

struct FakeDirectory {
  /// Nobody unless a test says otherwise.
  std::function<bool(const std::string &username, const std::string &password)> authenticate;
};

FakeDirectory &fakeDirectory();

}  // namespace doubles
