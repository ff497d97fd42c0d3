#include <gtest/gtest.h>
#include <pthread.h>

#include <cerrno>

#include "Expect.h"
#include "platform/HelperThreads.h"
#include "platform/SystemError.h"

namespace kiv::platform {
namespace {

/// Makes new threads ask for a stack that no machine has, while it lives.
class NoRoomForStacks {
 public:
  NoRoomForStacks() {
    EXPECT_EQ(pthread_getattr_default_np(&before_), 0);
    pthread_attr_t huge;
    pthread_attr_init(&huge);
    pthread_attr_setstacksize(&huge, std::size_t{1} << 47);
    EXPECT_EQ(pthread_setattr_default_np(&huge), 0);
    pthread_attr_destroy(&huge);
  }
  ~NoRoomForStacks() {
    pthread_setattr_default_np(&before_);
    pthread_attr_destroy(&before_);
  }
  NoRoomForStacks(const NoRoomForStacks&) = delete;
  NoRoomForStacks& operator=(const NoRoomForStacks&) = delete;

 private:
  pthread_attr_t before_{};
};

TEST(HelperThreads, SayWhereTheSystemGivesNone) {
  const NoRoomForStacks noRoom;
  const auto held = std::make_shared<int>(0);
  try {
    SystemHelperThreads().Start("Operatie", [held] { FAIL() << "it has run"; });
    FAIL() << "it has started";
  } catch (const OsError& error) {
    EXPECT_EQ(error.Code(), EAGAIN);
    EXPECT_EQ(error.what(), "Operatie: " + SystemText(EAGAIN));
  }
  EXPECT_EQ(held.use_count(), 1);
}

}  // namespace
}  // namespace kiv::platform
