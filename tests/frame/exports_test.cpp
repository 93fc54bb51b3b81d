#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <set>
#include <string>

#include "frame/every_export.h"
#include "frame/export_table.h"
#include "frame/lock_poll.h"
#include "ormidex.h"
#include "support/model_gateway.h"
#include "support/scripted_gateway.h"
#include "support/test_session.h"

namespace ormidex::frame {
namespace {

using testing::ExportCall;
using testing::kOrdinaryExports;
using testing::LockPoll;
using testing::ModelGateway;
using testing::ScriptedGateway;
using testing::TestSession;

constexpr ApiLock::State kHeldByNobody{0, 1, 0};

TEST(ExportTableTest, NamesAllFunctionsThatTakeAHandleAndTheThreeThatDoNot) {
  std::set<std::string> names;
  for (const ExportCall& entry : kOrdinaryExports) names.insert(entry.name);
  EXPECT_EQ(names.size(), 94u);
  names.insert({"OrmidexGetNumberDevices", "OrmidexInitialize", "OrmidexUninitialize"});
  std::set<std::string> table;
  for (const ExportEntry& entry : kExportTable) table.insert(std::string(entry.name));
  EXPECT_EQ(names, table);
}

TEST(ExportTableTest, OnlyTheThreeAreExclusive) {
  for (const ExportEntry& entry : kExportTable) {
    const bool alone = entry.name == "OrmidexGetNumberDevices" ||
                       entry.name == "OrmidexInitialize" || entry.name == "OrmidexUninitialize";
    EXPECT_EQ(entry.lock == LockMode::kExclusive, alone) << entry.name;
  }
}

class EveryExportTest : public ::testing::TestWithParam<ExportCall> {};

// The lock is held exclusively meanwhile: a call that asked for it would have to
// wait. The pointers point nowhere: a call that used one would fault.
TEST_P(EveryExportTest, NullHandleIs1WithoutTouchingLockOrArguments) {
  ApiLock& lock = ProcessApiLock();
  lock.Acquire(LockMode::kExclusive);
  bool waited = false;
  const LockPoll poll([&](int) {
    waited = true;
    lock.Release(LockMode::kExclusive);
  });
  void* nowhere = reinterpret_cast<void*>(std::uintptr_t{16});
  EXPECT_EQ(GetParam().call(nullptr, nowhere), 1u);
  EXPECT_FALSE(waited);
  if (!waited) lock.Release(LockMode::kExclusive);
  EXPECT_EQ(lock.Inspect(), kHeldByNobody);
}

// A session whose device is not open, with a frame of 2 x 2 pixels.
class IdleSession {
 public:
  IdleSession() : session_(device::CameraSession::Create()) {
    session_->geometry.factor = 1;
    session_->geometry.column = session_->geometry.row = 0;
    session_->geometry.width = session_->geometry.height = 2;
    session_->geometry.bytes_per_pixel = 1;
    session_->RecomputeFrameSizes();
  }
  ~IdleSession() { device::CameraSession::FreeStorage(session_); }
  IdleSession(const IdleSession&) = delete;
  IdleSession& operator=(const IdleSession&) = delete;
  OrmidexHandle handle() { return session_; }

 private:
  device::CameraSession* session_;
};

TEST_P(EveryExportTest, WaitsWhileTheLockIsHeldExclusivelyAndReleasesIt) {
  IdleSession session;
  alignas(16) unsigned char memory[4096] = {};
  ApiLock& lock = ProcessApiLock();
  lock.Acquire(LockMode::kExclusive);
  LockPoll poll([&lock](int) { lock.Release(LockMode::kExclusive); });
  GetParam().call(session.handle(), memory);
  EXPECT_EQ(poll.count(), 1);
  EXPECT_EQ(lock.Inspect(), kHeldByNobody);
}

TEST_P(EveryExportTest, RunsBesideASharedHolder) {
  IdleSession session;
  alignas(16) unsigned char memory[4096] = {};
  ApiLock& lock = ProcessApiLock();
  lock.Acquire(LockMode::kShared);
  LockPoll poll([&lock](int) { lock.Release(LockMode::kShared); });
  GetParam().call(session.handle(), memory);
  EXPECT_EQ(poll.count(), 0);
  EXPECT_EQ(lock.Inspect(), (ApiLock::State{0, 1, 1}));
  lock.Release(LockMode::kShared);
}

INSTANTIATE_TEST_SUITE_P(All, EveryExportTest, ::testing::ValuesIn(kOrdinaryExports),
                         [](const ::testing::TestParamInfo<ExportCall>& call) {
                           return std::string(call.param.name);
                         });

// ---- What single exports pass on ----------------------------------------

TEST(ExportTest, PassesIntegersInTheirOrder) {
  ScriptedGateway gateway;
  TestSession session(gateway);
  gateway.ExpectEcho(device::CAM_IOCTL_WRITE_REGISTERS,
                     "ff000000 60000000 34120000 01000000 56000000");
  EXPECT_EQ(OrmidexWriteRegister(&*session, 0x1234, 0x56, 0), 10u) << "255 maps to 10";
}

TEST(ExportTest, ReturnsTheStatusOfTheOperationUnchanged) {
  ModelGateway gateway;
  gateway.bus_address = 0x60;
  TestSession session(gateway);
  std::uint8_t value = 0;
  EXPECT_EQ(OrmidexReadRegister(&*session, 5, nullptr), 2u);
  EXPECT_EQ(OrmidexReadRegister(&*session, 5, &value), 0u);
  gateway.status_word = 0x80000002;
  EXPECT_EQ(OrmidexReadRegister(&*session, 5, &value), 14u);
  gateway.fail_codes = {device::CAM_IOCTL_READ_REGISTERS};
  EXPECT_EQ(OrmidexReadRegister(&*session, 5, &value), 5u);
}

TEST(ExportTest, ReturnsADriverStatusWordUnchanged) {
  ModelGateway gateway;
  gateway.status_word = 0x80000005;
  TestSession session(gateway);
  OrmidexUInt8 frame = 0;
  OrmidexUInt32 counters[2] = {};
  EXPECT_EQ(OrmidexGetFrameNumber(&*session, &frame, counters), 0x80000005u);
}

TEST(ExportTest, PassesGammaAsAFloat) {
  ModelGateway gateway;
  TestSession session(gateway);
  EXPECT_EQ(OrmidexSetGamma(&*session, 2.25f), 0u);
  float gamma = 0;
  EXPECT_EQ(OrmidexGetGamma(&*session, &gamma), 0u);
  EXPECT_EQ(gamma, 2.25f);
}

// Firmware 3.1: 0.5 ms are sent as 500, line 1 is operation 6.
TEST(ExportTest, PassesTheGpoDurationAsAFloat) {
  ModelGateway gateway;
  TestSession session(gateway);
  EXPECT_EQ(OrmidexSetGpo(&*session, 1, 0.5f, 1), 0u);
  ASSERT_EQ(gateway.Requests().size(), 1u);
  EXPECT_NE(gateway.Requests()[0].find("06000000 00000001 000001f4"), std::string::npos)
      << gateway.Requests()[0];
}

// 1024 rows at 16 MHz: 1024 x 1664 clocks of 6.25e-8 s.
TEST(ExportTest, PassesTheArgumentsOfTheLongestExposureInTheirOrder) {
  ModelGateway gateway;
  TestSession session(gateway);
  float milliseconds = 0;
  EXPECT_EQ(OrmidexGetMaxExposureTime(&*session, 1, 1280, 1024, 0, 15.0f, &milliseconds), 0u);
  EXPECT_NEAR(milliseconds, 106.496f, 0.001f);
}

TEST(ExportTest, SignedFlipArgumentsArriveWithTheirSign) {
  ModelGateway gateway;
  gateway.bus_address = 0x60;
  TestSession session(gateway);
  session->geometry.flip_horizontal = 1;
  session->geometry.flip_vertical = 1;
  EXPECT_EQ(OrmidexImageFlip(&*session, -1, 0), 0u);
  EXPECT_EQ(session->geometry.flip_horizontal, 0u);
  EXPECT_EQ(session->geometry.flip_vertical, 1u);
}

// ---- Deliberate differences ----------------------------------------------

TEST(RequestContinuousAutoExposureTest, Returns0ThoughTheCameraCannotDoIt) {
  ModelGateway gateway;
  TestSession session(gateway);  // first generation: the operation returns 12
  EXPECT_EQ(session->RequestContinuousAutoExposure(1, 2), 12u);
  EXPECT_EQ(OrmidexRequestContinuousAutoExposure(&*session, 1, 2), 0u);
}

TEST(RequestContinuousAutoExposureTest, Returns0ThoughTheRequestFails) {
  ModelGateway gateway;
  gateway.fail_codes = {device::CAM_IOCTL_COMMAND_REGISTER};
  TestSession session(gateway);
  session.MakeSecondGeneration();
  EXPECT_EQ(OrmidexRequestContinuousAutoExposure(&*session, 1, 2), 0u);
  EXPECT_EQ(gateway.Requests().size(), 1u);
  EXPECT_EQ(session->exposure.continuous_auto, 0u);
}

TEST(RequestContinuousAutoExposureTest, SendsBothArguments) {
  ModelGateway gateway;
  TestSession session(gateway);
  session.MakeSecondGeneration();
  EXPECT_EQ(OrmidexRequestContinuousAutoExposure(&*session, 7, 0x0102), 0u);
  ASSERT_EQ(gateway.Requests().size(), 1u);
  EXPECT_NE(gateway.Requests()[0].find("18000000 00000007 00000102"), std::string::npos)
      << gateway.Requests()[0];
  EXPECT_EQ(session->exposure.continuous_auto, 7u);
}

// The camera transfers 16 bits a sample, and yet the image is one of 3 bytes a
// pixel: 48-bit images are for the library's own callers.
TEST(ColorCorrectRgbTest, AlwaysTakes24BitImages) {
  ModelGateway gateway;
  TestSession session(gateway);
  session->geometry.bytes_per_pixel = 2;
  unsigned char image[] = {200, 100, 0, 0xEE, 0xEE, 0xEE};
  EXPECT_EQ(OrmidexColorCorrectRgb(&*session, 1, 1, image, 100), 0u);
  const unsigned char expected[] = {255, 100, 0, 0xEE, 0xEE, 0xEE};
  EXPECT_EQ(std::memcmp(image, expected, sizeof(expected)), 0);
}

}  // namespace
}  // namespace ormidex::frame
