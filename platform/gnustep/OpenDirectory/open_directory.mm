#import <OpenDirectory/OpenDirectory.h>

#include <string>

#include "accounts.h"

ODRecordType const kODRecordTypeUsers = @"dsRecTypeStandard:Users";
ODRecordType const kODRecordTypeGroups = @"dsRecTypeStandard:Groups";

namespace {

/// The bytes of a text, embedded NULs included.
std::string bytes(NSString *text) {
  NSData *data = [text dataUsingEncoding:NSUTF8StringEncoding];
  return std::string(static_cast<const char *>([data bytes]), [data length]);
}

bool exists(ODRecordType type, NSString *name) {
  if ([type isEqual:kODRecordTypeUsers]) return platform::userExists(bytes(name));
  return [type isEqual:kODRecordTypeGroups] && platform::groupExists(bytes(name));
}

}  // namespace

@implementation ODSession
@end

@interface ODRecord (Creation)
- (instancetype)initWithType:(ODRecordType)type name:(NSString *)name;
@end

@implementation ODNode

+ (instancetype)nodeWithSession:(ODSession *)session type:(ODNodeType)type error:(NSError **)error {
  (void)session;
  (void)error;
  return type == kODNodeTypeLocalNodes ? [[[self alloc] init] autorelease] : nil;
}

- (ODRecord *)recordWithRecordType:(ODRecordType)type
                              name:(NSString *)name
                        attributes:(id)attributes
                             error:(NSError **)error {
  (void)attributes;
  (void)error;
  return exists(type, name) ? [[[ODRecord alloc] initWithType:type name:name] autorelease] : nil;
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

- (BOOL)verifyPassword:(NSString *)password error:(NSError **)error {
  (void)error;
  return [_recordType isEqual:kODRecordTypeUsers] && password != nil &&
         platform::verifyPassword(bytes(_recordName), bytes(password));
}

- (BOOL)isMemberRecord:(ODRecord *)record error:(NSError **)error {
  (void)error;
  return [_recordType isEqual:kODRecordTypeGroups] &&
         [[record recordType] isEqual:kODRecordTypeUsers] &&
         platform::isMember(bytes([record recordName]), bytes(_recordName));
}

@end
