#include "platform/message_box.h"

#include <atomic>
#include <cstdio>

namespace ormidex::platform {
namespace {

constinit std::atomic<MessageSink> replacement{nullptr};

}  // namespace

void ShowMessage(const char* text, const char* title) noexcept {
  if (const MessageSink sink = replacement.load()) {
    sink(text, title);
    return;
  }
  std::fprintf(stderr, "%s: %s\n", title != nullptr ? title : "Ormidex", text);
}

void ReplaceMessageBoxForTesting(MessageSink sink) noexcept { replacement.store(sink); }

}  // namespace ormidex::platform
