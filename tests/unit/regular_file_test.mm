#import <Foundation/Foundation.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "doubles/intercepted_method.h"
#include "doubles/scratch_folder.h"
#include "settings/server_data.h"

namespace {

int reads = 0;

/// In place of reading a property list, so that what the platform itself does with other than
/// regular files does not matter.
id countRead(id list, SEL, NSString *) {
  ++reads;
  [list release];
  return nil;
}

TEST(StoredSettingsFile, IsReadOnlyWhenItIsARegularFileOrALinkToOne) {
  const auto intercepted = doubles::InterceptedMethod::ofInstances(
      [NSDictionary class], @selector(initWithContentsOfFile:), reinterpret_cast<IMP>(countRead));
  const doubles::ScratchFolder folder;
  folder.write("regular", "");
  ASSERT_EQ(::mkfifo(folder.file("fifo").c_str(), 0600), 0);
  for (const char *name : {"regular", "fifo", "missing", "."}) {
    std::filesystem::create_symlink(name, folder.file("link to " + std::string(name)));
  }
  const std::pair<std::string, int> files[] = {
      {folder.file("regular"), 1},
      {folder.file("link to regular"), 1},
      {folder.file("fifo"), 0},
      {folder.file("link to fifo"), 0},
      {folder.file("missing"), 0},
      {folder.file("link to missing"), 0},
      {folder.file("."), 0},
      {folder.file("link to ."), 0},
      {"/dev/null", 0},
  };
  for (const auto &[file, expected] : files) {
    reads = 0;
    EXPECT_EQ(settings::readServerData(file).port, "6000");
    EXPECT_EQ(reads, expected) << file;
  }
}

}  // namespace
