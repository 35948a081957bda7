#include <cstdlib>

#include <gtest/gtest.h>
#include <sys/stat.h>

// Far from the time zone and the language that a developer has, unless the caller asks for others:
// tests must not care. New files are for everybody, as tests run as several users. Properties are
// tested with as many cases as the build says.
int main(int argc, char** argv) {
  ::setenv("TZ", "Pacific/Chatham", 0);
  ::setenv("LC_ALL", "C.UTF-8", 0);
  ::setenv("RC_PARAMS", "max_success=" ZK_PROPERTY_CASES, 0);
  ::umask(022);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
