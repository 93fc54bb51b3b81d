// The byte channel to the camera's controller.
//
// Every transfer runs on a thread of its own. Transfers are served strictly in the
// order in which they were queued, each for about a second at most.
#ifndef ORMIDEX_ACQUISITION_COMMAND_CHANNEL_H_
#define ORMIDEX_ACQUISITION_COMMAND_CHANNEL_H_

#include <cstdint>

#include "device/session.h"

namespace ormidex::acquisition {

// A transfer has ended; called on its worker's thread, which holds the channel, so
// it must not wait for another transfer. Not called for a transfer that was
// cancelled before its turn came.
using TransferCallback = void (*)(void* handle, void* buffer, std::uint32_t transferred,
                                  Status status, std::uint32_t context);

// What one transfer moves: `count` bytes, at most 96, from or to `buffer`. The code
// is CAM_IOCTL_READ_COMMAND or CAM_IOCTL_WRITE_COMMAND.
struct TransferRequest {
  device::ControlCode code = device::CAM_IOCTL_READ_COMMAND;
  void* buffer = nullptr;
  std::uint32_t count = 0;
  std::uint32_t context = 0;
  TransferCallback callback = nullptr;
};

// Queues a transfer. With a callback it returns at once; without, it waits for the
// transfer and returns its status.
Status RunTransfer(device::CameraSession& session, const TransferRequest& request);

}  // namespace ormidex::acquisition

#endif  // ORMIDEX_ACQUISITION_COMMAND_CHANNEL_H_
