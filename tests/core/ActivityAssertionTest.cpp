#include <vesperon/core/MCActivityAssertion.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

TEST(MCActivityAssertion, OptionsWordMapsToThePlatformValues) {
  EXPECT_EQ(MCActivityAssertion::platformOptionsForOptions(0), 0xEFFFFFull);
  EXPECT_EQ(MCActivityAssertion::platformOptionsForOptions(4), 0xFFFFFFull);
  EXPECT_EQ(MCActivityAssertion::platformOptionsForOptions(2), 0x10000EFFFFFull);
  EXPECT_EQ(MCActivityAssertion::platformOptionsForOptions(6), 0x10000FFFFFFull);
  EXPECT_EQ(MCActivityAssertion::platformOptionsForOptions(6 | 1 | 8 | 0x100), 0x10000FFFFFFull) << "other bits ignored";
}

TEST(MCActivityAssertion, EndsItsTokenExactlyOnce) {
  EXPECT_EQ(MCActivityAssertion::create(nullptr), nullptr);

  int fds[2];
  ASSERT_EQ(pipe(fds), 0);
  auto token = std::make_shared<MCProcessActivity>(fds[1]);
  {
    auto assertion = MCActivityAssertion::create(token);
    ASSERT_NE(assertion, nullptr);
    EXPECT_TRUE(token->isActive());
    assertion->endActivity();
    EXPECT_FALSE(token->isActive());
    // The write end is closed: the read end sees end of file.
    char c;
    EXPECT_EQ(read(fds[0], &c, 1), 0);
    // A new descriptor may reuse the number; a second end must not close it.
    int reused = open("/dev/null", O_RDONLY);
    assertion->endActivity();
    EXPECT_NE(fcntl(reused, F_GETFD), -1);
    close(reused);
  }  // destruction after an explicit end does nothing more
  close(fds[0]);
}

TEST(MCActivityAssertion, NoSystemBusGivesNoAssertion) {
  // Point the system bus at a socket that does not exist: the platform gives no token.
  setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/vesperon-test-bus", 1);
  EXPECT_EQ(MCActivityAssertion::beginActivityWithReason("importing photos", 6), nullptr);
  unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
}
