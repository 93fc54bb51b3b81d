// The preview's threads allocate nothing while frames flow.
#include <cstdlib>
#include <new>

#include "preview/preview_test.h"

namespace {

// Counted in every thread of the program.
constinit std::atomic<int> allocations{0};

void* Counted(std::size_t bytes) {
  allocations.fetch_add(1);
  return std::malloc(bytes == 0 ? 1 : bytes);
}

}  // namespace

void* operator new(std::size_t bytes) {
  void* memory = Counted(bytes);
  if (memory == nullptr) std::abort();
  return memory;
}
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept { return Counted(bytes); }
void* operator new[](std::size_t bytes) { return operator new(bytes); }
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept { return Counted(bytes); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

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
    const int before = allocations.load();
    const int shown = screen.draws.load();
    const bool flowed = HasShown(shown + 100);
    const int after = allocations.load();
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
  const int before = allocations.load();
  ::operator delete(::operator new(1));
  EXPECT_EQ(allocations.load(), before + 1);
}

}  // namespace
}  // namespace ormidex::testing
