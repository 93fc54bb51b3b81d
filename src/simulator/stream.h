// When frames are exposed and when they arrive.
//
// Time is handed in, and nothing here waits: AdvanceTo() works out what has
// happened since the last call. A frame takes the settings that are in force when
// its exposure starts. The driver keeps the newest two frames that nobody has
// read; older ones are lost.
#ifndef ORMIDEX_SIMULATOR_STREAM_H_
#define ORMIDEX_SIMULATOR_STREAM_H_

#include <cstdint>

#include "simulator/clock.h"
#include "simulator/picture.h"

namespace ormidex::simulator {

// What a frame that starts now would be like.
struct Exposure {
  FrameSettings settings;    // its response is that of one microsecond
  double exposure_us = 0.0;  // of the free-running stream
  double frame_us = 0.0;     // from one free-running frame to the next
  double readout_us = 0.0;   // the time that reading out takes
};

struct ExposedFrame {
  FrameSettings settings;
  std::uint32_t number = 0;
  double exposure_us = 0.0;
  Microseconds ready = 0;
};

class Stream {
 public:
  explicit Stream(std::uint32_t first_number) : next_number_(first_number) {}

  void Start(Microseconds now);
  void Stop();
  void Pause(bool pause, Microseconds now);
  // Mode 0 waits for stills and triggers; any other runs freely.
  void SetVideoMode(std::uint32_t mode, Microseconds now);
  void Still(Microseconds now, const Exposure& exposure, double exposure_us);
  // A hertz of 0 leaves triggering to Fire(). A patient source, such as a program,
  // waits for the camera to be ready; another's edges pass unseen meanwhile.
  void Arm(Microseconds now, double exposure_us, double hertz, bool patient);
  void Disarm(Microseconds now);
  // False when the camera was not armed or still busy with a frame.
  bool Fire(Microseconds now, const Exposure& exposure);

  void AdvanceTo(Microseconds now, const Exposure& exposure);
  bool Take(ExposedFrame* frame);
  void Flush() { waiting_ = 0; }
  // When the next frame arrives if nothing is changed; kNoMoment when it depends on
  // the host or on a trigger.
  Microseconds NextArrival(const Exposure& exposure) const;

  bool Running() const { return running_; }
  bool Armed() const { return armed_; }
  std::uint32_t NextNumber() const { return next_number_; }
  std::uint32_t MissedTriggers() const { return missed_triggers_; }
  std::uint32_t LostFrames() const { return lost_; }
  // The frame last read out by the imager; null before the first.
  const ExposedFrame* Latest() const { return any_done_ ? &latest_ : nullptr; }

 private:
  static constexpr int kDriverFrames = 2;

  bool FreeRunning() const { return running_ && !paused_ && !armed_ && mode_ != 0; }
  Microseconds ScheduledTrigger() const;
  Microseconds NextTrigger();
  void Begin(Microseconds start, double exposure_us, double duration_us, const Exposure& exposure);
  void Finish();
  void SkipUnseenFrames(Microseconds now, double frame_us);
  bool BeginNext(Microseconds now, const Exposure& exposure);

  bool running_ = false;
  bool paused_ = false;
  std::uint32_t mode_ = 0;

  bool armed_ = false;
  double triggered_exposure_us_ = 0.0;
  double trigger_period_us_ = 0.0;  // 0: no periodic source
  bool patient_ = false;
  Microseconds armed_at_ = 0;
  std::uint64_t trigger_count_ = 0;

  bool busy_ = false;
  ExposedFrame current_;
  Microseconds idle_since_ = 0;
  ExposedFrame queue_[kDriverFrames];
  int waiting_ = 0;
  ExposedFrame latest_;
  bool any_done_ = false;
  std::uint32_t next_number_;
  std::uint32_t missed_triggers_ = 0;
  std::uint32_t lost_ = 0;
};

}  // namespace ormidex::simulator

#endif  // ORMIDEX_SIMULATOR_STREAM_H_
