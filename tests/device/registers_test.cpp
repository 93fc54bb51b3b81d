// Register requests as literal bytes.
#include <gtest/gtest.h>

#include "device/driver_protocol.h"
#include "support/scripted_gateway.h"
#include "support/test_session.h"

namespace ormidex::testing {
namespace {

using namespace device;

TEST(ReadRegister, SendsOneTwentyByteRecordAndReturnsItsDataByte) {
  ScriptedGateway driver;
  TestSession session(driver);
  driver.Expect(0x222000, "00000000 60000000 12000000 01000000 00000000",
                "00000000 60000000 12000000 01000000 a5000000");
  std::uint8_t value = 0;
  EXPECT_EQ(session->ReadRegister(0x12, &value), kOk);
  EXPECT_EQ(value, 0xA5);
}

}  // namespace
}  // namespace ormidex::testing
