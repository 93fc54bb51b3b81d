// Every operation that sets up or streams, in every state, with its status.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "support/fake_preview.h"
#include "support/model_gateway.h"
#include "support/test_session.h"

namespace ormidex::testing {
namespace {

using device::CameraSession;

enum State { kNoDevice, kIdle, kStreaming, kPaused, kArmed, kArmedStreaming, kStates };
constexpr const char* kStateNames[] = {"no device", "idle",  "streaming",
                                       "paused",    "armed", "armed, stream running"};

struct Row {
  const char* name;
  int generation;
  Status (*run)(CameraSession&);
  std::array<Status, kStates> statuses;
  bool with_preview = false;
  // Refused in mid-sequence by the stream: some requests are sent before.
  bool refused_late = false;
};

using Statuses = std::array<Status, kStates>;
//                                     none idle stream paused armed armed+stream
constexpr Statuses kNeedsDevice = {1, 0, 0, 0, 0, 0};
constexpr Statuses kNeedsNoTrigger = {1, 0, 0, 0, 13, 13};
constexpr Statuses kNeedsStream = {1, 13, 0, 0, 13, 13};
constexpr Statuses kStopsStream = {1, 0, 0, 0, 0, 13};
constexpr Statuses kNotSupportedAnywhere = {12, 12, 12, 12, 12, 12};
constexpr Statuses kNotSupportedWithDevice = {1, 12, 12, 12, 12, 12};
constexpr Statuses kNull = {2, 2, 2, 2, 2, 2};
constexpr Statuses kNullWithDevice = {1, 2, 2, 2, 2, 2};
constexpr Statuses kRangeAnywhere = {7, 7, 7, 7, 7, 7};
constexpr Statuses kRangeWithDevice = {1, 7, 7, 7, 7, 7};
constexpr Statuses kRangeAfterTrigger = {1, 7, 7, 7, 13, 13};

std::uint8_t frame_buffer[640 * 480];

template <Status (CameraSession::*get)(std::uint32_t*)>
Status Get(CameraSession& s) {
  std::uint32_t value = 0;
  return (s.*get)(&value);
}
template <Status (CameraSession::*get)(float*)>
Status GetFloat(CameraSession& s) {
  float value = 0;
  return (s.*get)(&value);
}
Status SubWindow(CameraSession& s) {
  std::uint32_t v[5];
  return s.GetSubWindow(&v[0], &v[1], &v[2], &v[3], &v[4]);
}
Status SubWindowPos(CameraSession& s) {
  std::uint32_t v[2];
  return s.GetSubWindowPos(&v[0], &v[1]);
}
Status SubWindowSize(CameraSession& s) {
  std::uint32_t v[3];
  return s.GetSubWindowSize(&v[0], &v[1], &v[2]);
}
Status Flip(CameraSession& s) {
  std::uint32_t v[2];
  return s.GetImageFlip(&v[0], &v[1]);
}
Status LongestTime(CameraSession& s) {
  float time = 0;
  return s.GetMaxExposureTime(1, 640, 480, 0, 15, &time);
}

const Row kStream[] = {
    {"Start", 1, [](CameraSession& s) { return s.StartVideoStream(); }, {1, 0, 13, 13, 13, 13}},
    {"Stop", 1, [](CameraSession& s) { return s.StopVideoStream(); }, {1, 0, 0, 0, 13, 13}},
    {"Pause", 1, [](CameraSession& s) { return s.PauseVideoStream(1); }, kNeedsStream},
    {"Resume", 1, [](CameraSession& s) { return s.PauseVideoStream(0); }, kNeedsStream},
    {"Read", 1,
     [](CameraSession& s) { return s.ReturnVideoData(sizeof(frame_buffer), frame_buffer); },
     kNeedsStream},
    {"Read, video mode 0",
     1,
     [](CameraSession& s) {
       s.geometry.video_mode = 0;
       return s.ReturnVideoData(sizeof(frame_buffer), frame_buffer);
     },
     {1, 13, 13, 13, 13, 13}},
    {"Read, null", 1, [](CameraSession& s) { return s.ReturnVideoData(307200, nullptr); }, kNull},
    {"Read, size 0", 1, [](CameraSession& s) { return s.ReturnVideoData(0, frame_buffer); },
     kRangeAnywhere},
    {"Read, wrong size", 1,
     [](CameraSession& s) { return s.ReturnVideoData(307199, frame_buffer); }, kRangeAnywhere},
    {"Flush", 1, [](CameraSession& s) { return s.FlushVideoData(); }, kNeedsStream},
    {"Flush, video mode 0",
     1,
     [](CameraSession& s) {
       s.geometry.video_mode = 0;
       return s.FlushVideoData();
     },
     {1, 13, 13, 13, 13, 13}},
    {"Suspend preview", 1, [](CameraSession& s) { return s.NotifyPreview(1); }, kNeedsDevice, true},
    {"Resume preview", 1, [](CameraSession& s) { return s.NotifyPreview(0); }, kNeedsNoTrigger,
     true},
    {"Suspend no preview",
     1,
     [](CameraSession& s) { return s.NotifyPreview(1); },
     {1, 11, 11, 11, 11, 11}},
    {"Resume no preview",
     1,
     [](CameraSession& s) { return s.NotifyPreview(0); },
     {1, 11, 11, 11, 11, 11}},
};

const Row kExposure[] = {
    {"GetExposure", 1, Get<&CameraSession::GetExposure>, kNeedsDevice},
    {"GetExposure", 2, Get<&CameraSession::GetExposure>, kNotSupportedWithDevice},
    {"GetExposure, null", 1, [](CameraSession& s) { return s.GetExposure(nullptr); },
     kNullWithDevice},
    {"SetExposure", 1, [](CameraSession& s) { return s.SetExposure(1600); }, kNeedsDevice},
    {"SetExposure", 2, [](CameraSession& s) { return s.SetExposure(1600); },
     kNotSupportedWithDevice},
    {"GetExposureGain", 1, GetFloat<&CameraSession::GetExposureGain>, kNotSupportedAnywhere},
    {"GetExposureGain", 2, GetFloat<&CameraSession::GetExposureGain>, kNeedsDevice},
    {"SetExposureGain", 1, [](CameraSession& s) { return s.SetExposureGain(1); },
     kNotSupportedAnywhere},
    {"SetExposureGain", 2, [](CameraSession& s) { return s.SetExposureGain(1); }, kNeedsDevice},
    {"SetExposureGain 7.4881", 2, [](CameraSession& s) { return s.SetExposureGain(7.4881f); },
     kRangeWithDevice},
    {"GetExposureTime", 1, GetFloat<&CameraSession::GetExposureTime>, kNeedsDevice},
    {"GetExposureTime", 2, GetFloat<&CameraSession::GetExposureTime>, kNeedsDevice},
    {"GetExposureTime, null", 2, [](CameraSession& s) { return s.GetExposureTime(nullptr); },
     kNullWithDevice},
    {"SetExposureTime", 1, [](CameraSession& s) { return s.SetExposureTime(10, 0); }, kNeedsDevice},
    {"SetExposureTime, adjusting", 1, [](CameraSession& s) { return s.SetExposureTime(60, 1); },
     kNeedsDevice},
    {"SetExposureTime", 2, [](CameraSession& s) { return s.SetExposureTime(10, 0); }, kNeedsDevice},
    {"SetExposureTime -1", 1, [](CameraSession& s) { return s.SetExposureTime(-1, 0); },
     kRangeWithDevice},
    {"SetExposureTime -1", 2, [](CameraSession& s) { return s.SetExposureTime(-1, 1); },
     kRangeWithDevice},
    {"GetMaxExposureTime", 1, LongestTime, kNeedsDevice},
    {"GetMaxExposureTime", 2, LongestTime, kNeedsDevice},
    {"SetImagerClocking", 1, [](CameraSession& s) { return s.SetImagerClocking(1); }, kNeedsDevice},
    {"SetImagerClocking", 2, [](CameraSession& s) { return s.SetImagerClocking(1); }, kStopsStream,
     false, true},
    {"SetImagerClocking 3", 1, [](CameraSession& s) { return s.SetImagerClocking(3); },
     kRangeWithDevice},
    {"GetImagerClocking", 1, Get<&CameraSession::GetImagerClocking>, kNeedsDevice},
    {"GetCurrentFrameRate", 1, Get<&CameraSession::GetCurrentFrameRate>, kNeedsNoTrigger, true},
    {"GetCurrentFrameRate, no preview",
     1,
     Get<&CameraSession::GetCurrentFrameRate>,
     {1, 11, 11, 11, 11, 11}},
    {"GetCurrentFrameRate, null", 1,
     [](CameraSession& s) { return s.GetCurrentFrameRate(nullptr); }, kNull},
};

const Row kOptions[] = {
    {"SetRedGain", 1, [](CameraSession& s) { return s.SetRedGain(1); }, kNeedsDevice},
    {"SetRedGain", 2, [](CameraSession& s) { return s.SetRedGain(1); }, kNeedsDevice},
    {"SetRedGain 64", 1, [](CameraSession& s) { return s.SetRedGain(64); }, kRangeWithDevice},
    {"SetGreenGain", 2, [](CameraSession& s) { return s.SetGreenGain(1); }, kNeedsDevice},
    {"SetBlueGain", 2, [](CameraSession& s) { return s.SetBlueGain(1); }, kNeedsDevice},
    {"SetMonoGain, colour", 2, [](CameraSession& s) { return s.SetMonoGain(1); },
     kNotSupportedWithDevice},
    {"GetRedGain", 1, Get<&CameraSession::GetRedGain>, kNeedsDevice},
    {"GetGreenGain", 1, Get<&CameraSession::GetGreenGain>, kNeedsDevice},
    {"GetBlueGain", 1, Get<&CameraSession::GetBlueGain>, kNeedsDevice},
    {"GetRedGain, null", 1, [](CameraSession& s) { return s.GetRedGain(nullptr); }, kNull},
    {"GetMonoGain, colour", 1, Get<&CameraSession::GetMonoGain>, kNotSupportedWithDevice},
    {"SetGamma", 1, [](CameraSession& s) { return s.SetGamma(2.2f); }, kNeedsDevice},
    {"SetGamma -1", 1, [](CameraSession& s) { return s.SetGamma(-1); }, kRangeWithDevice},
    {"GetGamma", 1, GetFloat<&CameraSession::GetGamma>, kNeedsDevice},
    {"SetSaturation", 1, [](CameraSession& s) { return s.SetSaturation(1); }, kNeedsDevice},
    {"SetSaturation", 2, [](CameraSession& s) { return s.SetSaturation(1); }, kNeedsDevice},
    {"SetSaturation, old firmware", 1,
     [](CameraSession& s) {
       s.identity.firmware_version = 0x02010000;
       return s.SetSaturation(1);
     },
     kNotSupportedWithDevice},
    {"GetSaturation", 2, Get<&CameraSession::GetSaturation>, kNeedsDevice},
    {"SetLightSource", 1, [](CameraSession& s) { return s.SetLightSource(1); },
     kNotSupportedAnywhere},
    {"SetLightSource", 2, [](CameraSession& s) { return s.SetLightSource(1); }, kNeedsDevice},
    {"SetLightSource 5", 2, [](CameraSession& s) { return s.SetLightSource(5); }, kRangeWithDevice},
    {"GetLightSource", 1, Get<&CameraSession::GetLightSource>, kNeedsDevice},
};

const Row kGeometry[] = {
    {"SetSubWindowPos", 1, [](CameraSession& s) { return s.SetSubWindowPos(2, 2); }, kNeedsDevice},
    {"SetSubWindowPos", 2, [](CameraSession& s) { return s.SetSubWindowPos(2, 2); }, kNeedsDevice},
    {"SetSubWindowPos, unchanged", 1, [](CameraSession& s) { return s.SetSubWindowPos(0, 0); },
     kNeedsDevice},
    {"SetSubWindowPos, outside", 1, [](CameraSession& s) { return s.SetSubWindowPos(641, 0); },
     kRangeWithDevice},
    {"SetSubWindowSize", 1, [](CameraSession& s) { return s.SetSubWindowSize(2, 640, 480); },
     kNeedsNoTrigger},
    {"SetSubWindowSize", 2, [](CameraSession& s) { return s.SetSubWindowSize(2, 640, 480); },
     kNeedsNoTrigger},
    {"SetSubWindowSize, too small", 1,
     [](CameraSession& s) { return s.SetSubWindowSize(1, 640, 7); }, kRangeWithDevice},
    {"SetSubWindowSize, outside", 1,
     [](CameraSession& s) { return s.SetSubWindowSize(1, 1281, 8); }, kRangeAfterTrigger},
    {"SetSubWindowSize, factor 3", 1,
     [](CameraSession& s) { return s.SetSubWindowSize(3, 640, 480); }, kRangeAfterTrigger, false,
     true},
    {"SetSubWindow", 1, [](CameraSession& s) { return s.SetSubWindow(1, 2, 2, 640, 480); },
     kNeedsNoTrigger},
    {"SetSubWindow", 2, [](CameraSession& s) { return s.SetSubWindow(1, 2, 2, 640, 480); },
     kNeedsNoTrigger},
    {"SetSubWindow, outside", 1,
     [](CameraSession& s) { return s.SetSubWindow(1, 2, 2, 1280, 480); }, kRangeAfterTrigger},
    {"GetSubWindow", 1, SubWindow, kNeedsDevice},
    {"GetSubWindowPos", 1, SubWindowPos, kNeedsDevice},
    {"GetSubWindowSize", 1, SubWindowSize, kNeedsDevice},
    {"SetVideoMode", 1, [](CameraSession& s) { return s.SetVideoMode(2); }, kNeedsNoTrigger},
    {"SetVideoMode, unchanged", 1, [](CameraSession& s) { return s.SetVideoMode(1); },
     kNeedsNoTrigger},
    {"GetVideoMode", 1, Get<&CameraSession::GetVideoMode>, kNeedsDevice},
    {"SetDataTransferSize 8", 1, [](CameraSession& s) { return s.SetDataTransferSize(8); },
     kNeedsNoTrigger},
    {"SetDataTransferSize 8", 2, [](CameraSession& s) { return s.SetDataTransferSize(8); },
     kNeedsNoTrigger},
    {"SetDataTransferSize 16",
     1,
     [](CameraSession& s) { return s.SetDataTransferSize(16); },
     {1, 18, 18, 18, 13, 13}},
    {"SetDataTransferSize 16",
     2,
     [](CameraSession& s) { return s.SetDataTransferSize(16); },
     {1, 18, 18, 18, 13, 13}},
    {"SetDataTransferSize 10", 1, [](CameraSession& s) { return s.SetDataTransferSize(10); },
     kRangeAfterTrigger},
    {"GetDataTransferSize", 1, Get<&CameraSession::GetDataTransferSize>, kNeedsDevice},
    {"ImageFlip, horizontal", 1, [](CameraSession& s) { return s.ImageFlip(1, 0); }, kStopsStream,
     false, true},
    {"ImageFlip, horizontal", 2, [](CameraSession& s) { return s.ImageFlip(1, 0); }, kStopsStream,
     false, true},
    {"ImageFlip, vertical", 1, [](CameraSession& s) { return s.ImageFlip(0, 1); }, kNeedsDevice},
    {"ImageFlip, vertical", 2, [](CameraSession& s) { return s.ImageFlip(0, 1); }, kNeedsDevice},
    {"GetImageFlip", 1, Flip, kNeedsDevice},
};

void Enter(State state, CameraSession& session) {
  if (state == kStreaming || state == kPaused || state == kArmedStreaming) {
    EXPECT_EQ(session.StartVideoStream(), kOk);
  }
  if (state == kPaused) {
    EXPECT_EQ(session.PauseVideoStream(1), kOk);
  }
  if (state == kArmed || state == kArmedStreaming) session.trigger.active.store(1);
  if (state == kNoDevice) session.link.handle = nullptr;
}

// 640 x 480 as the timing formulas expect it, manual gain.
void FillRegisters(ModelGateway& driver) {
  const struct {
    std::uint32_t address;
    std::uint8_t value;
  } registers[] = {{82, 0x02}, {83, 0x8A}, {75, 0x02}, {76, 0x7F}, {71, 0x01},
                   {72, 0xDF}, {95, 20},   {96, 30},   {34, 0x02}};
  for (const auto& one : registers) driver.registers[one.address] = one.value;
}

void Check(const Row& row, State state) {
  SCOPED_TRACE(std::string(row.name) + ", generation " + std::to_string(row.generation) + ", " +
               kStateNames[state]);
  ModelGateway driver;
  driver.bus_address = row.generation == 2 ? 0x66 : 0x60;
  FillRegisters(driver);
  TestSession session(driver);
  if (row.generation == 2) {
    session.MakeSecondGeneration();
    session->identity.firmware_version = 0x03012200;
  }
  std::unique_ptr<FakePreview> preview;
  if (row.with_preview) preview = std::make_unique<FakePreview>(*session);
  Enter(state, *session);
  driver.ClearRequests();
  const std::uint32_t running = session->stream.running.load();

  const Status status = row.run(*session);
  EXPECT_EQ(status, row.statuses[state]);
  const bool refused = status != kOk && status != kClockingChanged;
  if (refused && !row.refused_late) {
    EXPECT_TRUE(driver.Requests().empty()) << driver.Requests().front();
    EXPECT_EQ(session->stream.running.load(), running);
  }
  if (state != kNoDevice && session->IsTriggerActive()) {
    EXPECT_EQ(session->stream.running.load(), running);
  }
}

template <std::size_t count>
void CheckAll(const Row (&rows)[count]) {
  for (const Row& row : rows) {
    for (int state = kNoDevice; state < kStates; ++state) Check(row, static_cast<State>(state));
  }
}

TEST(StateTable, Stream) { CheckAll(kStream); }
TEST(StateTable, ExposureAndClock) { CheckAll(kExposure); }
TEST(StateTable, GainsAndOptions) { CheckAll(kOptions); }
TEST(StateTable, GeometryModeAndTransfer) { CheckAll(kGeometry); }

TEST(StateTable, AnyStreamCallWhileArmedIsStatus13) {
  for (State state : {kArmed, kArmedStreaming}) {
    ModelGateway driver;
    driver.bus_address = 0x60;
    TestSession session(driver);
    Enter(state, *session);
    driver.ClearRequests();
    EXPECT_EQ(session->StartVideoStream(), kWrongState);
    EXPECT_EQ(session->StopVideoStream(), kWrongState);
    EXPECT_EQ(session->PauseVideoStream(1), kWrongState);
    EXPECT_EQ(session->PauseVideoStream(0), kWrongState);
    EXPECT_EQ(session->ReturnVideoData(sizeof(frame_buffer), frame_buffer), kWrongState);
    EXPECT_EQ(session->FlushVideoData(), kWrongState);
    EXPECT_TRUE(driver.Requests().empty());
  }
}

TEST(FrameRate, IsThePreviewsInWholeFrames) {
  ModelGateway driver;
  TestSession session(driver);
  FakePreview preview(*session);
  session->preview.frame_rate.store(29.97f);
  std::uint32_t rate = 0;
  EXPECT_EQ(session->GetCurrentFrameRate(&rate), kOk);
  EXPECT_EQ(rate, 29u);
}

}  // namespace
}  // namespace ormidex::testing
