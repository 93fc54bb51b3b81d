// Every request of every operation made to fail in turn.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "support/lock_probe.h"
#include "support/model_gateway.h"
#include "support/test_session.h"

namespace ormidex::testing {
namespace {

using device::CameraSession;

struct Case {
  const char* name;
  int generation;
  bool streaming;
  Status (*run)(CameraSession&);
  // One digit for each request, in order: the status when that request fails.
  // 5: it ends the operation or is remembered; 0: its result is ignored; c: ignored,
  // but the status says that the clock has changed.
  std::string statuses;
  void (*prepare)(CameraSession&) = nullptr;
};

// Reads of the six registers behind a second-generation exposure time.
const std::string kGetTime(6, '5');
// 15 reads, the frame length, and the three accesses that pass the rows on.
const std::string kSetTime(19, '5');
const std::string kIgnoredSetTime(19, '0');

Status GetTime(CameraSession& s) {
  float time = 0;
  return s.GetExposureTime(&time);
}

void Mono(CameraSession& s) { s.identity.imager_type = device::kImagerMono; }
void Mirrored(CameraSession& s) { s.geometry.flip_horizontal = 1; }
void WidthBit(CameraSession& s) { s.identity.firmware_version = 0x02020001; }
void ContinuousAuto(CameraSession& s) { s.exposure.continuous_auto = 1; }
void LongExposure(CameraSession& s) { s.geometry.height = 1024; }
void OlderSaturation(CameraSession& s) { s.identity.firmware_version = 0x03011100; }

const Case kCases[] = {
    // ---- First generation ----
    {"GetExposure", 1, false,
     [](CameraSession& s) {
       std::uint32_t value = 0;
       return s.GetExposure(&value);
     },
     "55"},
    {"SetExposure", 1, false, [](CameraSession& s) { return s.SetExposure(100); }, "5"},
    {"GetExposureTime", 1, false, GetTime, "55"},
    {"SetExposureTime", 1, false, [](CameraSession& s) { return s.SetExposureTime(10, 0); }, "5"},
    // Command register, register 145, value.
    {"SetExposureTime adjusting", 1, false,
     [](CameraSession& s) { return s.SetExposureTime(200, 1); }, "555", LongExposure},
    {"SetImagerClocking", 1, true, [](CameraSession& s) { return s.SetImagerClocking(1); }, "55"},
    {"SetRedGain", 1, false, [](CameraSession& s) { return s.SetRedGain(1); }, "5"},
    {"SetGreenGain", 1, false, [](CameraSession& s) { return s.SetGreenGain(1); }, "5"},
    {"SetBlueGain", 1, false, [](CameraSession& s) { return s.SetBlueGain(1); }, "5"},
    {"SetMonoGain", 1, false, [](CameraSession& s) { return s.SetMonoGain(1); }, "5", Mono},
    {"SetGamma 1", 1, false, [](CameraSession& s) { return s.SetGamma(1); }, "5"},
    {"SetGamma 2.2", 1, false, [](CameraSession& s) { return s.SetGamma(2.2f); }, "5"},
    {"SetSaturation", 1, false, [](CameraSession& s) { return s.SetSaturation(1); }, "5"},
    {"GetSaturation", 1, false,
     [](CameraSession& s) {
       std::uint32_t value = 0;
       return s.GetSaturation(&value);
     },
     "5"},
    // Pause and resume are ignored.
    {"SetSubWindowPos", 1, true, [](CameraSession& s) { return s.SetSubWindowPos(2, 2); }, "050"},
    // Sub-sampling read and written, size, controller width.
    {"SetSubWindowSize", 1, false, [](CameraSession& s) { return s.SetSubWindowSize(1, 640, 480); },
     "5555"},
    {"SetSubWindowSize streaming", 1, true,
     [](CameraSession& s) { return s.SetSubWindowSize(1, 640, 480); }, "555555"},
    {"SetSubWindowSize mirrored", 1, true,
     [](CameraSession& s) { return s.SetSubWindowSize(1, 640, 480); }, "5555555", Mirrored},
    {"SetSubWindow position first", 1, false,
     [](CameraSession& s) { return s.SetSubWindow(1, 2, 2, 640, 480); }, "0505555"},
    {"SetSubWindow size first", 1, false,
     [](CameraSession& s) { return s.SetSubWindow(1, 700, 2, 320, 480); }, "5555050"},
    {"SetVideoMode", 1, false, [](CameraSession& s) { return s.SetVideoMode(2); }, "5"},
    {"SetVideoMode streaming", 1, true, [](CameraSession& s) { return s.SetVideoMode(2); }, "555"},
    // Clock (2), stop, size, start, gamma.
    {"SetDataTransferSize 16", 1, true, [](CameraSession& s) { return s.SetDataTransferSize(16); },
     "555555"},
    // Clock (2), command register 7 (2), stop, size, start, gamma.
    {"SetDataTransferSize 16, width bit", 1, true,
     [](CameraSession& s) { return s.SetDataTransferSize(16); }, "55555555", WidthBit},
    {"SetDataTransferSize 8", 1, false, [](CameraSession& s) { return s.SetDataTransferSize(8); },
     "55"},
    // Read, stop, mirror request, write, start.
    {"ImageFlip horizontal", 1, true, [](CameraSession& s) { return s.ImageFlip(1, 0); }, "55555"},
    {"ImageFlip vertical", 1, true, [](CameraSession& s) { return s.ImageFlip(0, 1); }, "55"},
    {"StartVideoStream", 1, false, [](CameraSession& s) { return s.StartVideoStream(); }, "5"},
    {"StopVideoStream", 1, true, [](CameraSession& s) { return s.StopVideoStream(); }, "5"},
    {"PauseVideoStream", 1, true, [](CameraSession& s) { return s.PauseVideoStream(1); }, "5"},
    {"ResumeVideoStream", 1, true, [](CameraSession& s) { return s.PauseVideoStream(0); }, "5"},
    {"FlushVideoData", 1, true, [](CameraSession& s) { return s.FlushVideoData(); }, "5"},
    {"ReturnVideoData", 1, true,
     [](CameraSession& s) {
       static std::uint8_t frame[640 * 480];
       return s.ReturnVideoData(sizeof(frame), frame);
     },
     "5"},

    // ---- Second generation ----
    {"GetExposureTime", 2, false, GetTime, kGetTime},
    {"SetExposureTime", 2, false, [](CameraSession& s) { return s.SetExposureTime(10, 0); },
     kSetTime},
    // A lengthened row is one write more.
    {"SetExposureTime, long row", 2, false,
     [](CameraSession& s) { return s.SetExposureTime(800, 0); }, kSetTime + "5"},
    {"GetMaxExposureTime", 2, false,
     [](CameraSession& s) {
       float time = 0;
       return s.GetMaxExposureTime(1, 640, 480, 0, 15, &time);
     },
     "55"},
    {"GetExposureGain", 2, false,
     [](CameraSession& s) {
       float gain = 0;
       return s.GetExposureGain(&gain);
     },
     "55"},
    {"SetExposureGain", 2, false, [](CameraSession& s) { return s.SetExposureGain(1); }, "555"},
    // Letter, time, write; what follows the write does not count.
    {"SetImagerClocking", 2, false, [](CameraSession& s) { return s.SetImagerClocking(1); },
     "5" + kGetTime + "5" + kIgnoredSetTime},
    {"SetImagerClocking streaming", 2, true,
     [](CameraSession& s) { return s.SetImagerClocking(1); },
     "55" + kGetTime + "5" + kIgnoredSetTime + "0"},
    {"SetGreenGain", 2, false, [](CameraSession& s) { return s.SetGreenGain(1); }, "55"},
    {"SetMonoGain", 2, false, [](CameraSession& s) { return s.SetMonoGain(1); }, "5", Mono},
    {"SetSaturation", 2, false, [](CameraSession& s) { return s.SetSaturation(1); }, "5"},
    {"SetSaturation, older firmware", 2, false, [](CameraSession& s) { return s.SetSaturation(1); },
     "5", OlderSaturation},
    {"SetLightSource", 2, false, [](CameraSession& s) { return s.SetLightSource(2); }, "5"},
    {"SetSubWindowPos", 2, true, [](CameraSession& s) { return s.SetSubWindowPos(2, 2); }, "0550"},
    // Sub-sampling (2), height, width, exposure, controller width.
    {"SetSubWindowSize", 2, false, [](CameraSession& s) { return s.SetSubWindowSize(1, 640, 480); },
     "5555" + kSetTime + "5"},
    {"SetSubWindowSize streaming", 2, true,
     [](CameraSession& s) { return s.SetSubWindowSize(1, 640, 480); }, "55555" + kSetTime + "55"},
    {"SetSubWindowSize, continuous exposure", 2, false,
     [](CameraSession& s) { return s.SetSubWindowSize(1, 640, 480); },
     "5555" + kGetTime + kSetTime + "5", ContinuousAuto},
    {"SetSubWindow", 2, false, [](CameraSession& s) { return s.SetSubWindow(1, 2, 2, 640, 480); },
     "05505555" + kSetTime + "5"},
    {"SetVideoMode streaming", 2, true, [](CameraSession& s) { return s.SetVideoMode(2); }, "555"},
    {"SetDataTransferSize 8", 2, true, [](CameraSession& s) { return s.SetDataTransferSize(8); },
     "5" + kGetTime + "5" + kSetTime + "55"},
    // First the clock: letter, stop, time, write, exposure and restart. Then the size:
    // stop, time, size, exposure, restart, gamma.
    {"SetDataTransferSize 16", 2, true, [](CameraSession& s) { return s.SetDataTransferSize(16); },
     "55" + kGetTime + "5" + std::string(20, 'c') + "5" + kGetTime + "5" + kSetTime + "55"},
    {"ImageFlip", 2, true, [](CameraSession& s) { return s.ImageFlip(1, 0); }, "55550550"},
    {"ImageFlip vertical", 2, true, [](CameraSession& s) { return s.ImageFlip(0, 1); }, "550550"},
};

// 640 x 480 as the timing formulas expect it: rows of 650 clocks.
void FillRegisters(ModelGateway& driver) {
  const struct {
    std::uint32_t address;
    std::uint8_t value;
  } registers[] = {{82, 0x02}, {83, 0x8A}, {75, 0x02}, {76, 0x7F}, {71, 0x01}, {72, 0xDF},
                   {78, 0x02}, {79, 0x80}, {95, 20},   {96, 30},   {34, 0x02}};
  for (const auto& one : registers) driver.registers[one.address] = one.value;
}

// Runs the case with that request failing, or -1 for none.
Status RunCase(const Case& c, int failing, std::size_t* requests) {
  ModelGateway driver;
  driver.bus_address = c.generation == 2 ? 0x66 : 0x60;
  driver.fail_request = failing;
  FillRegisters(driver);
  TestSession session(driver);
  if (c.generation == 2) {
    session.MakeSecondGeneration();
    session->identity.firmware_version = 0x03012200;
  }
  session->stream.running.store(c.streaming ? 1 : 0);
  if (c.prepare != nullptr) c.prepare(*session);
  const Status status = c.run(*session);
  EXPECT_TRUE(IsFree(session->stream_lock)) << c.name << " request " << failing;
  *requests = driver.Requests().size();
  return status;
}

Status StatusOf(char digit) {
  return digit == 'c' ? kClockingChanged : static_cast<Status>(digit - '0');
}

std::string Label(const Case& c) {
  return std::string(c.name) + ", generation " + std::to_string(c.generation);
}

TEST(FailingRequests, GiveTheirStatusAndLeaveTheLock) {
  for (const Case& c : kCases) {
    for (std::size_t i = 0; i < c.statuses.size(); ++i) {
      std::size_t requests = 0;
      const Status status = RunCase(c, static_cast<int>(i), &requests);
      EXPECT_EQ(status, StatusOf(c.statuses[i])) << Label(c) << " request " << i;
      EXPECT_GT(requests, i) << Label(c);
    }
  }
}

// The table would miss a request that it does not list.
TEST(FailingRequests, AreAllOfThem) {
  for (const Case& c : kCases) {
    std::size_t requests = 0;
    const Status status = RunCase(c, -1, &requests);
    const bool changes_clock = std::string(c.name).find("Size 16") != std::string::npos;
    EXPECT_EQ(status, changes_clock ? kClockingChanged : kOk) << Label(c);
    EXPECT_EQ(requests, c.statuses.size()) << Label(c);
  }
}

}  // namespace
}  // namespace ormidex::testing
