/// The part of macOS's OpenDirectory framework that looks up local users and groups, over the
/// accounts that Debian 12 knows: records come from the name service (NSS), passwords are verified
/// by PAM. Names are matched exactly. All calls block; use them from one thread at a time.
///
/// Errors are in `ODFrameworkErrorDomain`, with a `localizedDescription`. An error out-parameter
/// may be NULL.

#pragma once

#import <Foundation/Foundation.h>

typedef uint32_t ODNodeType;
typedef NSString *ODRecordType;
typedef NSString *ODAttributeType;

/// The kinds of node. Only the local node can be opened here.
enum : ODNodeType {
  kODNodeTypeAuthentication = 0x2201,
  kODNodeTypeLocalNodes = 0x2200,
};

extern ODRecordType const kODRecordTypeUsers;
extern ODRecordType const kODRecordTypeGroups;

extern ODAttributeType const kODAttributeTypeRecordName;
extern ODAttributeType const kODAttributeTypeStandardOnly;

extern NSString *const ODFrameworkErrorDomain;

/// Error codes of `ODFrameworkErrorDomain`, with the system's own values.
typedef NS_ENUM(uint32_t, ODFrameworkErrors) {
  kODErrorSuccess = 0,
  kODErrorNodeUnknownType = 2001,
  kODErrorNodeConnectionFailed = 2100,
  kODErrorRecordPermissionError = 4001,
  kODErrorRecordParameterError = 4100,
  kODErrorRecordInvalidType = 4101,
  kODErrorRecordNoLongerExists = 4104,
  kODErrorCredentialsInvalid = 5000,
  kODErrorCredentialsNotAuthorized = 5101,
  kODErrorCredentialsOperationFailed = 5103,
  kODErrorCredentialsServerError = 5202,
  kODErrorCredentialsAccountNotFound = 5300,
  kODErrorCredentialsAccountExpired = 5302,
  kODErrorCredentialsAccountTemporarilyLocked = 5304,
  kODErrorCredentialsPasswordExpired = 5400,
};

/// A connection to the directory. There is nothing to connect to here; it always opens.
@interface ODSession : NSObject
+ (instancetype)defaultSession;
+ (instancetype)sessionWithOptions:(NSDictionary *)options error:(NSError **)error;
- (instancetype)initWithOptions:(NSDictionary *)options error:(NSError **)error;
@end

@class ODRecord;

/// A source of records.
@interface ODNode : NSObject

/// The local node; nil and `kODErrorNodeUnknownType` for any other type.
+ (instancetype)nodeWithSession:(ODSession *)session type:(ODNodeType)type error:(NSError **)error;
- (instancetype)initWithSession:(ODSession *)session type:(ODNodeType)type error:(NSError **)error;

@property(nonatomic, readonly) NSString *nodeName;

/// The record named `name`, or nil. Test the result, not the error: macOS may leave the error unset
/// when there is no such record, while this one says `kODErrorRecordNoLongerExists`. `attributes`
/// names what to fetch along with the record and may be nil; no attributes are kept here.
- (ODRecord *)recordWithRecordType:(ODRecordType)type
                              name:(NSString *)name
                        attributes:(id)attributes
                             error:(NSError **)error;

@end

/// A user or a group.
@interface ODRecord : NSObject {
  ODRecordType _recordType;
  NSString *_recordName;
}

@property(nonatomic, readonly) NSString *recordType;
@property(nonatomic, readonly) NSString *recordName;

/// Whether `password` is that of this user. Wrong password, unusable account and denied access are
/// NO with an error.
- (BOOL)verifyPassword:(NSString *)password error:(NSError **)error;

/// Whether the user `record` belongs to this group, by listing or as its primary group. A
/// user who is not a member is an answer, not a failure: NO, and `*error` is set to nil.
- (BOOL)isMemberRecord:(ODRecord *)record error:(NSError **)error;

@end
