// Callers on 32-bit Windows may keep their stack aligned to 4 bytes only.
#include <gtest/gtest.h>

#include "frame/startup.h"
#include "ormidex.h"
#include "support/model_gateway.h"

namespace ormidex::frame {
namespace {

// Calls function(first, second) with the stack `offset` bytes below a multiple of 16
// at the call instruction. The callee removes its arguments.
unsigned CallWithStackOffset(void* function, const void* first, void* second, unsigned offset) {
  unsigned status;
  __asm__ volatile(
      "pushl %%ebp\n\t"
      "movl %%esp, %%ebp\n\t"
      "andl $-16, %%esp\n\t"
      "subl %%ebx, %%esp\n\t"
      "pushl %%edx\n\t"
      "pushl %%ecx\n\t"
      "call *%%eax\n\t"
      "movl %%ebp, %%esp\n\t"
      "popl %%ebp\n\t"
      : "=a"(status), "+c"(first), "+d"(second)
      : "a"(function), "b"(offset)
      : "memory", "cc");
  return status;
}

class MisalignedCallerTest : public ::testing::TestWithParam<unsigned> {
 protected:
  void SetUp() override {
    SetOperatingSystemKindForTesting(3);
    device::ReplaceGatewayForTesting(&gateway);
  }
  void TearDown() override { device::ReplaceGatewayForTesting(nullptr); }
  testing::ModelGateway gateway;
};

TEST_P(MisalignedCallerTest, CountsCamerasFromAnyStackAlignment) {
  OrmidexUInt32 count = 99;
  void* function = reinterpret_cast<void*>(&OrmidexGetNumberDevices);
  EXPECT_EQ(CallWithStackOffset(function, "", &count, GetParam()), 0u);
  EXPECT_EQ(count, 1u);
}

INSTANTIATE_TEST_SUITE_P(EveryFourBytes, MisalignedCallerTest, ::testing::Values(0u, 4u, 8u, 12u));

}  // namespace
}  // namespace ormidex::frame
