#include "settings/validation.h"

#include <gtest/gtest.h>

namespace {

using settings::ValidationResult;

TEST(Port, IsADecimalNumberUpTo65535WithOneOptionalSign) {
  for (const char *text :
       {"0", "6000", "65535", "+80", "-0", "+0", "00080", "000000000000000000000000000080"}) {
    EXPECT_TRUE(settings::isPort(text)) << text;
  }
  for (const char *text : {"",
                           "65536",
                           "70000",
                           "-1",
                           "+",
                           "-",
                           "+-1",
                           "+-0",
                           "-+1",
                           "++1",
                           "--0",
                           " 80",
                           "80 ",
                           "8 0",
                           "80\n",
                           "abc",
                           "8o",
                           "0x50",
                           "80.0",
                           "1e3",
                           "\xD9\xA1",
                           "9223372036854775807",
                           "9223372036854775808",
                           "99999999999999999999999"}) {
    EXPECT_FALSE(settings::isPort(text)) << "'" << text << "'";
  }
  EXPECT_FALSE(settings::isPort(std::string_view("80\0", 3)));
}

TEST(IPv4, IsDottedDecimalOfFourParts) {
  for (const char *text : {"192.0.2.10", "0.0.0.0", "255.255.255.255"}) {
    EXPECT_TRUE(settings::isIPv4(text)) << text;
  }
  for (const char *text : {"", "256.0.0.1", "1.2.3", "1.2.3.4.5", "fileserver", "::1", " 1.2.3.4",
                           "1.2.3.4 ", "1.2.3.-4", "0x1.2.3.4", "1.2.3.4:80"}) {
    EXPECT_FALSE(settings::isIPv4(text)) << "'" << text << "'";
  }
}

TEST(IPv6, IsTheTextFormWithoutZoneOrBrackets) {
  for (const char *text : {"::1", "::", "2001:db8::1", "2001:DB8:0:0:0:0:0:1", "::ffff:192.0.2.10",
                           "ffff:ffff:ffff:ffff:ffff:ffff:255.255.255.255"}) {
    EXPECT_TRUE(settings::isIPv6(text)) << text;
  }
  for (const char *text :
       {"", "[::1]", "fe80::1%en0", "1::2::3", "2001:db8", "192.0.2.10", "g::1", ":::"}) {
    EXPECT_FALSE(settings::isIPv6(text)) << "'" << text << "'";
  }
}

TEST(ServerCheck, RequiresAnAddressInIPAddressModeAndAnythingInHostNameMode) {
  struct {
    const char *server;
    bool ipAddressMode;
    ValidationResult expected;
  } const cases[] = {
      {"192.0.2.10", true, ValidationResult::Accept},
      {"::1", true, ValidationResult::Accept},
      {"fileserver", true, ValidationResult::ClearServer},
      {"192.0.2.999", true, ValidationResult::ClearServer},
      {"", true, ValidationResult::Stop},
      {"fileserver", false, ValidationResult::Accept},
      {"192.0.2.10", false, ValidationResult::Accept},
      {"a \"$b\" `c`", false, ValidationResult::Accept},
      {"", false, ValidationResult::Stop},
  };
  for (const auto &c : cases) {
    EXPECT_EQ(settings::validateServer(c.server, c.ipAddressMode), c.expected)
        << "'" << c.server << "' " << c.ipAddressMode;
  }
}

}  // namespace
