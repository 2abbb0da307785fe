#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace doubles {

/// Sets one environment variable for as long as this object lives.
class EnvironmentVariable {
 public:
  EnvironmentVariable(const char *name, const char *value) : name_(name) {
    if (const char *before = ::getenv(name)) before_ = before;
    ::setenv(name, value, 1);
  }
  ~EnvironmentVariable() {
    if (before_) {
      ::setenv(name_, before_->c_str(), 1);
    } else {
      ::unsetenv(name_);
    }
  }
  EnvironmentVariable(const EnvironmentVariable &) = delete;
  EnvironmentVariable &operator=(const EnvironmentVariable &) = delete;

 private:
  const char *name_;
  std::optional<std::string> before_;
};

}  // namespace doubles
