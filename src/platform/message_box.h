// The library's only texts to the user. On Linux they go to stderr as one line.
#ifndef ORMIDEX_PLATFORM_MESSAGE_BOX_H_
#define ORMIDEX_PLATFORM_MESSAGE_BOX_H_

namespace ormidex::platform {

// Shows a box with an OK button and returns when the user has closed it. A null
// title asks for the application's own name, as framework message boxes do.
void ShowMessage(const char* text, const char* title) noexcept;

// Tests: called instead of showing; null restores the box.
using MessageSink = void (*)(const char* text, const char* title);
void ReplaceMessageBoxForTesting(MessageSink sink) noexcept;

}  // namespace ormidex::platform

#endif  // ORMIDEX_PLATFORM_MESSAGE_BOX_H_
