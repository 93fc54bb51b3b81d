// Mirroring, request by request.
#include <gtest/gtest.h>

#include <cstdint>

#include "support/register_script.h"
#include "support/test_session.h"

namespace ormidex::testing {
namespace {

class FirstGenerationFlip : public ::testing::Test {
 protected:
  // The mirror request, on or off.
  void SendsFlip(bool on) {
    driver_.ExpectEcho(0x222100, on ? "00000000 00000000 01000000" : "00000000 00000000 00000000");
  }
  void ExpectFlags(std::uint32_t horizontal, std::uint32_t vertical) {
    std::uint32_t h = 9;
    std::uint32_t v = 9;
    EXPECT_EQ(session_->GetImageFlip(&h, &v), kOk);
    EXPECT_EQ(h, horizontal);
    EXPECT_EQ(v, vertical);
  }
  ScriptedGateway driver_;
  RegisterScript script_{driver_, 0x60};
  TestSession session_{driver_};
};

class SecondGenerationFlip : public FirstGenerationFlip {
 protected:
  SecondGenerationFlip() { session_.MakeSecondGeneration(); }
  void RewritesPosition(const char* column, const char* row) {
    second_.Pauses();
    second_.WritesBlock(73, column);
    second_.WritesBlock(69, row);
    second_.Resumes();
  }
  RegisterScript second_{driver_, 0x66};
};

TEST_F(FirstGenerationFlip, HorizontalIsBit4AndARequest) {
  driver_.Expect(0x222000, "00000000 60000000 01000000 01000000 00000000",
                 "00000000 60000000 01000000 01000000 08000000");
  driver_.ExpectEcho(0x222100, "00000000 00000000 01000000");
  driver_.Expect(0x222004, "ff000000 60000000 01000000 01000000 18000000", "00000000");
  EXPECT_EQ(session_->ImageFlip(1, 0), kOk);
  ExpectFlags(1, 0);
  script_.Reads(1, 0xFF);
  SendsFlip(false);
  script_.Writes(1, 0xEF);
  EXPECT_EQ(session_->ImageFlip(-1, 0), kOk);
  ExpectFlags(0, 0);
}

TEST_F(FirstGenerationFlip, RequestIsOffWhenSubSampled) {
  session_->geometry.factor = 2;
  script_.Reads(1, 0x02);
  SendsFlip(false);
  script_.Writes(1, 0x12);
  EXPECT_EQ(session_->ImageFlip(7, 0), kOk);
  ExpectFlags(1, 0);
}

TEST_F(FirstGenerationFlip, VerticalClearsBit3WhenOn) {
  script_.Reads(1, 0xFF);
  script_.Writes(1, 0xF7);
  EXPECT_EQ(session_->ImageFlip(0, 1), kOk);
  ExpectFlags(0, 1);
  script_.Reads(1, 0x00);
  script_.Writes(1, 0x08);
  EXPECT_EQ(session_->ImageFlip(0, -1), kOk);
  ExpectFlags(0, 0);
}

TEST_F(FirstGenerationFlip, ZeroLeavesBothAndWritesTheRegisterBack) {
  session_->geometry.flip_horizontal = 1;
  session_->geometry.flip_vertical = 1;
  script_.Reads(1, 0x5A);
  script_.Writes(1, 0x5A);
  EXPECT_EQ(session_->ImageFlip(0, 0), kOk);
  ExpectFlags(1, 1);
}

TEST_F(FirstGenerationFlip, BothTogetherAreOneWrite) {
  script_.Reads(1, 0x08);
  SendsFlip(true);
  script_.Writes(1, 0x10);
  EXPECT_EQ(session_->ImageFlip(INT32_MAX, 1), kOk);
  script_.Reads(1, 0x10);
  SendsFlip(false);
  script_.Writes(1, 0x08);
  EXPECT_EQ(session_->ImageFlip(INT32_MIN, -1), kOk);
}

TEST_F(FirstGenerationFlip, OnlyAHorizontalFlipStopsTheStream) {
  session_->stream.running.store(1);
  script_.Reads(1, 0x08);
  script_.Stops();
  SendsFlip(true);
  script_.Writes(1, 0x18);
  script_.Starts();
  EXPECT_EQ(session_->ImageFlip(1, 0), kOk);
  EXPECT_EQ(session_->stream.running.load(), 1u);
  script_.Reads(1, 0x18);
  script_.Writes(1, 0x10);
  EXPECT_EQ(session_->ImageFlip(0, 1), kOk);
  EXPECT_EQ(session_->stream.running.load(), 1u);
}

// Register write and restart follow a failed mirror request all the same.
TEST_F(FirstGenerationFlip, AFailedRequestIsTheStatusButNotTheEnd) {
  session_->stream.running.store(1);
  script_.Reads(1, 0x08);
  script_.Stops();
  driver_.ExpectFailure(0x222100, "00000000 00000000 01000000");
  script_.Writes(1, 0x18);
  script_.Starts();
  EXPECT_EQ(session_->ImageFlip(1, 0), kRequestFailed);
  ExpectFlags(1, 0);
  EXPECT_EQ(session_->stream.running.load(), 1u);
}

TEST_F(FirstGenerationFlip, TheFirstErrorWins) {
  script_.Reads(1, 0x08);
  driver_.ExpectFailure(0x222100, "00000000 00000000 01000000");
  driver_.Expect(0x222004, "ff000000 60000000 01000000 01000000 18000000", "03000080");
  EXPECT_EQ(session_->ImageFlip(1, 0), kRequestFailed);
  script_.Reads(1, 0x08);
  SendsFlip(true);
  driver_.Expect(0x222004, "ff000000 60000000 01000000 01000000 18000000", "03000080");
  EXPECT_EQ(session_->ImageFlip(1, 0), kNotSupported);
}

TEST_F(FirstGenerationFlip, AFailedReadEndsItAtOnce) {
  session_->stream.running.store(1);
  driver_.ExpectFailure(0x222000, "00000000 60000000 01000000 01000000 00000000");
  EXPECT_EQ(session_->ImageFlip(1, 1), kRequestFailed);
  ExpectFlags(0, 0);
  EXPECT_EQ(session_->stream.running.load(), 1u);
}

TEST_F(FirstGenerationFlip, NeedsDeviceAndPointers) {
  std::uint32_t v = 0;
  EXPECT_EQ(session_->GetImageFlip(nullptr, &v), kNullPointer);
  EXPECT_EQ(session_->GetImageFlip(&v, nullptr), kNullPointer);
  session_->link.handle = nullptr;
  EXPECT_EQ(session_->GetImageFlip(&v, &v), kNoCamera);
  EXPECT_EQ(session_->ImageFlip(1, 1), kNoCamera);
}

// Column 100 + 8 = 108 with the mirror on, 109 with it off; row 50 + 16 = 66.
TEST_F(SecondGenerationFlip, BitsOfRegister87AndThePositionAgain) {
  session_->geometry.column = 100;
  session_->geometry.row = 50;
  second_.Reads(87, 0xF0);
  second_.Writes(87, 0xF1);
  RewritesPosition("006c", "0042");
  EXPECT_EQ(session_->ImageFlip(1, 0), kOk);
  ExpectFlags(1, 0);
  second_.Reads(87, 0xF1);
  second_.Writes(87, 0xF3);
  RewritesPosition("006c", "0042");
  EXPECT_EQ(session_->ImageFlip(0, 1), kOk);
  ExpectFlags(1, 1);
  second_.Reads(87, 0xFF);
  second_.Writes(87, 0xFC);
  RewritesPosition("006d", "0042");
  EXPECT_EQ(session_->ImageFlip(-1, -1), kOk);
  ExpectFlags(0, 0);
  EXPECT_EQ(session_->geometry.column, 100u);
  EXPECT_EQ(session_->geometry.row, 50u);
}

TEST_F(SecondGenerationFlip, PositionIsWrittenEvenWhenNothingFlips) {
  second_.Reads(87, 0);
  second_.Writes(87, 0);
  RewritesPosition("0009", "0010");
  EXPECT_EQ(session_->ImageFlip(0, 0), kOk);
}

TEST_F(SecondGenerationFlip, PositionFollowsTheRestartedStream) {
  session_->stream.running.store(1);
  second_.Reads(87, 0);
  second_.Stops();
  second_.Writes(87, 1);
  second_.Starts();
  RewritesPosition("0008", "0010");
  EXPECT_EQ(session_->ImageFlip(1, 0), kOk);
}

// The stored position was moved by one so that the setter would not skip it.
TEST_F(SecondGenerationFlip, AFailedPositionLeavesTheStoredOneMovedByOne) {
  session_->geometry.column = 100;
  session_->geometry.row = 50;
  second_.Reads(87, 0);
  second_.Writes(87, 1);
  second_.Pauses();
  driver_.ExpectFailure(0x222004, "00000000 66000000 49000000 02000000 006c");
  second_.Resumes();
  EXPECT_EQ(session_->ImageFlip(1, 0), kRequestFailed);
  EXPECT_EQ(session_->geometry.column, 101u);
  EXPECT_EQ(session_->geometry.row, 51u);
}

}  // namespace
}  // namespace ormidex::testing
