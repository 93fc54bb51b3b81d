#include "platform/message_box.h"

#include <windows.h>

#include <atomic>

namespace ormidex::platform {
namespace {

constinit std::atomic<MessageSink> replacement{nullptr};

}  // namespace

void ShowMessage(const char* text, const char* title) noexcept {
  if (const MessageSink sink = replacement.load()) {
    sink(text, title);
    return;
  }
  MessageBoxA(nullptr, text, title != nullptr ? title : "Ormidex", MB_OK);
}

void ReplaceMessageBoxForTesting(MessageSink sink) noexcept { replacement.store(sink); }

}  // namespace ormidex::platform
