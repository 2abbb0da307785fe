#import <Foundation/Foundation.h>
#include <gtest/gtest.h>
#include <objc/runtime.h>
#include <sys/stat.h>

#include "doubles/scratch_folder.h"
#include "settings/server_data.h"

namespace {

/// While this object lives, property lists are not read; it counts how many would have been, so
/// that what the platform itself does with other than regular files does not matter.
class PropertyListReads {
 public:
  PropertyListReads() {
    count_ = 0;
    original_ = method_setImplementation(method(), reinterpret_cast<IMP>(countRead));
  }
  ~PropertyListReads() { method_setImplementation(method(), original_); }
  static int count() { return count_; }

 private:
  static id countRead(id self, SEL, NSString *) {
    ++count_;
    [self release];
    return nil;
  }
  static Method method() {
    return class_getInstanceMethod([NSDictionary class], @selector(initWithContentsOfFile:));
  }

  inline static int count_ = 0;
  IMP original_;
};

TEST(StoredSettingsFile, IsReadOnlyWhenItIsARegularFileOrALinkToOne) {
  doubles::ScratchFolder folder;
  folder.write("regular", "");
  ASSERT_EQ(::mkfifo(folder.file("fifo").c_str(), 0600), 0);
  for (const char *name : {"regular", "fifo", "missing", "."}) {
    std::filesystem::create_symlink(name, folder.file("link to " + std::string(name)));
  }
  const std::pair<const char *, int> reads[] = {
      {"regular", 1}, {"link to regular", 1}, {"fifo", 0}, {"link to fifo", 0},
      {"missing", 0}, {"link to missing", 0}, {".", 0},    {"link to .", 0},
  };
  for (const auto &[name, expected] : reads) {
    const PropertyListReads counter;
    EXPECT_EQ(settings::readServerData(folder.file(name)).port, "6000");
    EXPECT_EQ(PropertyListReads::count(), expected) << name;
  }
  const PropertyListReads counter;
  settings::readServerData("/dev/null");
  EXPECT_EQ(PropertyListReads::count(), 0);
}

}  // namespace
