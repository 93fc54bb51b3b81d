// The session record's defaults and the order in which it is taken down.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "device/session.h"
#include "platform/thread.h"
#include "preview/preview_window.h"
#include "support/faults.h"
#include "support/process_environment.h"
#include "support/scripted_gateway.h"
#include "support/test_session.h"

namespace ormidex::testing {
namespace {

using namespace device;
using platform::FaultPoint;

class FreshSession : public ::testing::Test {
 protected:
  FreshSession() : environment(driver), session(CameraSession::Create()) {}
  ~FreshSession() override { CameraSession::FreeStorage(session); }
  ScriptedGateway driver;
  ProcessEnvironment environment;
  CameraSession* session;
};

TEST_F(FreshSession, DoesNotKnowItsGeometry) {
  EXPECT_EQ(session->geometry.factor, 0xFFFFFFFFu);
  EXPECT_EQ(session->geometry.column, 0xFFFFFFFFu);
  EXPECT_EQ(session->geometry.row, 0xFFFFFFFFu);
  EXPECT_EQ(session->geometry.width, 0xFFFFFFFFu);
  EXPECT_EQ(session->geometry.height, 0xFFFFFFFFu);
}

TEST_F(FreshSession, HasLightSourceColourConversionAndTriggerOptionOne) {
  EXPECT_EQ(session->options.light_source, 1u);
  EXPECT_EQ(session->preview.conversion.load(), 1u);
  EXPECT_EQ(session->trigger.option, 1u);
}

TEST_F(FreshSession, HasEverythingElseClear) {
  EXPECT_EQ(session->link.handle, nullptr);
  EXPECT_EQ(session->link.timeout, 0u);
  EXPECT_EQ(session->link.gpo_level[0], 0u);
  EXPECT_EQ(session->link.gpo_level[1], 0u);
  EXPECT_EQ(session->identity.serial_number, 0u);
  EXPECT_EQ(session->identity.firmware_version, 0u);
  EXPECT_EQ(session->identity.imager_type, 0u);
  EXPECT_EQ(session->identity.second_generation, 0u);
  EXPECT_EQ(session->gains.mono, 0u);
  EXPECT_EQ(session->gains.red, 0u);
  EXPECT_EQ(session->gains.blue, 0u);
  EXPECT_EQ(session->gains.green, 0u);
  EXPECT_EQ(session->options.gamma, 0.0f);
  EXPECT_EQ(session->geometry.bayer_phase, 0u);
  EXPECT_EQ(session->geometry.flip_horizontal, 0u);
  EXPECT_EQ(session->geometry.flip_vertical, 0u);
  EXPECT_EQ(session->open.gpo_level, 0u);
  EXPECT_EQ(session->open.imager_mode, 0u);
  EXPECT_EQ(session->exposure.continuous_auto, 0u);
  EXPECT_EQ(session->stream.running.load(), 0u);
  EXPECT_EQ(session->trigger.active.load(), 0u);
  EXPECT_EQ(session->preview.window.load(), nullptr);
  EXPECT_EQ(session->overlay.preview, nullptr);
  EXPECT_EQ(session->overlay.saving, nullptr);
}

TEST_F(FreshSession, TeardownOfANeverOpenedRecordIsNoCameraAndSendsNothing) {
  EXPECT_EQ(session->Teardown(), 1u);
  EXPECT_EQ(driver.closed(), 0);
}

TEST_F(FreshSession, CannotBeCreatedWithoutMemory) {
  const Refusal refusal(FaultPoint::kAllocation);
  EXPECT_EQ(CameraSession::Create(), nullptr);
}

// ---- Teardown ----

// Writes down in one list what happens in which order.
class RecordingDriver : public DriverGateway {
 public:
  DriverHandle Open(const char*, DriverShare) override { return this; }
  bool Control(DriverHandle, const DriverRequest& request, std::uint32_t* returned) override {
    char text[16];
    std::snprintf(text, sizeof(text), "0x%06X", request.code);
    events.push_back(text);
    *returned = 0;
    return requests_succeed;
  }
  bool Close(DriverHandle) override {
    events.push_back("close device");
    return close_succeeds;
  }
  EnumerationResult Enumerate(DeviceVisitor&) override { return EnumerationResult::kUnavailable; }

  std::vector<std::string> events;
  bool requests_succeed = true;
  bool close_succeeds = true;
};

class RecordingWindow : public preview::PreviewWindow {
 public:
  explicit RecordingWindow(std::vector<std::string>& window_events) : events(window_events) {}
  ~RecordingWindow() override { events.push_back("delete window"); }
  bool DestroyWindow() override {
    events.push_back("destroy window");
    return true;
  }
  void SendMessageSync(std::uint32_t, std::uintptr_t, std::uintptr_t) override {
    events.push_back("message");
  }

 private:
  std::vector<std::string>& events;
};

class Teardown : public ::testing::Test {
 protected:
  Teardown() : session(driver) {
    session->command.cancel_event.Create(false);
    session->command.channel_event.Create(true);
    session->command.done_event.Create(false);
  }
  RecordingDriver driver;
  TestSession session;
};

using Events = std::vector<std::string>;

TEST_F(Teardown, OfAnIdleCameraClosesTheDeviceAndTheEvents) {
  EXPECT_EQ(session->Teardown(), kOk);
  EXPECT_EQ(driver.events, Events{"close device"});
  EXPECT_EQ(session->link.handle, nullptr);
  EXPECT_FALSE(session->command.cancel_event.Exists());
  EXPECT_FALSE(session->command.channel_event.Exists());
  EXPECT_FALSE(session->command.done_event.Exists());
}

TEST_F(Teardown, AFailingCloseIsReportedAfterEverythingIsReleased) {
  driver.close_succeeds = false;
  EXPECT_EQ(session->Teardown(), 3u);
  EXPECT_EQ(session->link.handle, nullptr);
  EXPECT_FALSE(session->command.done_event.Exists());
}

TEST_F(Teardown, WhileStreamingDestroysThePreviewThenStopsTheStreamThenClosesTheDevice) {
  session->stream.running.store(1);
  session->preview.window.store(new RecordingWindow(driver.events));
  EXPECT_EQ(session->Teardown(), kOk);
  EXPECT_EQ(driver.events, (Events{"destroy window", "delete window", "0x222048", "close device"}));
  EXPECT_EQ(session->preview.window.load(), nullptr);
}

TEST_F(Teardown, LeavesAPreviewAloneWhenNoStreamRuns) {
  RecordingWindow window(driver.events);
  session->preview.window.store(&window);
  EXPECT_EQ(session->Teardown(), kOk);
  EXPECT_EQ(driver.events, Events{"close device"});
  EXPECT_EQ(session->preview.window.load(), &window);
}

TEST_F(Teardown, AStreamThatCannotBeStoppedDoesNotKeepTheDeviceOpen) {
  session->stream.running.store(1);
  driver.requests_succeed = false;
  EXPECT_EQ(session->Teardown(), kOk);
  EXPECT_EQ(driver.events, (Events{"0x222048", "close device"}));
}

// A trigger worker in little: it ends when its stop event is signalled.
struct TriggerWorker {
  static void Run(void* argument) {
    auto* worker = static_cast<TriggerWorker*>(argument);
    worker->stopped = worker->session->trigger.stop_event.Wait(10'000);
    worker->device_was_open = worker->session->link.handle != nullptr;
    worker->session->trigger.active.store(0);
  }
  CameraSession* session;
  bool stopped = false;
  bool device_was_open = false;
};

TEST_F(Teardown, WithTriggerModeActiveWaitsUntilTheWorkerHasClearedTheFlag) {
  session->stream.running.store(1);
  session->trigger.active.store(1);
  ASSERT_TRUE(session->trigger.stop_event.Create(false));
  TriggerWorker worker{&*session};
  ASSERT_TRUE(platform::StartThread(TriggerWorker::Run, &worker));
  EXPECT_EQ(session->Teardown(), kOk);
  EXPECT_TRUE(worker.stopped);
  EXPECT_TRUE(worker.device_was_open);
  EXPECT_FALSE(session->trigger.stop_event.Exists());
  EXPECT_EQ(driver.events, (Events{"0x222048", "close device"}))
      << "the stream can only be stopped once trigger mode is over";
}

// A command worker in little: it ends when the channel is cancelled.
struct CommandWorker {
  static void Run(void* argument) {
    auto* worker = static_cast<CommandWorker*>(argument);
    worker->cancelled = worker->session->command.cancel_event.Wait(10'000);
    worker->device_was_open = worker->session->link.handle != nullptr;
    worker->session->command.active_workers.store(0);
  }
  CameraSession* session;
  bool cancelled = false;
  bool device_was_open = false;
};

TEST_F(Teardown, CancelsTheCommandChannelAndWaitsForItsWorkers) {
  session->command.active_workers.store(1);
  CommandWorker worker{&*session};
  ASSERT_TRUE(platform::StartThread(CommandWorker::Run, &worker));
  EXPECT_EQ(session->Teardown(), kOk);
  EXPECT_TRUE(worker.cancelled);
  EXPECT_TRUE(worker.device_was_open);
}

}  // namespace
}  // namespace ormidex::testing
