// What the session keeps of streaming, triggered capture and the command channel.
#ifndef ORMIDEX_ACQUISITION_STATE_H_
#define ORMIDEX_ACQUISITION_STATE_H_

#include <atomic>
#include <cstdint>

#include "device/callbacks.h"
#include "platform/event.h"

namespace ormidex::acquisition {

struct StreamState {
  // Set by the caller's thread under the stream lock, read by workers.
  std::atomic<std::uint32_t> running{0};
};

struct TriggerState {
  // Set under the stream lock as the worker is started, cleared by the worker as it
  // ends: from then on the worker touches nothing of the session.
  std::atomic<std::uint32_t> active{0};
  std::uint32_t option = 1;
  std::uint32_t convert = 0;
  std::uint32_t algorithm = 0;
  void* raw_buffer = nullptr;     // the application's
  void* output_buffer = nullptr;  // the application's
  device::TriggerCallback callback = nullptr;
  platform::Event stop_event;
  // As they were when the last still or triggered capture began; guarded by the
  // stream lock.
  std::uint32_t saved_stream_running = 0;
  std::uint32_t saved_video_mode = 0;
  std::uint32_t saved_preview_suspended = 0;
};

struct CommandState {
  // Threads that still use the channel: each worker from the moment it is queued,
  // and each caller until it returns. Leaving is a thread's last touch of the
  // session, so at 0 the session may go.
  std::atomic<std::uint32_t> active_workers{0};
  // Transfers that have ended and whose caller has not come for the result yet.
  std::atomic<std::uint32_t> untaken_results{0};
  std::uint32_t next_ticket = 0;  // guarded by the command lock
  std::uint32_t now_serving = 0;  // belongs to the holder of the channel event
  platform::Event cancel_event;   // set: every transfer is abandoned
  platform::Event channel_event;  // signalled: the channel is free
  platform::Event done_event;     // a transfer someone waits for has ended
};

}  // namespace ormidex::acquisition

#endif  // ORMIDEX_ACQUISITION_STATE_H_
