// What a refused allocation does to each operation.
#include <gtest/gtest.h>

#include <cstdint>

#include "platform/fault_points.h"
#include "support/lock_probe.h"
#include "support/model_gateway.h"
#include "support/test_session.h"

namespace ormidex::testing {
namespace {

using device::CameraSession;

struct Case {
  const char* name;
  int generation;
  Status (*run)(CameraSession&);
  int refused;   // this allocation, counted from 0
  int requests;  // sent before
};

const Case kCases[] = {
    {"StartVideoStream", 1, [](CameraSession& s) { return s.StartVideoStream(); }, 0, 0},
    {"SetExposure", 1, [](CameraSession& s) { return s.SetExposure(1); }, 0, 0},
    {"GetExposureTime, second register", 1,
     [](CameraSession& s) {
       float time = 0;
       return s.GetExposureTime(&time);
     },
     1, 1},
    {"SetExposureTime, third register", 2, [](CameraSession& s) { return s.SetExposureTime(1, 0); },
     2, 2},
    {"SetExposureGain", 2, [](CameraSession& s) { return s.SetExposureGain(1); }, 1, 1},
    {"SetRedGain", 1, [](CameraSession& s) { return s.SetRedGain(1); }, 0, 0},
    {"SetSubWindowSize, before anything", 1,
     [](CameraSession& s) { return s.SetSubWindowSize(1, 640, 480); }, 0, 0},
    {"SetSubWindowSize, sub-sampling register", 1,
     [](CameraSession& s) { return s.SetSubWindowSize(1, 640, 480); }, 1, 0},
    {"SetSubWindowPos, between pause and resume", 1,
     [](CameraSession& s) { return s.SetSubWindowPos(1, 1); }, 0, 2},
    {"ImageFlip, its register", 1, [](CameraSession& s) { return s.ImageFlip(1, 0); }, 0, 0},
    {"ImageFlip, its record", 1, [](CameraSession& s) { return s.ImageFlip(1, 0); }, 1, 1},
};

TEST(RefusedAllocation, IsStatus9AndLeavesTheLock) {
  for (const Case& c : kCases) {
    ModelGateway driver;
    driver.bus_address = c.generation == 2 ? 0x66 : 0x60;
    driver.registers[34] = 2;
    TestSession session(driver);
    if (c.generation == 2) session.MakeSecondGeneration();
    platform::RefuseOnceAfter(platform::FaultPoint::kAllocation, c.refused);
    EXPECT_EQ(c.run(*session), kOutOfMemory) << c.name;
    platform::ClearFaults();
    EXPECT_EQ(driver.Requests().size(), static_cast<std::size_t>(c.requests)) << c.name;
    EXPECT_EQ(session->stream.running.load(), 0u) << c.name;
    EXPECT_TRUE(IsFree(session->stream_lock)) << c.name;
  }
}

}  // namespace
}  // namespace ormidex::testing
