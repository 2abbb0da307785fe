#pragma once

#include <sys/wait.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <string>

#include "agent/shell.h"

/// For tests that run real commands.
namespace doubles {

inline constexpr std::array kEveryMode{agent::ShellMode::Capture, agent::ShellMode::Status,
                                       agent::ShellMode::WaitOnly, agent::ShellMode::LaunchOnly};

inline std::string nameFor(agent::ShellMode mode) {
  constexpr std::array kNames{"Capture", "Status", "WaitOnly", "LaunchOnly"};
  return kNames[static_cast<std::size_t>(mode)];
}

inline long openDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/dev/fd"), {});
}

inline bool hasNoChild() { return ::waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD; }

}  // namespace doubles
