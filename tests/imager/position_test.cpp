// The sub-window's position, request by request.
#include <gtest/gtest.h>

#include <cstdint>

#include "support/register_script.h"
#include "support/test_session.h"

namespace ormidex::testing {
namespace {

class FirstGenerationPosition : public ::testing::Test {
 protected:
  ScriptedGateway driver_;
  RegisterScript script_{driver_, 0x60};
  TestSession session_{driver_};
};

class SecondGenerationPosition : public FirstGenerationPosition {
 protected:
  SecondGenerationPosition() { session_.MakeSecondGeneration(); }
  RegisterScript second_{driver_, 0x66};
};

// 101 + 4 = 0x69, 513 + 4 = 0x205.
TEST_F(FirstGenerationPosition, IsOneBlockBetweenPauseAndResume) {
  driver_.Expect(0x222054, "00000000");
  driver_.Expect(0x222004, "00000000 60000000 04000000 04000000 00690205", "00000000");
  driver_.Expect(0x222058, "00000000");
  EXPECT_EQ(session_->SetSubWindowPos(101, 513), kOk);
  std::uint32_t column = 0;
  std::uint32_t row = 0;
  EXPECT_EQ(session_->GetSubWindowPos(&column, &row), kOk);
  EXPECT_EQ(column, 101u);
  EXPECT_EQ(row, 513u);
}

TEST_F(FirstGenerationPosition, UnchangedSendsNothing) {
  EXPECT_EQ(session_->SetSubWindowPos(0, 0), kOk);
}

TEST_F(FirstGenerationPosition, ReachesTheArraysEdgeAndNotBeyond) {
  // 640 + 640 = 1280, 480 + 544 = 1024.
  EXPECT_EQ(session_->SetSubWindowPos(641, 0), kOutOfRange);
  EXPECT_EQ(session_->SetSubWindowPos(0, 545), kOutOfRange);
  script_.Pauses();
  script_.WritesBlock(4, "02840224");
  script_.Resumes();
  EXPECT_EQ(session_->SetSubWindowPos(640, 544), kOk);
}

TEST_F(FirstGenerationPosition, CountsInArrayPixels) {
  session_->geometry.factor = 2;
  EXPECT_EQ(session_->SetSubWindowPos(2, 0), kOutOfRange);   // 1280 + 2
  EXPECT_EQ(session_->SetSubWindowPos(0, 65), kOutOfRange);  // 960 + 65
  script_.Pauses();
  script_.WritesBlock(4, "00040044");
  script_.Resumes();
  EXPECT_EQ(session_->SetSubWindowPos(0, 64), kOk);
}

TEST_F(FirstGenerationPosition, PauseAndResumeMayFail) {
  driver_.ExpectFailure(0x222054, "00000000");
  script_.WritesBlock(4, "00050006");
  driver_.ExpectFailure(0x222058, "00000000");
  EXPECT_EQ(session_->SetSubWindowPos(1, 2), kOk);
}

TEST_F(FirstGenerationPosition, AFailedWriteStillResumesAndStoresNothing) {
  script_.Pauses();
  driver_.ExpectFailure(0x222004, "00000000 60000000 04000000 04000000 00050006");
  script_.Resumes();
  EXPECT_EQ(session_->SetSubWindowPos(1, 2), kRequestFailed);
  EXPECT_EQ(session_->geometry.column, 0u);
  EXPECT_EQ(session_->geometry.row, 0u);
}

// Before the geometry is known every field has all bits set, and all bits set times
// all bits set is 1 in 32 bits.
TEST_F(FirstGenerationPosition, ChecksWrapInThirtyTwoBits) {
  session_->geometry.column = 0xFFFFFFFFu;
  session_->geometry.row = 0xFFFFFFFFu;
  session_->geometry.width = 0xFFFFFFFFu;
  session_->geometry.height = 0xFFFFFFFFu;
  session_->geometry.factor = 0xFFFFFFFFu;
  EXPECT_EQ(session_->SetSubWindowPos(1280, 0), kOutOfRange);
  script_.Pauses();
  script_.WritesBlock(4, "05030403");
  script_.Resumes();
  EXPECT_EQ(session_->SetSubWindowPos(1279, 1023), kOk);
}

TEST_F(FirstGenerationPosition, NeedsDeviceAndPointers) {
  std::uint32_t value = 0;
  EXPECT_EQ(session_->GetSubWindowPos(nullptr, &value), kNullPointer);
  EXPECT_EQ(session_->GetSubWindowPos(&value, nullptr), kNullPointer);
  session_->link.handle = nullptr;
  EXPECT_EQ(session_->GetSubWindowPos(&value, &value), kNoCamera);
  EXPECT_EQ(session_->SetSubWindowPos(9999, 0), kNoCamera);
}

// Column 101 + 8 = 109 is odd already; row 51 + 16 = 67 becomes 66.
TEST_F(SecondGenerationPosition, Column101IsWrittenAs109AndStoredAs100) {
  driver_.Expect(0x222054, "00000000");
  driver_.Expect(0x222004, "00000000 66000000 49000000 02000000 006d", "00000000");
  driver_.Expect(0x222004, "00000000 66000000 45000000 02000000 0042", "00000000");
  driver_.Expect(0x222058, "00000000");
  EXPECT_EQ(session_->SetSubWindowPos(101, 51), kOk);
  EXPECT_EQ(session_->geometry.column, 100u);
  EXPECT_EQ(session_->geometry.row, 50u);
}

// 100 + 8 = 108: odd without the mirror, even with it.
TEST_F(SecondGenerationPosition, ColumnsParityFollowsTheMirror) {
  second_.Pauses();
  second_.WritesBlock(73, "006d");
  second_.WritesBlock(69, "0042");
  second_.Resumes();
  EXPECT_EQ(session_->SetSubWindowPos(100, 50), kOk);
  session_->geometry.flip_horizontal = 1;
  second_.Pauses();
  second_.WritesBlock(73, "006c");
  second_.WritesBlock(69, "0042");
  second_.Resumes();
  EXPECT_EQ(session_->SetSubWindowPos(101, 50), kOk);
  EXPECT_EQ(session_->geometry.column, 100u);
}

// 640 + 8 = 0x288, 544 + 16 = 0x230.
TEST_F(SecondGenerationPosition, ReachesTheArraysEdge) {
  second_.Pauses();
  second_.WritesBlock(73, "0289");
  second_.WritesBlock(69, "0230");
  second_.Resumes();
  EXPECT_EQ(session_->SetSubWindowPos(640, 544), kOk);
}

TEST_F(SecondGenerationPosition, AFailedColumnLeavesTheRowAloneAndStoresNothing) {
  second_.Pauses();
  driver_.ExpectFailure(0x222004, "00000000 66000000 49000000 02000000 0009");
  second_.Resumes();
  EXPECT_EQ(session_->SetSubWindowPos(0, 2), kRequestFailed);
  EXPECT_EQ(session_->geometry.row, 0u);
}

TEST_F(SecondGenerationPosition, AFailedRowStoresNothing) {
  second_.Pauses();
  second_.WritesBlock(73, "000b");
  driver_.ExpectFailure(0x222004, "00000000 66000000 45000000 02000000 0012");
  second_.Resumes();
  EXPECT_EQ(session_->SetSubWindowPos(2, 2), kRequestFailed);
  EXPECT_EQ(session_->geometry.column, 0u);
  EXPECT_EQ(session_->geometry.row, 0u);
}

}  // namespace
}  // namespace ormidex::testing
