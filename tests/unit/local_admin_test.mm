#import <OpenDirectory/OpenDirectory.h>
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "app/local_admin.h"
#include "app/ns_string.h"
#include "doubles/intercepted_method.h"
#include "doubles/recording_shell.h"

namespace {

/// What the local directory knows, and what it was asked.
struct Directory {
  bool reachable = true;
  bool hasAdminGroup = true;
  std::map<std::string, std::string> passwords;
  std::set<std::string> admins;
  std::vector<std::string> asked;
};

Directory theDirectory;

}  // namespace

@interface FakeRecord : NSObject {
 @public
  std::string name;
}
@end

@implementation FakeRecord

- (BOOL)verifyPassword:(NSString *)password error:(NSError **)error {
  theDirectory.asked.push_back("verify " + name);
  return theDirectory.passwords[name] == app::utf8(password);
}

- (BOOL)isMemberRecord:(ODRecord *)record error:(NSError **)error {
  const std::string &member = reinterpret_cast<FakeRecord *>(record)->name;
  theDirectory.asked.push_back("is " + member + " in " + name);
  return theDirectory.admins.contains(member);
}

@end

@interface FakeNode : NSObject
@end

@implementation FakeNode

- (id)recordWithRecordType:(ODRecordType)type
                      name:(NSString *)name
                attributes:(id)attributes
                     error:(NSError **)error {
  EXPECT_TRUE(attributes == nil);
  const bool isGroup = [type isEqual:kODRecordTypeGroups];
  EXPECT_TRUE(isGroup || [type isEqual:kODRecordTypeUsers]);
  const std::string text = app::utf8(name);
  theDirectory.asked.push_back((isGroup ? "group " : "user ") + text);
  const bool known = isGroup ? theDirectory.hasAdminGroup && text == "admin"
                             : theDirectory.passwords.contains(text);
  if (!known) return nil;
  FakeRecord *record = [[[FakeRecord alloc] init] autorelease];
  record->name = text;
  return record;
}

@end

namespace {

id openFakeNode(id, SEL, ODSession *session, ODNodeType type, NSError **) {
  EXPECT_TRUE(session != nil);
  EXPECT_EQ(type, 0x2200U);
  theDirectory.asked.push_back("node");
  return theDirectory.reachable ? [[[FakeNode alloc] init] autorelease] : nil;
}

using Asked = std::vector<std::string>;

class LocalAdmin : public testing::Test {
 protected:
  void SetUp() override {
    doubles::resetShell();
    theDirectory = {};
    theDirectory.passwords = {
        {"alice", "a-pw"}, {"carol", "c-pw"}, {"root", "r-pw"}, {"empty", ""}};
    theDirectory.admins = {"alice", "root", "empty"};
  }

 private:
  doubles::InterceptedMethod openNode_ = doubles::InterceptedMethod::ofClass(
      [ODNode class], @selector(nodeWithSession:type:error:), reinterpret_cast<IMP>(openFakeNode));
};

TEST_F(LocalAdmin, MayStartTheProgramAsAMemberOfTheAdminGroup) {
  EXPECT_TRUE(app::checkLocalAdminUser("alice"));
  EXPECT_EQ(theDirectory.asked, (Asked{"node", "user alice", "group admin", "is alice in admin"}));
  EXPECT_TRUE(doubles::recordingShell().commands.empty());
}

TEST_F(LocalAdmin, ConsoleUserIsLookedUpWithStandardErrorAndReturnedUnchanged) {
  doubles::recordingShell().answer = [](const doubles::RecordedCommand &) {
    return agent::ShellResult{.text = "alice\n", .status = 0};
  };
  EXPECT_EQ(app::getloggedInUser(), "alice\n");
  EXPECT_EQ(doubles::recordingShell().commands,
            (std::vector<doubles::RecordedCommand>{
                {"/bin/bash", "loggedInUser=$(stat -f%Su /dev/console); echo $loggedInUser",
                 agent::ShellMode::Capture}}));
}

TEST_F(LocalAdmin, MayNotStartItOtherwise) {
  for (const char *user : {"carol", "nobody", ""}) EXPECT_FALSE(app::checkLocalAdminUser(user));
  theDirectory.hasAdminGroup = false;
  EXPECT_FALSE(app::checkLocalAdminUser("alice"));
  theDirectory.reachable = false;
  EXPECT_FALSE(app::checkLocalAdminUser("alice"));
}

// The console user is printed with a newline, so that root always passes.
TEST_F(LocalAdmin, RootIsRefusedOnlyWhenTheOutputIsExactlyRoot) {
  for (const auto &[output, message] :
       {std::pair("root\n", ""), {"alice\n", ""}, {"root", "user cannot be root.\n"}}) {
    doubles::recordingShell().answer = [text = output](const doubles::RecordedCommand &) {
      return agent::ShellResult{.text = text, .status = 0};
    };
    testing::internal::CaptureStdout();
    const bool mayStart = app::checkLocalAdminUser("root");
    const std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_EQ(printed, message);
    EXPECT_EQ(mayStart, printed.empty());
  }
}

TEST_F(LocalAdmin, RootOutsideTheGroupIsRefusedWithoutALookupOfTheConsoleUser) {
  theDirectory.admins.erase("root");
  EXPECT_FALSE(app::checkLocalAdminUser("root"));
  EXPECT_TRUE(doubles::recordingShell().commands.empty());
}

TEST_F(LocalAdmin, LogsInWithTheRightPasswordAsAMember) {
  EXPECT_TRUE(app::authenticateLocalAdminUser("alice", "a-pw"));
  EXPECT_EQ(theDirectory.asked,
            (Asked{"node", "user alice", "verify alice", "group admin", "is alice in admin"}));
  // Neither an empty password that the directory accepts nor root is treated differently.
  EXPECT_TRUE(app::authenticateLocalAdminUser("empty", ""));
  EXPECT_TRUE(app::authenticateLocalAdminUser("root", "r-pw"));
  EXPECT_TRUE(doubles::recordingShell().commands.empty());
}

TEST_F(LocalAdmin, DoesNotLogInOtherwise) {
  for (const auto &[user, password] :
       {std::pair("alice", " a-pw"), {"alice", ""}, {"", ""}, {"carol", "c-pw"}}) {
    EXPECT_FALSE(app::authenticateLocalAdminUser(user, password)) << user;
  }
  theDirectory.asked.clear();
  EXPECT_FALSE(app::authenticateLocalAdminUser("alice", "wrong"));
  EXPECT_EQ(theDirectory.asked, (Asked{"node", "user alice", "verify alice"}));
  theDirectory.hasAdminGroup = false;
  EXPECT_FALSE(app::authenticateLocalAdminUser("alice", "a-pw"));
  theDirectory.reachable = false;
  EXPECT_FALSE(app::authenticateLocalAdminUser("alice", "a-pw"));
}

}  // namespace
