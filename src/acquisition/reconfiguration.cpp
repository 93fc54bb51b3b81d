#include "acquisition/reconfiguration.h"

namespace ormidex::acquisition {

Status StreamReconfiguration::Begin() {
  PausePreview();
  return EnterAndStop();
}

Status StreamReconfiguration::BeginWithoutStopping() {
  PausePreview();
  session_.stream_lock.Enter();
  locked_ = true;
  return kOk;
}

void StreamReconfiguration::PausePreview() {
  if (session_.preview.window.load() == nullptr) return;
  preview_was_suspended_ = session_.preview.suspended.load() != 0;
  if (!preview_was_suspended_) session_.NotifyPreview(1);
}

Status StreamReconfiguration::EnterAndStop() {
  session_.stream_lock.Enter();
  locked_ = true;
  if (session_.stream.running.load() == 0) return kOk;
  const Status status = session_.StopVideoStream();
  stream_stopped_ = status == kOk;
  return status;
}

Status StreamReconfiguration::RestartStream() {
  return stream_stopped_ ? session_.StartVideoStream() : kOk;
}

void StreamReconfiguration::LeaveLock() {
  if (!locked_) return;
  locked_ = false;
  session_.stream_lock.Leave();
}

void StreamReconfiguration::RestorePreview() {
  if (session_.preview.window.load() == nullptr) return;
  session_.NotifyPreview(preview_was_suspended_ ? 1 : 0);
}

bool StreamReconfiguration::PausedPreview() const {
  return session_.preview.window.load() != nullptr && !preview_was_suspended_;
}

}  // namespace ormidex::acquisition
