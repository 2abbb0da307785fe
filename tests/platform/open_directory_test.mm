#import <OpenDirectory/OpenDirectory.h>

#include <gtest/gtest.h>

#include <chrono>

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

NSString *withNul(const char *before, const char *behind) {
  return [NSString stringWithFormat:@"%s%C%s", before, unichar{0}, behind];
}

TEST(OpenDirectory, OpensOnlyTheLocalNode) {
  EXPECT_TRUE(localNode() != nil);
  EXPECT_TRUE([ODNode nodeWithSession:nil type:0x2201 error:nil] == nil);
}

TEST(OpenDirectory, FindsUsersAndGroups) {
  EXPECT_TRUE([[user(@"root") recordName] isEqualToString:@"root"]);
  EXPECT_TRUE([[user(@"root") recordType] isEqualToString:kODRecordTypeUsers]);
  EXPECT_TRUE([[group(@"nogroup") recordType] isEqualToString:kODRecordTypeGroups]);
}

TEST(OpenDirectory, HasNoRecordOfAnotherTypeOrOfANameThatIsNotExactlyTheSame) {
  NSString *longName = [@"" stringByPaddingToLength:100000 withString:@"x" startingAtIndex:0];
  for (NSString *name :
       {@"no-such-user", @"nogroup", @"ROOT", @" root", @"root ", @"root\n", @"root:x", @"0", @"",
        withNul("root", "x"), longName, static_cast<NSString *>(nil)}) {
    EXPECT_TRUE(user(name) == nil) << [name UTF8String];
  }
  for (NSString *name : {@"no-such-group", @"nobody", @"Root"}) {
    EXPECT_TRUE(group(name) == nil) << [name UTF8String];
  }
  EXPECT_TRUE(record(@"dsRecTypeStandard:Computers", @"root") == nil);
  EXPECT_TRUE(record(nil, @"root") == nil);
}

TEST(OpenDirectory, CountsUsersAsMembersOfTheirPrimaryGroupAndNotOfOthers) {
  EXPECT_TRUE([group(@"root") isMemberRecord:user(@"root") error:nil]);
  EXPECT_TRUE([group(@"nogroup") isMemberRecord:user(@"nobody") error:nil]);
  EXPECT_FALSE([group(@"root") isMemberRecord:user(@"nobody") error:nil]);
}

TEST(OpenDirectory, HasUsersInGroupsOnly) {
  EXPECT_FALSE([user(@"root") isMemberRecord:user(@"root") error:nil]);
  EXPECT_FALSE([group(@"root") isMemberRecord:group(@"root") error:nil]);
  EXPECT_FALSE([group(@"root") isMemberRecord:nil error:nil]);
}

TEST(OpenDirectory, RejectsAWrongPasswordWithoutDelay) {
  const auto start = std::chrono::steady_clock::now();
  for (NSString *password : {@"wrong", @"", @"x:y", @"é", withNul("x", "y")}) {
    EXPECT_FALSE([user(@"nobody") verifyPassword:password error:nil]);
  }
  // Debian's rules would sleep two seconds after each.
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

TEST(OpenDirectory, VerifiesNoPasswordOfAGroup) {
  EXPECT_FALSE([group(@"root") verifyPassword:@"" error:nil]);
  EXPECT_FALSE([user(@"nobody") verifyPassword:nil error:nil]);
}

}  // namespace
