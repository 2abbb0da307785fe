#import <OpenDirectory/OpenDirectory.h>

#include <security/pam_appl.h>

#include <cstring>
#include <string>

#include "accounts.h"

ODRecordType const kODRecordTypeUsers = @"dsRecTypeStandard:Users";
ODRecordType const kODRecordTypeGroups = @"dsRecTypeStandard:Groups";
ODAttributeType const kODAttributeTypeRecordName = @"dsAttrTypeStandard:RecordName";
ODAttributeType const kODAttributeTypeStandardOnly = @"dsAttributesStandardAll";
NSString *const ODFrameworkErrorDomain = @"com.apple.OpenDirectory";

namespace {

/// Fills the caller's error, if wanted, and returns NO so that a failure is one statement.
BOOL fail(NSError **error, ODFrameworkErrors code, NSString *description) {
  if (error != nullptr) {
    NSDictionary *info = [NSDictionary dictionaryWithObject:description
                                                     forKey:NSLocalizedDescriptionKey];
    *error = [NSError errorWithDomain:ODFrameworkErrorDomain code:code userInfo:info];
  }
  return NO;
}

BOOL failWithErrno(NSError **error, int number) {
  const bool denied = number == EACCES;
  return fail(
      error, denied ? kODErrorRecordPermissionError : kODErrorNodeConnectionFailed,
      [NSString stringWithFormat:@"the local accounts cannot be read: %s", std::strerror(number)]);
}

/// The bytes of a text, embedded NULs included.
std::string bytes(NSString *text) {
  NSData *data = [text dataUsingEncoding:NSUTF8StringEncoding];
  return std::string(static_cast<const char *>([data bytes]), [data length]);
}

struct PamError {
  int status;
  ODFrameworkErrors code;
};

constexpr PamError kPamErrors[] = {
    {PAM_AUTH_ERR, kODErrorCredentialsInvalid},
    {PAM_USER_UNKNOWN, kODErrorCredentialsAccountNotFound},
    {PAM_PERM_DENIED, kODErrorCredentialsNotAuthorized},
    {PAM_CRED_INSUFFICIENT, kODErrorCredentialsNotAuthorized},
    {PAM_AUTHINFO_UNAVAIL, kODErrorCredentialsServerError},
    {PAM_MAXTRIES, kODErrorCredentialsAccountTemporarilyLocked},
    {PAM_ACCT_EXPIRED, kODErrorCredentialsAccountExpired},
    {PAM_NEW_AUTHTOK_REQD, kODErrorCredentialsPasswordExpired},
};

ODFrameworkErrors errorForPamStatus(int status) {
  for (const PamError &row : kPamErrors) {
    if (row.status == status) return row.code;
  }
  return kODErrorCredentialsOperationFailed;
}

}  // namespace

@implementation ODSession

+ (instancetype)defaultSession {
  static ODSession *session = [[ODSession alloc] init];
  return session;
}

+ (instancetype)sessionWithOptions:(NSDictionary *)options error:(NSError **)error {
  return [[[self alloc] initWithOptions:options error:error] autorelease];
}

- (instancetype)initWithOptions:(NSDictionary *)options error:(NSError **)error {
  (void)options;
  (void)error;
  return [super init];
}

@end

@interface ODRecord (Creation)
- (instancetype)initWithType:(ODRecordType)type name:(NSString *)name;
@end

@implementation ODNode

+ (instancetype)nodeWithSession:(ODSession *)session type:(ODNodeType)type error:(NSError **)error {
  return [[[self alloc] initWithSession:session type:type error:error] autorelease];
}

- (instancetype)initWithSession:(ODSession *)session type:(ODNodeType)type error:(NSError **)error {
  (void)session;
  self = [super init];
  if (type == kODNodeTypeLocalNodes) return self;
  fail(error, kODErrorNodeUnknownType,
       [NSString stringWithFormat:@"no node of type 0x%x, only the local one", type]);
  [self release];
  return nil;
}

- (NSString *)nodeName {
  return @"/Local/Default";
}

- (ODRecord *)recordWithRecordType:(ODRecordType)type
                              name:(NSString *)name
                        attributes:(id)attributes
                             error:(NSError **)error {
  (void)attributes;
  const BOOL isUser = [type isEqualToString:kODRecordTypeUsers];
  if (!isUser && ![type isEqualToString:kODRecordTypeGroups]) {
    fail(error, kODErrorRecordInvalidType,
         [NSString stringWithFormat:@"no records of type %@, only users and groups", type]);
    return nil;
  }
  if ([name length] == 0) {
    fail(error, kODErrorRecordParameterError, @"a record name is required");
    return nil;
  }
  const std::string key = bytes(name);
  const platform::LookupResult result = isUser ? platform::findUser(key) : platform::findGroup(key);
  switch (result.outcome) {
    case platform::Lookup::Found:
      return [[[ODRecord alloc] initWithType:type name:name] autorelease];
    case platform::Lookup::Unknown:
      fail(error, kODErrorRecordNoLongerExists,
           [NSString stringWithFormat:@"no %@ is named %@", isUser ? @"user" : @"group", name]);
      return nil;
    case platform::Lookup::Failed:
      failWithErrno(error, result.error);
      return nil;
  }
  return nil;
}

@end

@implementation ODRecord

@synthesize recordType = _recordType;
@synthesize recordName = _recordName;

- (instancetype)initWithType:(ODRecordType)type name:(NSString *)name {
  self = [super init];
  if (self != nil) {
    _recordType = [type copy];
    _recordName = [name copy];
  }
  return self;
}

- (void)dealloc {
  [_recordType release];
  [_recordName release];
  [super dealloc];
}

- (BOOL)isUser {
  return [_recordType isEqualToString:kODRecordTypeUsers];
}

- (BOOL)verifyPassword:(NSString *)password error:(NSError **)error {
  if (![self isUser]) return fail(error, kODErrorRecordInvalidType, @"only users have a password");
  if (password == nil) return fail(error, kODErrorRecordParameterError, @"a password is required");
  const int status = platform::verifyPassword(bytes(_recordName), bytes(password));
  if (status == PAM_SUCCESS) return YES;
  return fail(error, errorForPamStatus(status),
              [NSString stringWithFormat:@"the password of %@ was not accepted: %s", _recordName,
                                         platform::describePamStatus(status).c_str()]);
}

- (BOOL)isMemberRecord:(ODRecord *)record error:(NSError **)error {
  if ([self isUser]) return fail(error, kODErrorRecordInvalidType, @"only groups have members");
  if (![record isUser]) {
    return fail(error, kODErrorRecordParameterError, @"the member has to be a user record");
  }
  const platform::MembershipResult result =
      platform::isMember(bytes([record recordName]), bytes(_recordName));
  switch (result.outcome) {
    case platform::Membership::Member:
      return YES;
    case platform::Membership::NotMember:
      if (error != nullptr) *error = nil;
      return NO;
    case platform::Membership::UnknownUser:
    case platform::Membership::UnknownGroup:
      return fail(error, kODErrorRecordNoLongerExists, @"the user or the group is gone");
    case platform::Membership::Failed:
      return failWithErrno(error, result.error);
  }
  return NO;
}

@end
