#include "frame/preview_class.h"

#include <gtest/gtest.h>

namespace ormidex::frame {
namespace {

class PreviewClassTest : public ::testing::Test {
 protected:
  void SetUp() override { RegisterPreviewClass(GetModuleHandleA(nullptr)); }
  void TearDown() override {
    SetPreviewWindowProcedure(nullptr);
    UnregisterPreviewClass();
  }
};

// CS_VREDRAW 1, CS_HREDRAW 2, CS_OWNDC 0x20, CS_NOCLOSE 0x200.
TEST_F(PreviewClassTest, IsRegisteredWithItsStyleAndNoCursor) {
  WNDCLASSA registered = {};
  ASSERT_TRUE(GetClassInfoA(PreviewClassModule(), PreviewClassName(), &registered));
  EXPECT_EQ(registered.style, 0x223u);
  EXPECT_EQ(registered.hCursor, nullptr);
  EXPECT_EQ(registered.hbrBackground, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
}

UINT last_message = 0;
LRESULT CALLBACK Remember(HWND window, UINT message, WPARAM first, LPARAM second) {
  if (message >= WM_USER) last_message = message;
  return DefWindowProcA(window, message, first, second);
}

TEST_F(PreviewClassTest, WindowsOfTheClassTalkToTheReplacedProcedure) {
  SetPreviewWindowProcedure(&Remember);
  const HWND window = CreateWindowExA(0, PreviewClassName(), "", 0, 0, 0, 0, 0, nullptr, nullptr,
                                      PreviewClassModule(), nullptr);
  ASSERT_NE(window, nullptr);
  SendMessageA(window, 0x401, 0, 0);
  EXPECT_EQ(last_message, 0x401u);
  DestroyWindow(window);
}

}  // namespace
}  // namespace ormidex::frame
