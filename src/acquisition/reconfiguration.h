// The way in which a setter changes a camera that may be streaming.
#ifndef ORMIDEX_ACQUISITION_RECONFIGURATION_H_
#define ORMIDEX_ACQUISITION_RECONFIGURATION_H_

#include "device/session.h"

namespace ormidex::acquisition {

// Pauses the preview, takes the stream lock and stops a running stream; later
// restarts the stream, leaves the lock and gives the preview its former state back.
//
// A setter that fails in between just returns: the lock is left, the stream stays
// stopped and the preview paused, so that an application sees that the change did
// not complete.
class StreamReconfiguration {
 public:
  explicit StreamReconfiguration(device::CameraSession& session) : session_(session) {}
  ~StreamReconfiguration() { LeaveLock(); }
  StreamReconfiguration(const StreamReconfiguration&) = delete;
  StreamReconfiguration& operator=(const StreamReconfiguration&) = delete;

  // PausePreview and EnterAndStop.
  Status Begin();
  // PausePreview and the lock; a running stream goes on.
  Status BeginWithoutStopping();

  void PausePreview();
  Status EnterAndStop();
  Status RestartStream();
  void LeaveLock();
  void RestorePreview();

  // A preview is attached and was running before.
  bool PausedPreview() const;

 private:
  device::CameraSession& session_;
  bool locked_ = false;
  bool stream_stopped_ = false;
  bool preview_was_suspended_ = false;
};

}  // namespace ormidex::acquisition

#endif  // ORMIDEX_ACQUISITION_RECONFIGURATION_H_
