// A live preview must not take frames away from the control loops.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "automation/pass_gateway.h"
#include "platform/fault_points.h"
#include "support/fake_preview.h"

namespace ormidex::automation {
namespace {

using testing::TestSession;

// "suspend 3": after three requests.
class PlacedPreview : public testing::FakePreview {
 public:
  PlacedPreview(device::CameraSession& session, PassGateway& gateway)
      : FakePreview(session), gateway_(gateway) {}
  std::vector<std::string> places;

  void SendMessageSync(std::uint32_t message, std::uintptr_t first,
                       std::uintptr_t second) override {
    FakePreview::SendMessageSync(message, first, second);
    places.push_back(messages.back() + " " + std::to_string(gateway_.Requests().size()));
  }

 private:
  PassGateway& gateway_;
};

using Places = std::vector<std::string>;

class PreviewDuringLoops : public ::testing::Test {
 protected:
  PreviewDuringLoops() : session_(gateway_), preview_(*session_, gateway_) {
    gateway_.bus_address = device::kFirstGenerationBusAddress;
    gateway_.frames = {Cell{{127, 127, 127, 127}}};
    session_->identity.imager_type = device::kImagerMono;
    session_->stream.running.store(1);
    session_->options.gamma = 1.0f;
  }
  ~PreviewDuringLoops() override { platform::ClearFaults(); }

  void MakeSecondGeneration() {
    session_.MakeSecondGeneration();
    gateway_.bus_address = device::kSecondGenerationBusAddress;
    gateway_.registers = {{71, 0x01}, {72, 0xDF}, {75, 0x02}, {76, 0x7F},
                          {79, 160},  {82, 0x03}, {83, 0xD5}};
  }
  Status Expose() { return session_->AutoExposure(50, 1, 0, 0, 640, 480); }
  Status Balance() { return session_->WhiteBalance(1, 0, 0, 640, 480, 1, 1, 1); }
  bool Suspended() { return session_->preview.suspended.load() != 0; }

  PassGateway gateway_;
  TestSession session_;
  PlacedPreview preview_;
};

TEST_F(PreviewDuringLoops, BisectionSuspendsBeforeTheFirstExposureAndResumesAtTheEnd) {
  EXPECT_EQ(Expose(), kOk);
  EXPECT_EQ(preview_.places, (Places{"suspend 0", "resume 4"}));
  EXPECT_FALSE(Suspended());
}

TEST_F(PreviewDuringLoops, BisectionThatCannotSetItsFirstExposureLeavesThePreviewSuspended) {
  gateway_.fail_request = 0;
  EXPECT_EQ(Expose(), kRequestFailed);
  EXPECT_EQ(preview_.places, (Places{"suspend 0"}));
  EXPECT_TRUE(Suspended());
}

TEST_F(PreviewDuringLoops, BisectionWithoutMemoryLeavesThePreviewSuspended) {
  platform::RefuseOnceAfter(platform::FaultPoint::kAllocation, 1);
  EXPECT_EQ(Expose(), kOutOfMemory);
  EXPECT_EQ(preview_.places, (Places{"suspend 0"}));
  EXPECT_TRUE(Suspended());
}

TEST_F(PreviewDuringLoops, BisectionThatFailsLaterResumesThePreview) {
  gateway_.fail_request = 3;
  EXPECT_EQ(Expose(), kRequestFailed);
  EXPECT_EQ(preview_.places, (Places{"suspend 0", "resume 4"}));
}

TEST_F(PreviewDuringLoops, PreviewThatWasSuspendedStaysSo) {
  session_->preview.suspended.store(1);
  EXPECT_EQ(Expose(), kOk);
  EXPECT_EQ(Balance(), kOk);
  MakeSecondGeneration();
  EXPECT_EQ(Expose(), kOk);
  EXPECT_EQ(Balance(), kOk);
  EXPECT_TRUE(preview_.places.empty());
  EXPECT_TRUE(Suspended());
}

TEST_F(PreviewDuringLoops, PreviewThatDoesNotListenIsIgnored) {
  preview_.deaf = true;
  EXPECT_EQ(Expose(), kOk);
  EXPECT_EQ(Balance(), kOk);
  MakeSecondGeneration();
  EXPECT_EQ(Expose(), kOk);
  EXPECT_EQ(Balance(), kOk);
}

TEST_F(PreviewDuringLoops, ChecksComeBeforeTheSuspension) {
  for (int generation = 1; generation <= 2; ++generation) {
    if (generation == 2) MakeSecondGeneration();
    EXPECT_EQ(session_->AutoExposure(101, 0, 0, 0, 0, 0), kOutOfRange);
    EXPECT_EQ(session_->WhiteBalance(1, 1, 0, 640, 480, 1, 1, 1), kOutOfRange);
    platform::RefuseOnceAfter(platform::FaultPoint::kAllocation, 0);
    EXPECT_EQ(Balance(), kOutOfMemory);
  }
  EXPECT_TRUE(preview_.places.empty());
}

TEST_F(PreviewDuringLoops, ProportionalLawSuspendsWhenItHasItsTimeAndItsFrame) {
  MakeSecondGeneration();
  EXPECT_EQ(Expose(), kOk);
  EXPECT_EQ(preview_.places, (Places{"suspend 6", "resume 14"}));
}

TEST_F(PreviewDuringLoops, ProportionalLawThatCannotBeginDoesNotSuspend) {
  MakeSecondGeneration();
  gateway_.fail_request = 2;
  EXPECT_EQ(Expose(), kRequestFailed);
  platform::RefuseOnceAfter(platform::FaultPoint::kAllocation, 6);
  EXPECT_EQ(Expose(), kOutOfMemory);
  EXPECT_TRUE(preview_.places.empty());
}

TEST_F(PreviewDuringLoops, BalanceSuspendsBeforeTheSaturationAndResumesAfterIt) {
  // Saturation twice, gains, four frames, saturation.
  EXPECT_EQ(Balance(), kOk);
  EXPECT_EQ(preview_.places, (Places{"suspend 0", "resume 8"}));
}

TEST_F(PreviewDuringLoops, FailedBalanceResumesThePreview) {
  gateway_.fail_codes = {device::CAM_IOCTL_READ_REGISTERS};
  EXPECT_EQ(Balance(), kRequestFailed);
  EXPECT_FALSE(Suspended());
  MakeSecondGeneration();
  EXPECT_EQ(Balance(), kRequestFailed);
  EXPECT_FALSE(Suspended());
  EXPECT_EQ(preview_.messages, (Places{"suspend", "resume", "suspend", "resume"}));
}

// The exposure within finds the preview suspended and leaves it so.
TEST_F(PreviewDuringLoops, BalanceThatExposesSuspendsOnce) {
  MakeSecondGeneration();
  gateway_.command_registers[6] = 10;
  gateway_.blocks = {{0x1D, 0x4D, 0x1D, 0x4D, 0x1D, 0x4D, 0x1D, 0x4D}};
  EXPECT_EQ(session_->WhiteBalance(0, 0, 0, 0, 0, 1, 1, 1), kOk);
  EXPECT_EQ(session_->exposure.last_exposure_time, 10.0f);
  EXPECT_EQ(preview_.messages, (Places{"suspend", "resume"}));
}

}  // namespace
}  // namespace ormidex::automation
