#include "cli/observation.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "agent/launchd_jobs.h"
#include "settings/apply_workflow.h"

namespace cli {
namespace {

/// Owners of the console while nobody is logged in.
constexpr std::array<std::string_view, 3> kNobody{"", "root", "_windowserver"};

bool isNobody(std::string_view name) { return std::ranges::find(kNobody, name) != kNobody.end(); }

/// Whether a shell reads the name literally between double quotes: the command line runs as root.
bool isPlainName(std::string_view name) {
  return std::ranges::none_of(name, [](char c) {
    return static_cast<unsigned char>(c) < ' ' ||
           std::string_view("\"$`\\").find(c) != std::string_view::npos;
  });
}

bool isUserId(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

}  // namespace

agent::Credentials rootAccount() { return {.user = "root", .pwd = ""}; }

Console findConsole() {
  const std::string name = settings::lookUpConsoleUserName();
  if (isNobody(name)) return {};
  if (!isPlainName(name)) return {.user = {}, .isUnknown = true};
  const std::string uid = settings::lookUpUserId(name);
  if (!isUserId(uid)) return {.user = {}, .isUnknown = true};
  return {.user = {.user = name, .uid = uid}, .isUnknown = false};
}

State observe(const Console &console) {
  State state{.stored = settings::getStoredValues(),
              .daemonLoaded = agent::checkGlobalDaemon(rootAccount()),
              .consoleUser = console.user.user,
              .agentLoaded = std::nullopt,
              .consoleUserUnknown = console.isUnknown,
              .unfinished = false};
  if (!state.consoleUser.empty()) state.agentLoaded = agent::checkGlobalAgent(console.user);
  return state;
}

}  // namespace cli
