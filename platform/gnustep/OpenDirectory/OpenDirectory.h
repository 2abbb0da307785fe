/// The part of macOS's OpenDirectory framework that looks up local users and groups, over the
/// accounts that Debian 12 knows: records come from the name service (NSS), passwords are verified
/// by PAM. Names are matched exactly. All calls block; use them from one thread.
///
/// A failure is nil or NO, and no more: error out-parameters are not filled here.

#pragma once

#import <Foundation/Foundation.h>

typedef uint32_t ODNodeType;
typedef NSString *ODRecordType;

enum : ODNodeType {
  kODNodeTypeLocalNodes = 0x2200,
};

extern ODRecordType const kODRecordTypeUsers;
extern ODRecordType const kODRecordTypeGroups;

/// A connection to the directory. There is nothing to connect to here.
@interface ODSession : NSObject
@end

@class ODRecord;

/// A source of records.
@interface ODNode : NSObject

/// The local node; nil for any other type.
+ (instancetype)nodeWithSession:(ODSession *)session type:(ODNodeType)type error:(NSError **)error;

/// The record named `name`, or nil. `attributes` names what to fetch along with the record; none
/// are kept here.
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

/// Whether `password` is that of this user, and the account is usable.
- (BOOL)verifyPassword:(NSString *)password error:(NSError **)error;

/// Whether the user `record` belongs to this group, by listing or as its primary group.
- (BOOL)isMemberRecord:(ODRecord *)record error:(NSError **)error;

@end
