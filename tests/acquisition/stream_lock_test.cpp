// The stream lock under several threads.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <vector>

#include "platform/event.h"
#include "platform/thread.h"
#include "support/model_gateway.h"
#include "support/test_session.h"

namespace ormidex::testing {
namespace {

constexpr int kRounds = 200;
constexpr std::uint32_t kFrameBytes = 64 * 48;

// Counts what the lock must keep apart: requests to start, stop, pause and resume.
class WatchedGateway : public ModelGateway {
 public:
  WatchedGateway() { bus_address = 0x60; }
  bool Control(device::DriverHandle handle, const device::DriverRequest& request,
               std::uint32_t* returned) override {
    const bool guarded = request.code == 0x222040 || request.code == 0x222048 ||
                         request.code == 0x222054 || request.code == 0x222058;
    if (guarded && inside_.fetch_add(1) != 0) overlaps.fetch_add(1);
    if (request.code == 0x222040 && streaming_.exchange(true)) double_starts.fetch_add(1);
    if (request.code == 0x222048) streaming_.store(false);
    platform::SleepMilliseconds(0);  // gives the others a chance to come between
    const bool result = ModelGateway::Control(handle, request, returned);
    if (guarded) inside_.fetch_sub(1);
    return result;
  }
  std::atomic<int> overlaps{0};
  std::atomic<int> double_starts{0};

 private:
  std::atomic<int> inside_{0};
  std::atomic<bool> streaming_{false};
};

// Runs one function on several threads at once and waits for all.
class Crew {
 public:
  Crew() { finished_.Create(false); }
  ~Crew() { finished_.Close(); }
  void Add(void (*work)(device::CameraSession&, std::atomic<int>& surprises),
           device::CameraSession& session) {
    jobs_.push_back({this, work, &session});
  }
  // False when they did not end within a minute.
  bool Run() {
    left_.store(static_cast<int>(jobs_.size()));
    for (Job& job : jobs_) platform::StartThread(&Crew::Work, &job);
    return finished_.Wait(60000);
  }
  std::atomic<int> surprises{0};

 private:
  struct Job {
    Crew* crew;
    void (*work)(device::CameraSession&, std::atomic<int>&);
    device::CameraSession* session;
  };
  static void Work(void* argument) {
    const Job& job = *static_cast<Job*>(argument);
    Crew* crew = job.crew;
    job.work(*job.session, crew->surprises);
    if (crew->left_.fetch_sub(1) == 1) crew->finished_.Signal();
  }

  std::vector<Job> jobs_;
  std::atomic<int> left_{0};
  platform::Event finished_;
};

void Expect(std::atomic<int>& surprises, Status status, Status other) {
  if (status != kOk && status != other) surprises.fetch_add(1);
}

void StartAndStop(device::CameraSession& session, std::atomic<int>& surprises) {
  for (int i = 0; i < kRounds; ++i) {
    Expect(surprises, session.StartVideoStream(), kWrongState);
    Expect(surprises, session.StopVideoStream(), kOk);
  }
}

void PauseAndResume(device::CameraSession& session, std::atomic<int>& surprises) {
  for (int i = 0; i < kRounds; ++i) {
    Expect(surprises, session.PauseVideoStream(1), kWrongState);
    Expect(surprises, session.PauseVideoStream(0), kWrongState);
  }
}

void ReadFrames(device::CameraSession& session, std::atomic<int>& surprises) {
  std::vector<std::uint8_t> frame(kFrameBytes);
  for (int i = 0; i < kRounds; ++i) {
    Expect(surprises, session.ReturnVideoData(kFrameBytes, frame.data()), kWrongState);
    Expect(surprises, session.FlushVideoData(), kWrongState);
  }
}

void Flip(device::CameraSession& session, std::atomic<int>& surprises) {
  for (int i = 0; i < kRounds; ++i) Expect(surprises, session.ImageFlip(i % 2 ? 1 : -1, 0), kOk);
}

void SetSmallFrame(TestSession& session) {
  session->geometry.width = 64;
  session->geometry.height = 48;
  session->RecomputeFrameSizes();
}

TEST(StreamLock, KeepsStartStopAndPauseApart) {
  WatchedGateway driver;
  TestSession session(driver);
  SetSmallFrame(session);
  Crew crew;
  crew.Add(StartAndStop, *session);
  crew.Add(StartAndStop, *session);
  crew.Add(PauseAndResume, *session);
  crew.Add(ReadFrames, *session);
  ASSERT_TRUE(crew.Run());
  EXPECT_EQ(crew.surprises.load(), 0);
  EXPECT_EQ(driver.overlaps.load(), 0);
  EXPECT_EQ(driver.double_starts.load(), 0);
  EXPECT_EQ(session->stream.running.load(), 0u);
}

// A setter's stop and restart are one step for everyone else: whoever gets the lock
// sees the stream as the setter found it, so no start comes between.
TEST(StreamLock, MakesAReconfigurationOneStep) {
  WatchedGateway driver;
  TestSession session(driver);
  SetSmallFrame(session);
  ASSERT_EQ(session->StartVideoStream(), kOk);
  Crew crew;
  crew.Add(Flip, *session);
  crew.Add(
      [](device::CameraSession& camera, std::atomic<int>& surprises) {
        for (int i = 0; i < kRounds; ++i) {
          if (camera.StartVideoStream() != kWrongState) surprises.fetch_add(1);
          if (camera.PauseVideoStream(1) != kOk) surprises.fetch_add(1);
          if (camera.PauseVideoStream(0) != kOk) surprises.fetch_add(1);
        }
      },
      *session);
  crew.Add(ReadFrames, *session);
  ASSERT_TRUE(crew.Run());
  EXPECT_EQ(crew.surprises.load(), 0);
  EXPECT_EQ(driver.overlaps.load(), 0);
  EXPECT_EQ(driver.double_starts.load(), 0);
  EXPECT_EQ(session->stream.running.load(), 1u);
}

}  // namespace
}  // namespace ormidex::testing
