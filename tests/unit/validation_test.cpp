#include "settings/validation.h"

#include <gtest/gtest.h>

namespace {

using settings::ValidationResult;

struct Case {
  std::string text;
  bool expected;
};

TEST(Port, IsADecimalNumberUpTo65535WithOneOptionalSign) {
  const Case cases[] = {
      {"0", true},
      {"6000", true},
      {"65535", true},
      {"+80", true},
      {"-0", true},
      {"+0", true},
      {"00080", true},
      {"65536", false},
      {"70000", false},
      {"-1", false},
      {"", false},
      {"+", false},
      {"-", false},
      {"+-1", false},
      {"+-0", false},
      {"-+1", false},
      {"++1", false},
      {"--0", false},
      {" 80", false},
      {"80 ", false},
      {"8 0", false},
      {"80\n", false},
      {"abc", false},
      {"8o", false},
      {"0x50", false},
      {"80.0", false},
      {"1e3", false},
      {"\xD9\xA1", false},
      {"9223372036854775807", false},
      {"9223372036854775808", false},
      {"99999999999999999999999", false},
      {std::string("80\0", 3), false},
      {"000000000000000000000000000080", true},
  };
  for (const Case &c : cases)
    EXPECT_EQ(settings::isPort(c.text), c.expected) << "'" << c.text << "'";
}

TEST(IPv4, IsDottedDecimalOfFourParts) {
  const Case cases[] = {
      {"192.0.2.10", true}, {"0.0.0.0", true},     {"255.255.255.255", true}, {"", false},
      {"256.0.0.1", false}, {"1.2.3", false},      {"1.2.3.4.5", false},      {"fileserver", false},
      {"::1", false},       {" 1.2.3.4", false},   {"1.2.3.4 ", false},       {"1.2.3.-4", false},
      {"0x1.2.3.4", false}, {"1.2.3.4:80", false},
  };
  for (const Case &c : cases)
    EXPECT_EQ(settings::isIPv4(c.text), c.expected) << "'" << c.text << "'";
}

TEST(IPv6, IsTheTextFormWithoutZoneOrBrackets) {
  const Case cases[] = {
      {"::1", true},
      {"::", true},
      {"2001:db8::1", true},
      {"2001:DB8:0:0:0:0:0:1", true},
      {"::ffff:192.0.2.10", true},
      {"ffff:ffff:ffff:ffff:ffff:ffff:255.255.255.255", true},
      {"", false},
      {"[::1]", false},
      {"fe80::1%en0", false},
      {"1::2::3", false},
      {"2001:db8", false},
      {"192.0.2.10", false},
      {"g::1", false},
      {":::", false},
  };
  for (const Case &c : cases)
    EXPECT_EQ(settings::isIPv6(c.text), c.expected) << "'" << c.text << "'";
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

TEST(PortCheck, ResetsWhatIsNotAPort) {
  EXPECT_EQ(settings::validatePort("6000"), ValidationResult::Accept);
  EXPECT_EQ(settings::validatePort("0"), ValidationResult::Accept);
  EXPECT_EQ(settings::validatePort("70000"), ValidationResult::ResetPort);
  EXPECT_EQ(settings::validatePort(""), ValidationResult::ResetPort);
}

}  // namespace
