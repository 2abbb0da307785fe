#import <OpenDirectory/OpenDirectory.h>

#include <gtest/gtest.h>
#include <security/pam_appl.h>

#include <chrono>
#include <string>

#include "OpenDirectory/accounts.h"

namespace {

ODNode *localNode() {
  ODSession *session = [[[ODSession alloc] init] autorelease];
  return [ODNode nodeWithSession:session type:kODNodeTypeLocalNodes error:nil];
}

ODRecord *record(ODRecordType type, NSString *name) {
  return [localNode() recordWithRecordType:type name:name attributes:nil error:nil];
}

ODRecord *user(NSString *name) { return record(kODRecordTypeUsers, name); }
ODRecord *group(NSString *name) { return record(kODRecordTypeGroups, name); }

TEST(OpenDirectory, OpensOnlyTheLocalNode) {
  EXPECT_TRUE(localNode() != nil);
  EXPECT_TRUE([ODNode nodeWithSession:nil type:kODNodeTypeLocalNodes error:nil] != nil);
  NSError *error = nil;
  EXPECT_TRUE([ODNode nodeWithSession:nil type:kODNodeTypeAuthentication error:&error] == nil);
  EXPECT_TRUE([[error domain] isEqualToString:ODFrameworkErrorDomain]);
  EXPECT_EQ([error code], NSInteger { kODErrorNodeUnknownType });
  EXPECT_TRUE([ODNode nodeWithSession:nil type:0 error:nil] == nil);
}

TEST(OpenDirectory, FindsUsersAndGroups) {
  EXPECT_TRUE([[user(@"root") recordName] isEqualToString:@"root"]);
  EXPECT_TRUE([[user(@"root") recordType] isEqualToString:kODRecordTypeUsers]);
  EXPECT_TRUE([[group(@"nogroup") recordType] isEqualToString:kODRecordTypeGroups]);
}

struct BadRecord {
  ODRecordType type;
  NSString *name;
  NSInteger code;
};

TEST(OpenDirectory, SaysWhyThereIsNoRecord) {
  const unichar cutShort[] = {'r', 'o', 'o', 't', 0, 'x'};
  const BadRecord rows[] = {
      {kODRecordTypeUsers, @"no-such-user", kODErrorRecordNoLongerExists},
      {kODRecordTypeGroups, @"no-such-group", kODErrorRecordNoLongerExists},
      {kODRecordTypeUsers, @"nogroup", kODErrorRecordNoLongerExists},
      {kODRecordTypeGroups, @"nobody", kODErrorRecordNoLongerExists},
      {kODRecordTypeUsers, @"ROOT", kODErrorRecordNoLongerExists},
      {kODRecordTypeUsers, @" root", kODErrorRecordNoLongerExists},
      {kODRecordTypeUsers, @"root ", kODErrorRecordNoLongerExists},
      {kODRecordTypeUsers, @"root\n", kODErrorRecordNoLongerExists},
      {kODRecordTypeUsers, @"root:x", kODErrorRecordNoLongerExists},
      {kODRecordTypeUsers, @"0", kODErrorRecordNoLongerExists},
      {kODRecordTypeUsers, [NSString stringWithCharacters:cutShort length:6],
       kODErrorRecordNoLongerExists},
      {kODRecordTypeUsers, [@"" stringByPaddingToLength:100000 withString:@"x" startingAtIndex:0],
       kODErrorRecordNoLongerExists},
      {kODRecordTypeUsers, @"", kODErrorRecordParameterError},
      {kODRecordTypeUsers, nil, kODErrorRecordParameterError},
      {@"dsRecTypeStandard:Computers", @"root", kODErrorRecordInvalidType},
      {nil, @"root", kODErrorRecordInvalidType},
  };
  for (const BadRecord &row : rows) {
    NSError *error = nil;
    ODRecord *found = [localNode() recordWithRecordType:row.type
                                                   name:row.name
                                             attributes:nil
                                                  error:&error];
    EXPECT_TRUE(found == nil) << [row.name UTF8String];
    EXPECT_EQ([error code], row.code) << [row.name UTF8String];
    EXPECT_GT([[error localizedDescription] length], 0u);
    EXPECT_TRUE(record(row.type, row.name) == nil);
  }
}

TEST(OpenDirectory, CountsThePrimaryGroupAsMembership) {
  NSError *error = nil;
  EXPECT_TRUE([group(@"root") isMemberRecord:user(@"root") error:&error]);
  EXPECT_TRUE([group(@"nogroup") isMemberRecord:user(@"nobody") error:nil]);
}

TEST(OpenDirectory, AnswersNoWithoutErrorForAnOutsider) {
  NSError *error = [NSError errorWithDomain:@"left over" code:1 userInfo:nil];
  EXPECT_FALSE([group(@"root") isMemberRecord:user(@"nobody") error:&error]);
  EXPECT_TRUE(error == nil);
  EXPECT_FALSE([group(@"root") isMemberRecord:user(@"nobody") error:nil]);
}

TEST(OpenDirectory, RefusesMembershipQuestionsThatMakeNoSense) {
  NSError *error = nil;
  EXPECT_FALSE([user(@"root") isMemberRecord:user(@"root") error:&error]);
  EXPECT_EQ([error code], NSInteger { kODErrorRecordInvalidType });
  EXPECT_FALSE([group(@"root") isMemberRecord:group(@"root") error:&error]);
  EXPECT_EQ([error code], NSInteger { kODErrorRecordParameterError });
  error = nil;
  EXPECT_FALSE([group(@"root") isMemberRecord:nil error:&error]);
  EXPECT_EQ([error code], NSInteger { kODErrorRecordParameterError });
}

TEST(OpenDirectory, RejectsAWrongPasswordWithoutDelay) {
  const auto start = std::chrono::steady_clock::now();
  for (NSString *password : {@"wrong", @"", @"x:y", @"é"}) {
    NSError *error = nil;
    EXPECT_FALSE([user(@"nobody") verifyPassword:password error:&error]);
    EXPECT_TRUE([[error domain] isEqualToString:ODFrameworkErrorDomain]);
    EXPECT_GT([[error localizedDescription] length], 0u);
  }
  // Debian's rules would sleep two seconds after each.
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

TEST(OpenDirectory, RefusesToVerifyWhatHasNoPassword) {
  NSError *error = nil;
  EXPECT_FALSE([group(@"root") verifyPassword:@"x" error:&error]);
  EXPECT_EQ([error code], NSInteger { kODErrorRecordInvalidType });
  EXPECT_FALSE([user(@"nobody") verifyPassword:nil error:&error]);
  EXPECT_EQ([error code], NSInteger { kODErrorRecordParameterError });
}

TEST(Accounts, KnowNoPasswordOfUnknownOrMalformedUsers) {
  using namespace std::string_literals;
  for (const std::string &name : {"no-such-user"s, ""s, "nobody\0x"s, "nobody\n"s}) {
    for (const std::string &password : {"x"s, ""s}) {
      EXPECT_NE(platform::verifyPassword(name, password), PAM_SUCCESS) << name;
    }
  }
  EXPECT_EQ(platform::verifyPassword("nobody", "x\0y"s), PAM_AUTH_ERR);
}

}  // namespace
