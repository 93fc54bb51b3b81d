#include "frame/status.h"

#include <gtest/gtest.h>

#include "ormidex.h"

namespace ormidex {
namespace {

struct Row {
  std::uint32_t word;
  Status status;
};

class DriverStatusTest : public ::testing::TestWithParam<Row> {};

TEST_P(DriverStatusTest, WordMapsToStatus) {
  EXPECT_EQ(MapDriverStatus(GetParam().word), GetParam().status);
}

INSTANTIATE_TEST_SUITE_P(EveryRow, DriverStatusTest,
                         ::testing::Values(Row{0, 0}, Row{1, 0}, Row{0x80000002, 14},
                                           Row{0x80000003, 12}, Row{0x80000005, 7},
                                           Row{0x80000011, 3}, Row{0x80000012, 1}));

INSTANTIATE_TEST_SUITE_P(AnythingElseIsAGeneralFailure, DriverStatusTest,
                         ::testing::Values(Row{2, 10}, Row{5, 10}, Row{255, 10},
                                           Row{0x7FFFFFFF, 10}, Row{0x80000000, 10},
                                           Row{0x80000001, 10}, Row{0x80000004, 10},
                                           Row{0x80000006, 10}, Row{0x80000010, 10},
                                           Row{0x80000013, 10}, Row{0xFFFFFFFF, 10}));

// What applications compile against and what the library returns are one set.
TEST(StatusTest, HeaderAndLibraryAgreeOnEveryCode) {
  EXPECT_EQ(ORMIDEX_OK, kOk);
  EXPECT_EQ(ORMIDEX_NO_CAMERA, kNoCamera);
  EXPECT_EQ(ORMIDEX_NULL_POINTER, kNullPointer);
  EXPECT_EQ(ORMIDEX_CAMERA_NOT_FOUND, kCameraNotFound);
  EXPECT_EQ(ORMIDEX_ENUMERATION_FAILED, kEnumerationFailed);
  EXPECT_EQ(ORMIDEX_REQUEST_FAILED, kRequestFailed);
  EXPECT_EQ(ORMIDEX_FILE_NOT_OPENED, kFileNotOpened);
  EXPECT_EQ(ORMIDEX_OUT_OF_RANGE, kOutOfRange);
  EXPECT_EQ(ORMIDEX_IMAGER_NOT_ACCEPTED, kImagerNotAccepted);
  EXPECT_EQ(ORMIDEX_OUT_OF_MEMORY, kOutOfMemory);
  EXPECT_EQ(ORMIDEX_GENERAL_FAILURE, kGeneralFailure);
  EXPECT_EQ(ORMIDEX_NO_PREVIEW, kNoPreview);
  EXPECT_EQ(ORMIDEX_NOT_SUPPORTED, kNotSupported);
  EXPECT_EQ(ORMIDEX_WRONG_STATE, kWrongState);
  EXPECT_EQ(ORMIDEX_DRIVER_CONDITION, kDriverCondition);
  EXPECT_EQ(ORMIDEX_UNKNOWN_SYSTEM, kUnknownSystem);
  EXPECT_EQ(ORMIDEX_NOT_CONVERGED, kNotConverged);
  EXPECT_EQ(ORMIDEX_COMMAND_TIMEOUT, kCommandTimeout);
  EXPECT_EQ(ORMIDEX_CLOCKING_CHANGED, kClockingChanged);
  EXPECT_EQ(kClockingChanged, 18u);
}

}  // namespace
}  // namespace ormidex
