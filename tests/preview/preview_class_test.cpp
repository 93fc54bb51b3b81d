#include <gtest/gtest.h>
#include <windows.h>

#include "platform/window.h"

namespace ormidex::platform {
namespace {

class PreviewClassTest : public ::testing::Test {
 protected:
  void SetUp() override { RegisterPreviewClass(GetModuleHandleA(nullptr)); }
  void TearDown() override { UnregisterPreviewClass(); }
};

// CS_VREDRAW 1, CS_HREDRAW 2, CS_OWNDC 0x20, CS_NOCLOSE 0x200.
TEST_F(PreviewClassTest, IsRegisteredWithItsStyleAndNoCursor) {
  WNDCLASSA registered = {};
  ASSERT_TRUE(GetClassInfoA(GetModuleHandleA(nullptr), PreviewClassName(), &registered));
  EXPECT_EQ(registered.style, 0x223u);
  EXPECT_EQ(registered.hCursor, nullptr);
  EXPECT_EQ(registered.hbrBackground, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
}

TEST_F(PreviewClassTest, IsGoneAfterUnregistering) {
  UnregisterPreviewClass();
  WNDCLASSA registered = {};
  EXPECT_FALSE(GetClassInfoA(GetModuleHandleA(nullptr), PreviewClassName(), &registered));
}

TEST_F(PreviewClassTest, AStrangersWindowOfTheClassIsHarmless) {
  const HWND window = CreateWindowExA(0, PreviewClassName(), "", 0, 0, 0, 0, 0, nullptr, nullptr,
                                      GetModuleHandleA(nullptr), nullptr);
  ASSERT_NE(window, nullptr);
  EXPECT_EQ(SendMessageA(window, 0x401, 1, 0), 0);
  EXPECT_TRUE(DestroyWindow(window));
}

}  // namespace
}  // namespace ormidex::platform
