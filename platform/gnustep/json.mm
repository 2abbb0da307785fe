// NSJSONSerialization of base 1.28 accepts input that is not JSON (01, trailing commas and
// garbage), turns every number into a double, raises NSRangeException for some truncated input,
// overruns the stack on deep nesting and gives no NSError for invalid UTF-8. This one is strict
// (RFC 8259): UTF-8, with or without a byte order mark, and only white space after the document. It
// is built on nlohmann's parser, whose events it turns into Foundation objects. Numbers that fit 64
// bits become integers, others doubles.

#import <Foundation/Foundation.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace {

/// As deep as macOS's parser goes.
constexpr NSUInteger kMaxDepth = 512;

/// The reason in an nlohmann message: without its error number and position, and without the text
/// that was read last, which may not be valid UTF-8.
std::string reasonFrom(std::string message) {
  const std::size_t number = message.find("] ");
  if (number != std::string::npos) message.erase(0, number + 2);
  const std::size_t position = message.find(": ");
  if (message.starts_with("parse error at") && position != std::string::npos) {
    message.erase(0, position + 2);
  }
  const std::size_t lastRead = message.find("; last read: '");
  if (lastRead != std::string::npos) {
    const std::size_t end = message.rfind('\'');
    message.erase(lastRead, end + 1 - lastRead);
  }
  return message;
}

/// Builds the Foundation objects of a document. Returning false stops the parser.
class ObjectBuilder final : public nlohmann::json_sax<nlohmann::json> {
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
  bool isTooDeep() const { return isTooDeep_; }
  const std::string &problem() const { return problem_; }
  /// How many bytes end with the offending one; 0 when nothing is wrong with any of them.
  std::size_t position() const { return position_; }

  bool null() override { return add([NSNull null]); }
  bool boolean(bool value) override { return add([NSNumber numberWithBool:value]); }
  bool number_integer(number_integer_t value) override {
    return add([NSNumber numberWithLongLong:value]);
  }
  bool number_unsigned(number_unsigned_t value) override {
    const bool isSigned = value <= static_cast<std::uint64_t>(INT64_MAX);
    return add(isSigned ? [NSNumber numberWithLongLong:static_cast<std::int64_t>(value)]
                        : [NSNumber numberWithUnsignedLongLong:value]);
  }
  bool number_float(number_float_t value, const string_t &) override {
    return add([NSNumber numberWithDouble:value]);
  }
  bool string(string_t &value) override { return add(nsString(value)); }
  bool binary(binary_t &) override { return false; }
  bool key(string_t &name) override {
    [keys_ addObject:nsString(name)];
    return true;
  }
  bool start_array(std::size_t) override { return begin([NSMutableArray array]); }
  bool end_array() override { return end(); }
  bool start_object(std::size_t) override { return begin([NSMutableDictionary dictionary]); }
  bool end_object() override { return end(); }

  bool parse_error(std::size_t position, const std::string &,
                   const nlohmann::detail::exception &exception) override {
    position_ = position;
    problem_ = reasonFrom(exception.what());
    return false;
  }

 private:
  /// The parser passes valid UTF-8 only.
  static NSString *nsString(std::string_view utf8) {
    return [[[NSString alloc] initWithBytes:utf8.data()
                                     length:utf8.size()
                                   encoding:NSUTF8StringEncoding] autorelease];
  }

  bool add(id value) {
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
    isTooDeep_ = [containers_ count] == kMaxDepth;
    if (isTooDeep_) return false;
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
  bool isTooDeep_ = false;
  std::string problem_;
  std::size_t position_ = 0;
};

/// "line 1, column 1: problem"; both count from 1, columns in characters.
NSString *describe(std::string_view text, std::size_t offset, const std::string &problem) {
  const std::string_view before = text.substr(0, offset);
  const std::string_view line = before.substr(before.rfind('\n') + 1);  // npos + 1 is 0
  const auto isCharacterStart = [](char byte) { return (byte & 0xC0) != 0x80; };
  return [NSString stringWithFormat:@"line %td, column %td: %s",
                                    std::count(before.begin(), before.end(), '\n') + 1,
                                    std::count_if(line.begin(), line.end(), isCharacterStart) + 1,
                                    problem.c_str()];
}

/// Why the text is not JSON; nil when it is, and the builder has its objects.
NSString *parse(std::string_view text, ObjectBuilder &builder) {
  // The parser takes NUL for the end of the text and would ignore the rest.
  const std::string_view visible = text.substr(0, text.find('\0'));
  const bool complete = nlohmann::json::sax_parse(visible.begin(), visible.end(), &builder);
  if (builder.isTooDeep()) {
    return [NSString stringWithFormat:@"nested more than %lu levels deep", kMaxDepth];
  }
  const std::size_t position = builder.position();
  if (visible.size() < text.size() && (complete || position >= visible.size())) {
    return describe(text, visible.size(), "a NUL character");
  }
  return complete ? nil : describe(text, position == 0 ? 0 : position - 1, builder.problem());
}

id fail(NSError **error, NSString *description) {
  if (error != nullptr) {
    NSDictionary *info = [NSDictionary dictionaryWithObject:description
                                                     forKey:NSLocalizedDescriptionKey];
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
  NSString *problem = parse(text, builder);
  if (problem != nil) return fail(error, problem);
  if (!isContainer(builder.root()) && !(options & NSJSONReadingFragmentsAllowed)) {
    return fail(error, @"line 1, column 1: the text is neither an array nor an object");
  }
  return [[builder.root() retain] autorelease];
}

@end
