#include "platform/memory.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <utility>

namespace ormidex::platform {
namespace {

TEST(Memory, AllocatedBytesAreZero) {
  const Buffer buffer(1000);
  ASSERT_TRUE(static_cast<bool>(buffer));
  for (int i = 0; i < 1000; ++i) {
    ASSERT_EQ(buffer.Bytes()[i], 0) << "at byte " << i;
  }
}

TEST(Memory, NoBytesGiveAValidPointer) {
  EXPECT_TRUE(static_cast<bool>(Buffer(0)));
  EXPECT_TRUE(static_cast<bool>(Buffer::Uncleared(0)));
}

TEST(Memory, MoreThanTheAddressSpaceGivesNull) {
  EXPECT_EQ(Allocate(SIZE_MAX), nullptr);
  EXPECT_EQ(AllocateUncleared(SIZE_MAX), nullptr);
  EXPECT_EQ(Allocate(SIZE_MAX / 2 + 1), nullptr);
}

TEST(Memory, MovingABufferHandsTheMemoryOver) {
  Buffer first(8);
  std::uint8_t* bytes = first.Bytes();
  Buffer second(std::move(first));
  EXPECT_EQ(second.Bytes(), bytes);
  EXPECT_EQ(first.Bytes(), nullptr);  // NOLINT(bugprone-use-after-move)
}

TEST(Memory, LeakedMemoryIsNotReleasedByTheBuffer) {
  void* leaked = nullptr;
  {
    Buffer buffer(8);
    leaked = buffer.Leak();
    EXPECT_FALSE(static_cast<bool>(buffer));
  }
  *static_cast<std::uint8_t*>(leaked) = 7;  // a released block trips the sanitizer
  Release(leaked);
}

}  // namespace
}  // namespace ormidex::platform
