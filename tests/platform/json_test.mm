#import <Foundation/Foundation.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

constexpr NSJSONReadingOptions kContainersOnly{};

id parse(const std::string &text, NSError **error, NSJSONReadingOptions options) {
  NSData *data = [NSData dataWithBytes:text.data() length:text.size()];
  return [NSJSONSerialization JSONObjectWithData:data options:options error:error];
}

/// The description of the error for a document; empty when it is accepted.
std::string errorFor(const std::string &text) {
  NSError *error = nil;
  id object = parse(text, &error, kContainersOnly);
  if (object != nil) return "";
  return error == nil ? "no NSError" : [[error localizedDescription] UTF8String];
}

std::string nested(int levels) { return std::string(levels, '[') + std::string(levels, ']'); }

TEST(JSON, AcceptsValidDocuments) {
  const std::string valid[] = {
      "{}",
      "[]",
      " \t\r\n[ ] \t\r\n",
      "\xEF\xBB\xBF{}",
      R"({"a":{"b":[1,-2,3.5,1e3,-0,0.1E-2,true,false,null,""]}})",
      R"(["\"\\\/\b\f\n\r\t\u00e9\ud83d\ude00\u0000"])",
      "[\"\xC3\xA9\"]",
      "[18446744073709551615,-9223372036854775808,123456789012345678901234567890]",
      nested(512),
  };
  for (const std::string &text : valid) EXPECT_EQ(errorFor(text), "") << text;
}

struct InvalidDocument {
  std::string text;
  std::string place;
};

TEST(JSON, RejectsAnythingElseAndSaysWhere) {
  using namespace std::string_literals;
  const InvalidDocument rows[] = {
      {"[1,]", "line 1, column 4: "},
      {"{\"a\":1,}", "line 1, column 8: "},
      {"[01]", "line 1, column 3: "},
      {"[0x10]", "line 1, column 3: "},
      {"[1e999]", "line 1, column 6: "},
      {"[NaN]", "line 1, column 2: "},
      {"{a:1}", "line 1, column 2: "},
      {"{\"a\" 1}", "line 1, column 6: "},
      {"[1 2]", "line 1, column 4: "},
      {"[] x", "line 1, column 4: "},
      {"[// c\n]", "line 1, column 2: "},
      {"[\"a\nb\"]", "line 1, column 4: "},
      {"[\n  1,\n  x\n]", "line 3, column 3: "},
      {"[\"\xC3\xA9\", x]", "line 1, column 7: "},
      {"[\"\xFF\"]", "line 1, column 3: "},
      {"[\"\xC3\"]", "line 1, column 4: "},
      {"[\"\xC0\xAF\"]", "line 1, column 3: "},
      {"[\"\xED\xA0\x80\"]", "line 1, column 4: "},
      {R"(["\ud800"])", "line 1, column 9: "},
      {R"(["\udc00"])", "line 1, column 8: "},
      {R"(["\ud800\u0041"])", "line 1, column 14: "},
      {R"(["\x"])", "line 1, column 4: "},
      {R"(["\u12g4"])", "line 1, column 7: "},
      {"[]\0"s, "line 1, column 3: "},
      {"[1,\0 2]"s, "line 1, column 4: "},
      {"[\"a\0b\"]"s, "line 1, column 4: "},
      {"\xEF\xBB\xBF", "line 1, column "},
      {" ", "line 1, column "},
      {"\"text\"", "line 1, column 1: "},
      {"null", "line 1, column 1: "},
      {nested(513), "nested more than 512 levels"},
      {nested(100000), "nested more than 512 levels"},
      {std::string(100000, '['), "nested more than 512 levels"},
  };
  for (const InvalidDocument &row : rows) {
    const std::string problem = errorFor(row.text);
    EXPECT_EQ(problem.substr(0, row.place.size()), row.place)
        << row.text.substr(0, 40) << " gives: " << problem;
    EXPECT_GT(problem.size(), row.place.size()) << row.text.substr(0, 40);
  }
}

TEST(JSON, EmptyDataIsAnErrorAndNilDataIsRaised) {
  EXPECT_NE(errorFor(""), "");
  EXPECT_NE(errorFor(""), "no NSError");
  BOOL raised = NO;
  @try {
    [NSJSONSerialization JSONObjectWithData:nil options:kContainersOnly error:nil];
  } @catch (NSException *exception) {
    raised = [[exception name] isEqualToString:NSInvalidArgumentException];
  }
  EXPECT_TRUE(raised);
}

TEST(JSON, ErrorsHaveTheSystemsDomainAndAreOptional) {
  NSError *error = nil;
  EXPECT_TRUE(parse("[", &error, kContainersOnly) == nil);
  EXPECT_TRUE([[error domain] isEqualToString:NSCocoaErrorDomain]);
  EXPECT_EQ([error code], NSPropertyListReadCorruptError);
  EXPECT_TRUE(parse("[", nullptr, kContainersOnly) == nil);
}

TEST(JSON, RejectsADocumentCutAnywhere) {
  const std::string whole = "{\"é\": [1, 2.5e-3, true, null, \"\\u00e9x\"], \"b\": {\"c\": false}}";
  ASSERT_EQ(errorFor(whole), "");
  for (std::size_t length = 0; length < whole.size(); ++length) {
    const std::string problem = errorFor(whole.substr(0, length));
    EXPECT_NE(problem, "") << length;
    EXPECT_NE(problem, "no NSError") << length;
  }
}

TEST(JSON, KeepsEveryTypeDistinct) {
  NSArray *values =
      parse("[1,-1,9223372036854775808,1.0,true,false,null,\"1\",[],{}]", nullptr, kContainersOnly);
  ASSERT_EQ([values count], 10u);
  const std::string_view integers = "ilqsILQS";
  EXPECT_NE(integers.find([[values objectAtIndex:0] objCType]), std::string_view::npos);
  EXPECT_NE(integers.find([[values objectAtIndex:1] objCType]), std::string_view::npos);
  EXPECT_EQ([[values objectAtIndex:1] longLongValue], -1);
  EXPECT_EQ([[values objectAtIndex:2] unsignedLongLongValue], 9223372036854775808u);
  EXPECT_STREQ([[values objectAtIndex:3] objCType], "d");
  EXPECT_EQ([values objectAtIndex:4], [NSNumber numberWithBool:YES]);
  EXPECT_STREQ([[values objectAtIndex:4] objCType], [[NSNumber numberWithBool:YES] objCType]);
  EXPECT_FALSE([[values objectAtIndex:5] boolValue]);
  EXPECT_EQ([values objectAtIndex:6], [NSNull null]);
  EXPECT_TRUE([[values objectAtIndex:7] isEqual:@"1"]);
  EXPECT_TRUE([[values objectAtIndex:8] isKindOfClass:[NSArray class]]);
  EXPECT_TRUE([[values objectAtIndex:9] isKindOfClass:[NSDictionary class]]);
}

TEST(JSON, KeepsStringsWhole) {
  NSArray *values = parse(R"(["a\u0000b", "\ud83d\ude00", "", "é\n"])", nullptr, kContainersOnly);
  const unichar withNul[] = {'a', 0, 'b'};
  EXPECT_TRUE([[values objectAtIndex:0] isEqual:[NSString stringWithCharacters:withNul length:3]]);
  EXPECT_EQ([[values objectAtIndex:1] length], 2u);
  EXPECT_STREQ([[values objectAtIndex:1] UTF8String], "\U0001F600");
  EXPECT_TRUE([[values objectAtIndex:2] isEqual:@""]);
  EXPECT_STREQ([[values objectAtIndex:3] UTF8String], "é\n");
}

TEST(JSON, TheLastOfEqualKeysWins) {
  NSDictionary *object = parse(R"({"a":1,"b":{"a":2},"a":3})", nullptr, kContainersOnly);
  EXPECT_EQ([[object objectForKey:@"a"] intValue], 3);
  EXPECT_EQ([[[object objectForKey:@"b"] objectForKey:@"a"] intValue], 2);
  EXPECT_EQ([object count], 2u);
}

TEST(JSON, TakesFragmentsOnRequest) {
  EXPECT_TRUE([parse("\"x\"", nullptr, NSJSONReadingFragmentsAllowed) isEqual:@"x"]);
  EXPECT_EQ(parse("null", nullptr, NSJSONReadingFragmentsAllowed), [NSNull null]);
}

}  // namespace
