#pragma once

#include <functional>
#include <string>

/// Replaces the local directory: a test says who is an administrator.
namespace doubles {

struct FakeDirectory {
  // Nobody is, unless a test says otherwise.
  std::function<bool(const std::string &username)> mayStart;
  std::function<bool(const std::string &username, const std::string &password)> authenticate;
};

FakeDirectory &fakeDirectory();

}  // namespace doubles
