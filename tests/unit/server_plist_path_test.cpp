#include "agent/server_plist_path.h"

#include <gtest/gtest.h>

namespace {

TEST(ServerPlistPath, IsInTheLibraryOfTheMachineAndNotOfTheUser) {
  const auto path = agent::serverPlistPath();
  ASSERT_TRUE(path);
  EXPECT_EQ(*path, LOCAL_LIBRARY "/Preferences/ZentavoAgent/server.plist");
}

}  // namespace
