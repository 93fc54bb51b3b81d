// Exported functions: counting, opening and closing cameras. They run alone, for
// they create and free the sessions that all other functions work on.
#include "device/discovery.h"
#include "frame/entry.h"
#include "platform/driver_file.h"

namespace {

using ormidex::Status;
using ormidex::device::CameraSession;
using ormidex::frame::ApiLockHold;
using ormidex::frame::LockMode;
using ormidex::frame::ProcessApiLock;

// The system's enumerator is a COM object.
class ComApartment {
 public:
  ComApartment() { ormidex::platform::EnterComApartment(); }
  ~ComApartment() { ormidex::platform::LeaveComApartment(); }
  ComApartment(const ComApartment&) = delete;
  ComApartment& operator=(const ComApartment&) = delete;
};

Status OpenInApartment(CameraSession& session, const char* type_name, std::uint32_t index) {
  const ComApartment apartment;
  return session.Open(type_name, index);
}

}  // namespace

// The count is stored before any check, deliberately: after every refusal too
// applications find 0 there. So a null count is written to, and faults.
ORMIDEX_ENTRY OrmidexGetNumberDevices(const char* deviceTypeName, OrmidexUInt32* count) {
  *count = 0;
  if (deviceTypeName == nullptr || count == nullptr) return ORMIDEX_NULL_POINTER;
  const ApiLockHold hold(ProcessApiLock(), LockMode::kExclusive);
  const ComApartment apartment;
  return ormidex::device::CountCameras(count);
}

// The caller's variable holds the session while it is being opened, and 0 again
// when that fails. Only the storage is freed then, deliberately: nothing more is
// sent to a camera that would not open, and its device stays open.
ORMIDEX_ENTRY OrmidexInitialize(const char* deviceTypeName, OrmidexUInt32 deviceIndex,
                                OrmidexHandle* handle) {
  CameraSession* session = CameraSession::Create();
  *handle = nullptr;
  if (session == nullptr) return ORMIDEX_NO_CAMERA;
  const ApiLockHold hold(ProcessApiLock(), LockMode::kExclusive);
  *handle = session;
  const Status status = OpenInApartment(*session, deviceTypeName, deviceIndex);
  if (status != ormidex::kOk) {
    CameraSession::FreeStorage(session);
    *handle = nullptr;
  }
  return status;
}

// The session is freed whatever its teardown returns: a camera that could not be
// closed cannot be used any more either.
ORMIDEX_ENTRY OrmidexUninitialize(OrmidexHandle* handle) {
  if (*handle == nullptr) return ORMIDEX_NO_CAMERA;
  const ApiLockHold hold(ProcessApiLock(), LockMode::kExclusive);
  CameraSession* session = static_cast<CameraSession*>(*handle);
  const Status status = session->Teardown();
  CameraSession::FreeStorage(session);
  *handle = nullptr;
  return status;
}
