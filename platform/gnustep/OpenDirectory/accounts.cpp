#include "accounts.h"

#include <grp.h>
#include <pwd.h>
#include <security/pam_appl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace platform {
namespace {

// Debian's PAM falls back to "other" for services without a file of their own, and ships it as the
// system's common rules.
constexpr const char *kPamService = "other";

constexpr std::size_t kMaxRecordSize = std::size_t{1} << 24;

/// A name that can be handed to C: not empty and without embedded NUL, which would cut it short.
bool isUsableName(std::string_view name) {
  return !name.empty() && name.find('\0') == std::string_view::npos;
}

/// Runs one of the get..nam_r functions with a buffer that grows as it asks for.
template <typename Entry>
LookupResult lookUp(std::string_view name,
                    int (*function)(const char *, Entry *, char *, std::size_t, Entry **),
                    char *Entry::*entryName, Entry &entry, std::vector<char> &buffer) {
  if (!isUsableName(name)) return {Lookup::Unknown};
  const std::string key(name);
  Entry *found = nullptr;
  int error = ERANGE;
  for (std::size_t size = 4096; error == ERANGE && size <= kMaxRecordSize; size *= 2) {
    buffer.resize(size);
    do {
      error = function(key.c_str(), &entry, buffer.data(), buffer.size(), &found);
    } while (error == EINTR);
  }
  if (found != nullptr) return {key == entry.*entryName ? Lookup::Found : Lookup::Unknown};
  // Several of the name service's back ends report a missing name as one of these.
  constexpr int kMissing[] = {0, ENOENT, ESRCH, EBADF, EPERM};
  if (std::find(std::begin(kMissing), std::end(kMissing), error) != std::end(kMissing)) {
    return {Lookup::Unknown};
  }
  return {Lookup::Failed, error};
}

LookupResult lookUpUser(std::string_view name, passwd &entry, std::vector<char> &buffer) {
  return lookUp<passwd>(name, getpwnam_r, &passwd::pw_name, entry, buffer);
}

LookupResult lookUpGroup(std::string_view name, group &entry, std::vector<char> &buffer) {
  return lookUp<group>(name, getgrnam_r, &group::gr_name, entry, buffer);
}

/// All groups of a user, the primary one included.
std::vector<gid_t> groupsForUser(const passwd &user) {
  std::vector<gid_t> groups(64);
  int count = static_cast<int>(groups.size());
  while (getgrouplist(user.pw_name, user.pw_gid, groups.data(), &count) < 0) {
    groups.resize(std::max(groups.size() * 2, static_cast<std::size_t>(count)));
    count = static_cast<int>(groups.size());
  }
  groups.resize(static_cast<std::size_t>(count));
  return groups;
}

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

LookupResult findUser(std::string_view name) noexcept {
  passwd entry;
  std::vector<char> buffer;
  return lookUpUser(name, entry, buffer);
}

LookupResult findGroup(std::string_view name) noexcept {
  group entry;
  std::vector<char> buffer;
  return lookUpGroup(name, entry, buffer);
}

MembershipResult isMember(std::string_view user, std::string_view group) noexcept {
  struct group groupEntry;
  std::vector<char> groupBuffer;
  const LookupResult groupFound = lookUpGroup(group, groupEntry, groupBuffer);
  if (groupFound.outcome == Lookup::Failed) return {Membership::Failed, groupFound.error};
  if (groupFound.outcome == Lookup::Unknown) return {Membership::UnknownGroup};

  passwd userEntry;
  std::vector<char> userBuffer;
  const LookupResult userFound = lookUpUser(user, userEntry, userBuffer);
  if (userFound.outcome == Lookup::Failed) return {Membership::Failed, userFound.error};
  if (userFound.outcome == Lookup::Unknown) return {Membership::UnknownUser};

  const std::vector<gid_t> groups = groupsForUser(userEntry);
  const bool member = std::find(groups.begin(), groups.end(), groupEntry.gr_gid) != groups.end();
  return {member ? Membership::Member : Membership::NotMember};
}

int verifyPassword(std::string_view user, std::string_view password) noexcept {
  // pam_start without a name would ask for one.
  if (!isUsableName(user)) return PAM_USER_UNKNOWN;
  if (password.find('\0') != std::string_view::npos) return PAM_AUTH_ERR;
  const std::string name(user);
  std::string secret(password);
  const int status = authenticate(name.c_str(), secret.data());
  explicit_bzero(secret.data(), secret.size());
  return status;
}

std::string describePamStatus(int status) {
  const char *text = pam_strerror(nullptr, status);
  return text != nullptr ? text : "unknown PAM status";
}

}  // namespace platform
