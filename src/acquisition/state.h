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
  // Set when the worker has been started, cleared by the worker as it ends.
  std::atomic<std::uint32_t> active{0};
  std::uint32_t option = 1;
  std::uint32_t convert = 0;
  std::uint32_t algorithm = 0;
  void* raw_buffer = nullptr;     // the application's
  void* output_buffer = nullptr;  // the application's
  device::TriggerCallback callback = nullptr;
  platform::Event stop_event;
  // As they were when the capture began.
  std::uint32_t saved_stream_running = 0;
  std::uint32_t saved_video_mode = 0;
  std::uint32_t saved_preview_suspended = 0;
};

struct CommandState {
  std::atomic<std::uint32_t> active_workers{0};
  std::uint32_t next_ticket = 0;
  std::uint32_t now_serving = 0;
  platform::Event cancel_event;   // set: every transfer is abandoned
  platform::Event channel_event;  // signalled: the channel is free
  platform::Event done_event;     // a transfer someone waits for has ended
};

}  // namespace ormidex::acquisition

#endif  // ORMIDEX_ACQUISITION_STATE_H_
