#include "accounts.h"

#include <grp.h>
#include <pwd.h>
#include <security/pam_appl.h>

#include <cstdlib>
#include <cstring>
#include <string>

namespace platform {
namespace {

// Debian's PAM falls back to "other" for services without a file of their own, and ships it as the
// system's common rules.
constexpr const char *kPamService = "other";

/// The entry of that name. C would cut a name with an embedded NUL short.
template <typename Entry>
const Entry *find(std::string_view name, Entry *(*function)(const char *),
                  char *Entry::*entryName) {
  if (name.empty() || name.find('\0') != std::string_view::npos) return nullptr;
  const std::string key(name);
  const Entry *entry = function(key.c_str());
  return entry != nullptr && name == entry->*entryName ? entry : nullptr;
}

const passwd *findUser(std::string_view name) { return find(name, getpwnam, &passwd::pw_name); }
const group *findGroup(std::string_view name) { return find(name, getgrnam, &group::gr_name); }

// MARK: PAM

void freeResponses(pam_response *responses, int count) {
  for (int i = 0; i < count; ++i) {
    if (responses[i].resp == nullptr) continue;
    explicit_bzero(responses[i].resp, std::strlen(responses[i].resp));
    std::free(responses[i].resp);
  }
  std::free(responses);
}

/// Answers every hidden prompt with the password that `data` points to and refuses any other.
int converse(int count, const pam_message **messages, pam_response **answer, void *data) {
  if (count <= 0 || count > PAM_MAX_NUM_MSG) return PAM_CONV_ERR;
  auto *responses = static_cast<pam_response *>(
      std::calloc(static_cast<std::size_t>(count), sizeof(pam_response)));
  if (responses == nullptr) return PAM_BUF_ERR;
  for (int i = 0; i < count; ++i) {
    const int style = messages[i]->msg_style;
    if (style == PAM_ERROR_MSG || style == PAM_TEXT_INFO) continue;
    if (style == PAM_PROMPT_ECHO_OFF) responses[i].resp = strdup(static_cast<const char *>(data));
    if (responses[i].resp == nullptr) {
      freeResponses(responses, count);
      return PAM_CONV_ERR;
    }
  }
  *answer = responses;
  return PAM_SUCCESS;
}

/// Keeps PAM from sleeping after a failure: the caller's windows would not respond.
void doNotDelay(int, unsigned, void *) {}

int authenticate(const char *user, char *password) {
  const pam_conv conversation = {converse, password};
  pam_handle_t *handle = nullptr;
  int status = pam_start(kPamService, user, &conversation, &handle);
  if (status != PAM_SUCCESS) return status;
  status = pam_set_item(handle, PAM_FAIL_DELAY, reinterpret_cast<const void *>(doNotDelay));
  // Without the flag, Debian's rules accept *any* password for an account that has none.
  const int flags = PAM_SILENT | (*password == '\0' ? 0 : PAM_DISALLOW_NULL_AUTHTOK);
  if (status == PAM_SUCCESS) status = pam_authenticate(handle, flags);
  if (status == PAM_SUCCESS) status = pam_acct_mgmt(handle, flags);
  pam_end(handle, status);
  return status;
}

}  // namespace

bool userExists(std::string_view name) noexcept { return findUser(name) != nullptr; }
bool groupExists(std::string_view name) noexcept { return findGroup(name) != nullptr; }

bool isMember(std::string_view user, std::string_view group) noexcept {
  const struct group *groupEntry = findGroup(group);
  const passwd *userEntry = findUser(user);
  if (groupEntry == nullptr || userEntry == nullptr) return false;
  for (char **member = groupEntry->gr_mem; *member != nullptr; ++member) {
    if (user == *member) return true;
  }
  return userEntry->pw_gid == groupEntry->gr_gid;
}

bool verifyPassword(std::string_view user, std::string_view password) noexcept {
  // PAM would ask for an empty name, and cut either at an embedded NUL.
  if (findUser(user) == nullptr || password.find('\0') != std::string_view::npos) return false;
  const std::string name(user);
  std::string secret(password);
  const int status = authenticate(name.c_str(), secret.data());
  explicit_bzero(secret.data(), secret.size());
  return status == PAM_SUCCESS;
}

}  // namespace platform
