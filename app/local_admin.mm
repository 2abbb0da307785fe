#import <Foundation/Foundation.h>
#import <OpenDirectory/OpenDirectory.h>

#include "app/local_admin.h"

#include "agent/shell.h"
#include "app/diagnostics.h"
#include "app/ns_string.h"

namespace app {
namespace {

// Every check has a session of its own, never the shared one. Nil when the node cannot be opened.
ODNode *openLocalNode() {
  ODSession *session = [[[ODSession alloc] init] autorelease];
  return [ODNode nodeWithSession:session type:kODNodeTypeLocalNodes error:NULL];
}

ODRecord *findRecord(ODNode *node, ODRecordType type, NSString *name) {
  return [node recordWithRecordType:type name:name attributes:nil error:NULL];
}

// Without the group the record is nil, and the answer NO.
bool isInAdminGroup(ODNode *node, ODRecord *user) {
  ODRecord *group = findRecord(node, kODRecordTypeGroups, @"admin");
  return [group isMemberRecord:user error:NULL];
}

}  // namespace

// Differs from the lookup of Apply (agent/launchd_jobs) only in not discarding stat's messages.
// Both functions and both command lines are required.
std::string getloggedInUser() {
  return agent::runShellCommand(agent::kBash,
                                "loggedInUser=$(stat -f%Su /dev/console); echo $loggedInUser",
                                agent::ShellMode::Capture)
      .text;
}

bool checkLocalAdminUser(const std::string &username) {
  @autoreleasepool {
    ODNode *node = openLocalNode();
    ODRecord *user = findRecord(node, kODRecordTypeUsers, nsString(username));
    if (user == nil || !isInAdminGroup(node, user)) return false;
  }
  if (username != "root") return true;
  // The output ends in a newline, so in practice this never matches, and root passes as a member
  // of the group: required.
  if (getloggedInUser() != "root") return true;
  printLine("user cannot be root.");
  return false;
}

bool authenticateLocalAdminUser(const std::string &username, const std::string &password) {
  @autoreleasepool {
    ODNode *node = openLocalNode();
    ODRecord *user = findRecord(node, kODRecordTypeUsers, nsString(username));
    if (user == nil) return false;
    if (![user verifyPassword:nsString(password) error:NULL]) return false;
    return isInAdminGroup(node, user);
  }
}

}  // namespace app
