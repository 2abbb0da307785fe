#include "cli/state.h"

namespace cli {
namespace {

void compare(const std::string &name, const std::optional<std::string> &stored,
             const std::string &wanted, std::vector<std::string> &problems) {
  if (stored == wanted) return;
  problems.push_back(
      (stored ? "the stored " + name + " is " + *stored : "no " + name + " is stored") +
      " (requested: " + wanted + ")");
}

std::string yesOrNo(bool value) { return value ? "yes" : "no"; }

}  // namespace

std::vector<std::string> differences(const State &state, const WantedSettings &wanted) {
  std::vector<std::string> problems;
  const settings::StoredValues &stored = state.stored;
  compare("server", stored.server, wanted.server, problems);
  compare("port", stored.port, wanted.port, problems);
  compare("language", stored.language, wanted.language, problems);
  const auto profile = stored.profile ? std::optional(yesOrNo(*stored.profile)) : std::nullopt;
  compare("profile flag", profile, yesOrNo(wanted.profile), problems);
  if (!state.daemonLoaded) problems.emplace_back("the daemon's job is not loaded");
  if (state.agentLoaded == false) {
    problems.push_back("the per-user job of " + state.consoleUser + " is not loaded");
  }
  if (state.consoleUserUnknown) {
    problems.emplace_back(
        "the owner of the console has no user id, so that user's job cannot be reached");
  }
  if (state.unfinished) problems.emplace_back("an earlier run was left unfinished");
  return problems;
}

State asRequested(State state, const WantedSettings &wanted) {
  state.stored = {.language = wanted.language,
                  .server = wanted.server,
                  .port = wanted.port,
                  .profile = wanted.profile};
  state.daemonLoaded = true;
  if (state.agentLoaded) state.agentLoaded = true;
  state.unfinished = false;
  return state;
}

}  // namespace cli
