// NSJSONSerialization of base 1.28 accepts what is no JSON (01, trailing commas and garbage), turns
// every number into a double, raises NSRangeException for some truncated texts, overruns the stack
// on deep nesting and gives no NSError for invalid UTF-8. This one is strict and takes UTF-8.

#import <Foundation/Foundation.h>

#include <optional>

#include "json_reader.h"

NSErrorUserInfoKey const NSDebugDescriptionErrorKey = @"NSDebugDescription";

namespace {

/// Builds the Foundation objects of a document.
class ObjectBuilder final : public platform::JSONEvents {
 public:
  ObjectBuilder()
      : containers_([[NSMutableArray alloc] init]), keys_([[NSMutableArray alloc] init]) {}
  ObjectBuilder(const ObjectBuilder &) = delete;
  ObjectBuilder &operator=(const ObjectBuilder &) = delete;
  ~ObjectBuilder() override {
    [containers_ release];
    [keys_ release];
    [root_ release];
  }

  id root() const { return root_; }

  bool null() override { return add([NSNull null]); }
  bool boolean(bool value) override { return add([NSNumber numberWithBool:value]); }
  bool integer(std::int64_t value) override { return add([NSNumber numberWithLongLong:value]); }
  bool unsignedInteger(std::uint64_t value) override {
    const bool isSigned = value <= static_cast<std::uint64_t>(INT64_MAX);
    return add(isSigned ? [NSNumber numberWithLongLong:static_cast<std::int64_t>(value)]
                        : [NSNumber numberWithUnsignedLongLong:value]);
  }
  bool real(double value) override { return add([NSNumber numberWithDouble:value]); }
  bool string(std::string_view value) override { return add(text(value)); }
  bool key(std::string_view name) override {
    NSString *key = text(name);
    if (key == nil) return false;
    [keys_ addObject:key];
    return true;
  }
  bool beginArray() override { return begin([NSMutableArray array]); }
  bool endArray() override { return end(); }
  bool beginObject() override { return begin([NSMutableDictionary dictionary]); }
  bool endObject() override { return end(); }

 private:
  static NSString *text(std::string_view utf8) {
    return [[[NSString alloc] initWithBytes:utf8.data()
                                     length:utf8.size()
                                   encoding:NSUTF8StringEncoding] autorelease];
  }

  bool add(id value) {
    if (value == nil) return false;
    id container = [containers_ lastObject];
    if (container == nil) {
      root_ = [value retain];
    } else if ([container isKindOfClass:[NSMutableArray class]]) {
      [container addObject:value];
    } else {  // of equal keys the last one wins
      [container setObject:value forKey:[keys_ lastObject]];
      [keys_ removeLastObject];
    }
    return true;
  }

  bool begin(id container) {
    add(container);
    [containers_ addObject:container];
    return true;
  }

  bool end() {
    [containers_ removeLastObject];
    return true;
  }

  NSMutableArray *containers_;
  NSMutableArray *keys_;
  id root_ = nil;
};

id fail(NSError **error, NSString *description) {
  if (error != nullptr) {
    NSDictionary *info =
        [NSDictionary dictionaryWithObjectsAndKeys:description, NSLocalizedDescriptionKey,
                                                   description, NSDebugDescriptionErrorKey, nil];
    *error = [NSError errorWithDomain:NSCocoaErrorDomain
                                 code:NSPropertyListReadCorruptError
                             userInfo:info];
  }
  return nil;
}

bool isContainer(id object) {
  return [object isKindOfClass:[NSArray class]] || [object isKindOfClass:[NSDictionary class]];
}

}  // namespace

@implementation NSJSONSerialization (JSON)

+ (id)JSONObjectWithData:(NSData *)data
                 options:(NSJSONReadingOptions)options
                   error:(NSError **)error {
  if (data == nil) {
    [NSException raise:NSInvalidArgumentException format:@"data parameter is nil"];
  }
  if ([data length] == 0) return fail(error, @"empty data is not JSON");
  ObjectBuilder builder;
  const std::string_view text(static_cast<const char *>([data bytes]), [data length]);
  const std::optional<platform::JSONError> problem = platform::readJSON(text, builder);
  if (problem.has_value()) {
    return fail(error, [NSString stringWithFormat:@"line %zu, column %zu: %s", problem->line,
                                                  problem->column, problem->problem.c_str()]);
  }
  if (!isContainer(builder.root()) && !(options & NSJSONReadingFragmentsAllowed)) {
    return fail(error, @"line 1, column 1: the text is neither an array nor an object");
  }
  return [[builder.root() retain] autorelease];
}

@end
