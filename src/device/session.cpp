#include "device/session.h"

#include <new>

#include "device/driver_gateway.h"
#include "platform/memory.h"
#include "platform/thread.h"
#include "preview/preview_window.h"

namespace ormidex::device {

// The defaults stand at the fields' declarations; only the locks need the system.
CameraSession::CameraSession() {
  link.gateway = &ProcessGateway();
  image_lock.Initialise();
  stream_lock.Initialise();
  command_lock.Initialise();
}

CameraSession* CameraSession::Create() noexcept {
  void* storage = platform::Allocate(sizeof(CameraSession));
  return storage != nullptr ? new (storage) CameraSession : nullptr;
}

void CameraSession::FreeStorage(CameraSession* session) noexcept { platform::Release(session); }

bool CameraSession::Control(std::uint32_t code, const void* in, std::uint32_t in_bytes, void* out,
                            std::uint32_t out_bytes, std::uint32_t* returned) const {
  if (link.handle == nullptr) return false;
  std::uint32_t ignored = 0;
  const DriverRequest request{code, in, in_bytes, out, out_bytes};
  return link.gateway->Control(link.handle, request, returned != nullptr ? returned : &ignored);
}

namespace {

// The channel's workers wake one another through the cancel event until none is
// left. Each needs a moment of processor time only, so this spins.
void EndCommandWorkers(acquisition::CommandState& command) {
  command.cancel_event.Signal();
  while (command.active_workers.load() != 0) {
  }
  command.cancel_event.Close();
  command.channel_event.Close();
  command.done_event.Close();
}

// The trigger worker may sit in a frame read for as long as the driver's time-out.
void EndTriggerWorker(acquisition::TriggerState& trigger) {
  if (trigger.active.load() == 0) return;
  trigger.stop_event.Signal();
  while (trigger.active.load() != 0) platform::SleepMilliseconds(10);
  trigger.stop_event.Close();
}

}  // namespace

Status CameraSession::Teardown() {
  if (!HasDevice()) return kNoCamera;
  EndCommandWorkers(command);
  EndTriggerWorker(trigger);
  // A preview is only taken down with a running stream, deliberately: without one
  // it shows a still snapshot, and applications close its window themselves.
  if (stream.running.load() != 0) {
    if (preview::PreviewWindow* window = preview.window.load()) {
      window->DestroyWindow();
      delete window;
      preview.window.store(nullptr);
    }
    StopVideoStream();
  }
  const bool closed = link.gateway->Close(link.handle);
  link.handle = nullptr;
  command_lock.Delete();
  stream_lock.Delete();
  image_lock.Delete();
  return closed ? kOk : kCameraNotFound;
}

}  // namespace ormidex::device
