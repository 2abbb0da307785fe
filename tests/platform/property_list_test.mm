#import <Foundation/Foundation.h>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "doubles/scratch_folder.h"
#include "property_list_guard.h"

namespace {

const std::string kHead = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
const std::string kDoctype = "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                             "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n";
const std::string kBody =
    "<plist version=\"1.0\">\n<dict>\n<key>language</key>\n<string>fr</string>\n"
    "<key>port</key>\n<integer>4000</integer>\n<key>profile</key>\n<true/>\n"
    "<key>server</key>\n<string>bücher.example</string>\n</dict>\n</plist>\n";

std::string binaryPropertyList(id propertyList) {
  NSData *data = [NSPropertyListSerialization dataWithPropertyList:propertyList
                                                            format:NSPropertyListBinaryFormat_v1_0
                                                           options:0
                                                             error:nil];
  return std::string(static_cast<const char *>([data bytes]), [data length]);
}

class PropertyListFile : public testing::Test {
 protected:
  NSString *file() const { return [NSString stringWithUTF8String:path_.c_str()]; }

  NSDictionary *read() const {
    return [[[NSDictionary alloc] initWithContentsOfFile:file()] autorelease];
  }

  NSDictionary *read(const std::string &contents) const {
    folder_.write("server.plist", contents);
    return read();
  }

  void expectValues(NSDictionary *list) const {
    ASSERT_TRUE(list != nil);
    EXPECT_TRUE([[list objectForKey:@"language"] isEqual:@"fr"]);
    EXPECT_STREQ([[list objectForKey:@"server"] UTF8String], "bücher.example");
    EXPECT_EQ([[list objectForKey:@"port"] intValue], 4000);
    EXPECT_NE(std::string_view("ilqsILQS").find([[list objectForKey:@"port"] objCType]),
              std::string_view::npos);
    EXPECT_STREQ([[list objectForKey:@"profile"] objCType],
                 [[NSNumber numberWithBool:YES] objCType]);
  }

  /// The same values in the binary form.
  std::string binaryBody() const { return binaryPropertyList(read(kBody)); }

  doubles::ScratchFolder folder_;
  std::string path_ = folder_.file("server.plist");
};

/// A binary list of the given objects, of which the first is the root.
std::string binary(const std::vector<std::string> &objects, char referenceSize = 1) {
  const auto bigEndian = [](std::size_t value, int size) {
    std::string bytes;
    while (size-- > 0) bytes += static_cast<char>(value >> (8 * size));
    return bytes;
  };
  std::string list = "bplist00";
  std::string offsets;
  for (const std::string &object : objects) {
    offsets += bigEndian(list.size(), 3);
    list += object;
  }
  const std::size_t table = list.size();
  return list + offsets + std::string(6, '\0') + '\3' + referenceSize +
         bigEndian(objects.size(), 8) + bigEndian(0, 8) + bigEndian(table, 8);
}

std::string listWithServer(const std::string &text) {
  return kHead + "<plist version=\"1.0\"><dict><key>server</key><string>" + text +
         "</string></dict></plist>";
}

std::string repeated(const std::string &text, int count) {
  std::string result;
  for (int i = 0; i < count; ++i) result += text;
  return result;
}

TEST_F(PropertyListFile, IsReadInEveryFormOfTheSystem) {
  for (const std::string &contents :
       {kHead + kDoctype + kBody, kHead + kBody, kBody, kDoctype + kBody, "\n " + kBody,
        "\xEF\xBB\xBF" + kHead + kBody, "<!-- comment -->" + kBody, binaryBody()}) {
    SCOPED_TRACE(contents.substr(0, 40));
    expectValues(read(contents));
  }
}

TEST_F(PropertyListFile, IsReadInTheOldTextForm) {
  NSDictionary *list = read("{ language = fr; server = \"a b\"; }");
  EXPECT_TRUE([[list objectForKey:@"server"] isEqual:@"a b"]);
}

TEST_F(PropertyListFile, KeepsBackslashesInXMLStrings) {
  for (const char *text : {"\\U0041", "\\\\U0041\\U0042", "\\u0041", "\\U", "\\n", "\\101"}) {
    EXPECT_STREQ([[read(listWithServer(text)) objectForKey:@"server"] UTF8String], text);
  }
}

TEST_F(PropertyListFile, DecodesCompleteCharacterReferencesOnly) {
  NSDictionary *list = read(listWithServer("&#65;&#x42;&#x1F600;"));
  EXPECT_STREQ([[list objectForKey:@"server"] UTF8String], "AB\xF0\x9F\x98\x80");
  for (const char *text : {"&#;", "&#x;", "&#65", "&#6G;", "&#xG;", "&#x12345678;"}) {
    EXPECT_TRUE(read(listWithServer(text)) == nil) << text;
  }
}

TEST_F(PropertyListFile, FillsMutableDictionariesToo) {
  read(kBody);
  NSMutableDictionary *list = [NSMutableDictionary dictionaryWithContentsOfFile:file()];
  [list setObject:@"x" forKey:@"server"];
  EXPECT_EQ([list count], 4u);
}

TEST_F(PropertyListFile, IsNotReadWhereThereIsNoRegularFile) {
  EXPECT_TRUE(read() == nil) << "missing";
  EXPECT_TRUE([[[NSDictionary alloc] initWithContentsOfFile:nil] autorelease] == nil);
  EXPECT_TRUE([NSDictionary dictionaryWithContentsOfFile:@""] == nil);
  ASSERT_EQ(mkdir(path_.c_str(), 0700), 0);
  EXPECT_TRUE(read() == nil) << "a folder";
  ASSERT_EQ(rmdir(path_.c_str()), 0);
  ASSERT_EQ(mkfifo(path_.c_str(), 0600), 0);
  EXPECT_TRUE(read() == nil) << "a pipe that nobody writes";
}

/// Root may read every file, so this reads as an ordinary user.
[[noreturn]] void exitWhetherReadable(NSString *path) {
  if (geteuid() == 0 && setuid(65534) != 0) _exit(3);
  id list = [[NSDictionary alloc] initWithContentsOfFile:path];
  _exit(list == nil ? 0 : 1);
}

TEST_F(PropertyListFile, MayBeUnreadable) {
  char path[] = "/tmp/property-list.XXXXXX";  // where every user gets
  const int descriptor = mkstemp(path);
  ASSERT_GE(write(descriptor, kBody.data(), kBody.size()), 0);
  NSString *file = [NSString stringWithUTF8String:path];
  GTEST_FLAG_SET(death_test_style, "fast");
  ASSERT_EQ(fchmod(descriptor, 0644), 0);
  EXPECT_EXIT(exitWhetherReadable(file), testing::ExitedWithCode(1), "");
  ASSERT_EQ(fchmod(descriptor, 0), 0);
  EXPECT_EXIT(exitWhetherReadable(file), testing::ExitedWithCode(0), "");
  close(descriptor);
  unlink(path);
}

TEST_F(PropertyListFile, IsNotADictionaryWhenItHoldsSomethingElse) {
  using namespace std::string_literals;
  const std::string rows[] = {
      "",
      "\n",
      "hello",
      "\x00\x01\x02"s,
      "\x01\x02"s,
      "{\"server\": \"json\"}",
      kHead,
      kHead + "<plist version=\"1.0\"><array><string>a</string></array></plist>",
      kHead + "<plist version=\"1.0\"><string>a</string></plist>",
      kHead + "<plist version=\"1.0\"></plist>",
      "(a, b)",
      "{ a = ",
      binaryPropertyList(@"text"),
      binaryPropertyList([NSArray arrayWithObject:@"a"]),
      "<?ml><",
      "bplist00",
      "bplist00" + std::string(32, '\0'),
      "bplist00" + std::string(32, '\xFF'),
      "\x89PNG\r\n\x1A\n" + std::string(100, '\7'),
      listWithServer("\xFF\xFE"),
      "{ server = \"\xFF\xFE\"; }",
  };
  testing::internal::CaptureStderr();
  for (const std::string &contents : rows) {
    EXPECT_TRUE(read(contents) == nil) << contents.substr(0, 80);
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(PropertyListGuard, RefusesTextThatTheParserTakesForXML) {
  for (const std::string spaces : {"", "\b", "\v", "\n\f", "\v "}) {
    EXPECT_EQ(platform::harmlessForm(spaces + "<?ml><"), std::nullopt) << spaces.size();
  }
}

TEST_F(PropertyListFile, MayBeCutAnywhere) {
  testing::internal::CaptureStderr();
  for (const std::string &whole : {kHead + kDoctype + kBody, binaryBody()}) {
    for (std::size_t length = 0; length < whole.size(); ++length) {
      NSDictionary *list = read(whole.substr(0, length));
      // Nothing after the closing tag of the dictionary is needed.
      if (length < whole.find("</dict>")) EXPECT_TRUE(list == nil) << length;
    }
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(PropertyListFile, MayHaveAnyByteChanged) {
  for (const std::string &whole : {kHead + kBody, binaryBody()}) {
    for (std::size_t i = 0; i < whole.size(); ++i) {
      for (const char flip : {'\x01', '\x10', '\x80', '\xFF'}) {
        std::string changed = whole;
        changed[i] = static_cast<char>(changed[i] ^ flip);
        @autoreleasepool {
          NSDictionary *list = read(changed);
          EXPECT_TRUE(list == nil || [list isKindOfClass:[NSDictionary class]]);
        }
      }
    }
  }
}

TEST_F(PropertyListFile, MayBeHuge) {
  EXPECT_TRUE(read(listWithServer(std::string(2 << 20, 'x'))) == nil);
  ASSERT_EQ(truncate(path_.c_str(), off_t{1} << 40), 0);
  EXPECT_TRUE(read() == nil);
}

TEST_F(PropertyListFile, MayBeNestedDeeply) {
  const std::string open = kHead + "<plist version=\"1.0\"><dict><key>a</key>";
  for (const int levels : {1000, 20000, 60000}) {
    SCOPED_TRACE(levels);
    @autoreleasepool {
      NSDictionary *xml = read(open + repeated("<array>", levels) + repeated("</array>", levels) +
                               "</dict></plist>");
      EXPECT_EQ(xml != nil, levels <= 20000);
      EXPECT_TRUE(read(open + repeated("<array>", levels)) == nil);
      EXPECT_TRUE(read("{ a = " + repeated("(", levels)) == nil);
    }
  }
  EXPECT_TRUE(read(repeated("<", 1000000)) == nil);
  EXPECT_TRUE(read(kHead + repeated("<array><!-- </a> -->/>", 45000)) == nil);
}

TEST_F(PropertyListFile, MayContainItselfOrExpandWithoutLimit) {
  using namespace std::string_literals;
  const std::string key = "\x51k"s;
  EXPECT_TRUE(read(binary({"\xD1\x01\x00"s, key})) == nil) << "dictionary in itself";
  EXPECT_TRUE(read(binary({"\xD1\x01\x02"s, key, "\xA1\x02"s})) == nil) << "array in itself";
  EXPECT_TRUE(read(binary({"\xD1\x01\x02"s, key, "\x10\x05"s})) != nil) << "well-formed";
  EXPECT_TRUE(read(binary({"\xDF\x13\x10\0\0\0\0\0\0\0"s, key})) == nil) << "huge count";
  EXPECT_TRUE(read(binary({"\xD1\x01\x02"s, key, "\x5F\x12\x7F\0\0\0"s})) == nil) << "huge text";
  EXPECT_TRUE(read(binary({"\xD1\x01\x02"s, key, "\x4F\x12\x7F\0\0\0"s})) == nil) << "huge data";

  std::vector<std::string> doubling = {"\xD1\x01\x02"s, key};
  std::vector<std::string> deep = doubling;
  for (char i = 3; i < 60; ++i) doubling.push_back("\xA2"s + i + i);
  doubling.push_back(key);
  EXPECT_TRUE(read(binary(doubling)) == nil) << "each level twice the one below";
  for (int i = 3; i < 20000; ++i) {
    deep.push_back("\xA1"s + static_cast<char>(i >> 8) + static_cast<char>(i));
  }
  deep.push_back(key);
  deep[0] = "\xD1\0\x01\0\x02"s;
  EXPECT_TRUE(read(binary(deep, 2)) == nil) << "too many levels";
}

}  // namespace
