// Every operation of the stream and of the captures in every state.
#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "capture/frame_gateway.h"
#include "support/test_session.h"

namespace ormidex::testing {
namespace {

using namespace device;

std::vector<std::uint8_t> frame(640 * 480);

std::uint32_t ORMIDEX_CALLBACK IgnoreFrame(void*, void*) { return 0; }

Status Arm(CameraSession& session) {
  return session.ReturnFrameAfterTrigger(1, 0, 0, 0, 0, 0, IgnoreFrame, 0, frame.data(), nullptr,
                                         1);
}

struct Row {
  const char* operation;
  std::function<Status(CameraSession&)> call;
  Status idle;
  Status streaming;
  Status armed;
};

const std::vector<Row>& Table() {
  static const std::vector<Row> table = {
      {"start", [](CameraSession& s) { return s.StartVideoStream(); }, 0, 13, 13},
      {"stop", [](CameraSession& s) { return s.StopVideoStream(); }, 0, 0, 13},
      {"pause", [](CameraSession& s) { return s.PauseVideoStream(1); }, 13, 0, 13},
      {"resume", [](CameraSession& s) { return s.PauseVideoStream(0); }, 13, 0, 13},
      {"read frame", [](CameraSession& s) { return s.ReturnVideoData(640 * 480, frame.data()); },
       13, 0, 13},
      {"flush", [](CameraSession& s) { return s.FlushVideoData(); }, 13, 0, 13},
      {"still", [](CameraSession& s) { return s.ReturnStillFrame(frame.data(), 1, 0, 0, 0, 0, 0); },
       0, 0, 13},
      {"arm", [](CameraSession& s) { return Arm(s); }, 0, 0, 13},
      {"stop trigger", [](CameraSession& s) { return s.StopTriggerMode(); }, 0, 0, 0},
      {"video mode", [](CameraSession& s) { return s.SetVideoMode(2); }, 0, 0, 13},
      {"transfer size", [](CameraSession& s) { return s.SetDataTransferSize(8); }, 0, 0, 13},
      // Moving the window does not stop the stream, so it is no reconfiguration.
      {"window position", [](CameraSession& s) { return s.SetSubWindowPos(4, 4); }, 0, 0, 0},
      {"window size", [](CameraSession& s) { return s.SetSubWindowSize(1, 640, 480); }, 0, 0, 13},
      {"window", [](CameraSession& s) { return s.SetSubWindow(1, 0, 0, 640, 480); }, 0, 0, 13},
      {"flip", [](CameraSession& s) { return s.ImageFlip(1, 0); }, 0, 0, 13},
  };
  return table;
}

enum class State { kIdle, kStreaming, kArmed };

Status CallIn(State state, const Row& row) {
  FrameGateway driver;
  driver.bus_address = kFirstGenerationBusAddress;
  driver.read_timeout_ms.store(1);
  TestSession session(driver);
  session->options.gamma = 1.0f;
  if (state == State::kStreaming) {
    EXPECT_EQ(session->StartVideoStream(), kOk);
    driver.Trigger();
    driver.read_timeout_ms.store(2000);
  } else if (state == State::kArmed) {
    EXPECT_EQ(Arm(*session), kOk);
  }
  if (state == State::kIdle) driver.Trigger();  // the frame of a still
  const Status status = row.call(*session);
  if (session->IsTriggerActive()) session->StopTriggerMode();
  return status;
}

TEST(CaptureStates, EveryOperationWithTheStreamStopped) {
  for (const Row& row : Table()) {
    EXPECT_EQ(CallIn(State::kIdle, row), row.idle) << row.operation;
  }
}

TEST(CaptureStates, EveryOperationWithTheStreamRunning) {
  for (const Row& row : Table()) {
    EXPECT_EQ(CallIn(State::kStreaming, row), row.streaming) << row.operation;
  }
}

TEST(CaptureStates, EveryOperationWithTheTriggerArmed) {
  for (const Row& row : Table()) {
    EXPECT_EQ(CallIn(State::kArmed, row), row.armed) << row.operation;
  }
}

TEST(CaptureStates, ClockingOfASecondGenerationImagerStopsTheStreamSoItIsRefused) {
  FrameGateway driver;
  driver.read_timeout_ms.store(1);
  TestSession session(driver);
  session.MakeSecondGeneration();
  ASSERT_EQ(Arm(*session), kOk);
  EXPECT_EQ(session->SetImagerClocking(1), kWrongState);
  EXPECT_EQ(session->StopTriggerMode(), kOk);
}

TEST(CaptureStates, NothingIsSentForARefusalWhileArmed) {
  for (const Row& row : Table()) {
    // The flip reads its register before it meets the armed trigger.
    if (row.armed != kWrongState || std::string(row.operation) == "flip") continue;
    FrameGateway driver;
    driver.read_timeout_ms.store(1);
    TestSession session(driver);
    ASSERT_EQ(Arm(*session), kOk);
    driver.ClearRequests();
    row.call(*session);
    EXPECT_EQ(driver.Sent(), std::vector<std::string>{}) << row.operation;
    session->StopTriggerMode();
  }
}

}  // namespace
}  // namespace ormidex::testing
