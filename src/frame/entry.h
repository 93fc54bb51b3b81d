// What every exported function does around its work.
#ifndef ORMIDEX_FRAME_ENTRY_H_
#define ORMIDEX_FRAME_ENTRY_H_

#include <type_traits>

#include "device/session.h"
#include "frame/api_lock.h"
#include "frame/status.h"
#include "ormidex.h"

// A 32-bit Windows caller may come with a stack aligned to 4 bytes, while the
// compiler's own code, vector code above all, counts on 16.
#if defined(_WIN32) && defined(__i386__)
#define ORMIDEX_ALIGN_STACK __attribute__((force_align_arg_pointer))
#else
#define ORMIDEX_ALIGN_STACK
#endif

// Begins the definition of an exported function.
#define ORMIDEX_ENTRY ORMIDEX_ALIGN_STACK OrmidexStatus ORMIDEX_CALL

namespace ormidex::frame {

// Pointers may change their type on the way in (bytes are void* at the
// interface); numbers never, for a float taken as an integer would be converted.
template <typename Parameter, typename Argument>
inline constexpr bool kPassesUnchanged = std::is_same_v<Parameter, Argument> ||
                                         (std::is_pointer_v<Parameter> &&
                                          std::is_pointer_v<Argument>);

// Calls a session's operation under the shared lock. A null handle is all that is
// checked here; the operations check their arguments.
template <typename... Parameters, typename... Arguments>
Status CallSession(Status (device::CameraSession::*operation)(Parameters...), OrmidexHandle handle,
                   Arguments... arguments) {
  static_assert((kPassesUnchanged<Parameters, Arguments> && ...));
  if (handle == nullptr) return kNoCamera;
  device::CameraSession& session = *static_cast<device::CameraSession*>(handle);
  const ApiLockHold hold(ProcessApiLock(), LockMode::kShared);
  return (session.*operation)(static_cast<Parameters>(arguments)...);
}

}  // namespace ormidex::frame

#endif  // ORMIDEX_FRAME_ENTRY_H_
