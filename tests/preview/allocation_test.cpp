// The preview's threads allocate nothing while frames flow.
#include "preview/counted_memory.h"
#include "preview/preview_test.h"

namespace ormidex::testing {
namespace {

class Allocation : public PreviewTest {
 protected:
  // Neither by operator new nor by the library's own memory functions.
  void ExpectNoneWhileFramesFlow() {
    screen.keeps_images = false;
    camera.frame_interval_ms.store(0);
    ASSERT_EQ(Start(), kOk);
    ASSERT_TRUE(HasShown(3));
    platform::RefuseOnceAfter(platform::FaultPoint::kAllocation, 0);
    const int before = AllocationsSoFar();
    const int shown = screen.draws.load();
    const bool flowed = HasShown(shown + 100);
    const int after = AllocationsSoFar();
    EXPECT_TRUE(platform::RefusalPending(platform::FaultPoint::kAllocation));
    platform::ClearFaults();
    EXPECT_TRUE(flowed);
    EXPECT_EQ(after, before);
  }
};

// The algorithms that need working rows of their own are the conversions' business.
TEST_F(Allocation, IsNotPerFrameInColour) {
  for (const std::uint32_t code : {0u, 1u}) {
    ASSERT_EQ(session->SetPreviewColorConversion(code), kOk);
    ExpectNoneWhileFramesFlow();
    ASSERT_EQ(session->StopPreview(), kOk);
  }
}

TEST_F(Allocation, IsNotPerFrameInWideColour) {
  session->geometry.bytes_per_pixel = 2;
  session->RecomputeFrameSizes();
  ExpectNoneWhileFramesFlow();
}

TEST_F(Allocation, IsNotPerFrameInMonochrome) {
  UseMonochrome(1);
  ExpectNoneWhileFramesFlow();
}

TEST_F(Allocation, IsNotPerFrameInWideMonochrome) {
  UseMonochrome(2);
  ExpectNoneWhileFramesFlow();
}

// The count itself works.
TEST_F(Allocation, IsCounted) {
  const int before = AllocationsSoFar();
  ::operator delete(::operator new(1));
  EXPECT_EQ(AllocationsSoFar(), before + 1);
}

}  // namespace
}  // namespace ormidex::testing
