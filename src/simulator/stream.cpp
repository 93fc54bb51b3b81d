#include "simulator/stream.h"

#include <algorithm>

namespace ormidex::simulator {
namespace {

// A frame takes a moment, whatever the registers say.
Microseconds Duration(double us) {
  return us < 1.0 ? 1 : us > 3.6e9 ? Microseconds{3600000000u} : static_cast<Microseconds>(us);
}

}  // namespace

void Stream::Start(Microseconds now) {
  running_ = true;
  paused_ = false;
  busy_ = false;
  waiting_ = 0;
  idle_since_ = now;
}

void Stream::Stop() {
  running_ = false;
  busy_ = false;
  waiting_ = 0;
}

void Stream::Pause(bool pause, Microseconds now) {
  if (pause == paused_) return;
  paused_ = pause;
  if (pause && !armed_) busy_ = false;
  idle_since_ = now;
}

void Stream::SetVideoMode(std::uint32_t mode, Microseconds now) {
  mode_ = mode;
  busy_ = false;
  waiting_ = 0;
  idle_since_ = now;
}

void Stream::Still(Microseconds now, const Exposure& exposure, double exposure_us) {
  waiting_ = 0;
  Begin(now, exposure_us, exposure_us + exposure.readout_us, exposure);
}

void Stream::Arm(Microseconds now, double exposure_us, double hertz, bool patient) {
  armed_ = true;
  triggered_exposure_us_ = exposure_us;
  trigger_period_us_ = hertz > 0.0 ? 1e6 / hertz : 0.0;
  patient_ = patient;
  armed_at_ = now;
  trigger_count_ = 0;
  busy_ = false;
  waiting_ = 0;
  idle_since_ = now;
}

void Stream::Disarm(Microseconds now) {
  if (!armed_) return;
  armed_ = false;
  busy_ = false;
  waiting_ = 0;
  idle_since_ = now;
}

bool Stream::Fire(Microseconds now, const Exposure& exposure) {
  if (!armed_ || !running_) return false;
  if (busy_) {
    ++missed_triggers_;
    return false;
  }
  Begin(now, triggered_exposure_us_, triggered_exposure_us_ + exposure.readout_us, exposure);
  return true;
}

void Stream::Begin(Microseconds start, double exposure_us, double duration_us,
                   const Exposure& exposure) {
  busy_ = true;
  current_.settings = exposure.settings;
  for (double& response : current_.settings.response) response *= exposure_us;
  current_.number = next_number_;
  current_.exposure_us = exposure_us;
  current_.ready = start + Duration(duration_us);
}

void Stream::Finish() {
  busy_ = false;
  idle_since_ = current_.ready;
  ++next_number_;
  latest_ = current_;
  any_done_ = true;
  if (waiting_ == kDriverFrames) {
    std::copy(queue_ + 1, queue_ + kDriverFrames, queue_);
    --waiting_;
    ++lost_;
  }
  queue_[waiting_++] = current_;
}

// After a long pause of the host nobody will ever see most of the frames.
void Stream::SkipUnseenFrames(Microseconds now, double frame_us) {
  const Microseconds frame = Duration(frame_us);
  const Microseconds whole = (now - idle_since_) / frame;
  if (whole <= kDriverFrames + 1) return;
  const Microseconds skipped = whole - kDriverFrames - 1;
  idle_since_ += skipped * frame;
  next_number_ += static_cast<std::uint32_t>(skipped);
  lost_ += static_cast<std::uint32_t>(skipped);
}

Microseconds Stream::ScheduledTrigger() const {
  const double offset = static_cast<double>(trigger_count_ + 1) * trigger_period_us_;
  return armed_at_ + static_cast<Microseconds>(offset);
}

// The first trigger since the camera became ready; those before are missed.
Microseconds Stream::NextTrigger() {
  for (;;) {
    const Microseconds moment = ScheduledTrigger();
    if (moment >= idle_since_) return moment;
    if (patient_) return idle_since_;
    const double behind = static_cast<double>(idle_since_ - moment) / trigger_period_us_;
    const std::uint64_t skipped = behind > 2.0 ? static_cast<std::uint64_t>(behind) : 1;
    trigger_count_ += skipped;
    missed_triggers_ += static_cast<std::uint32_t>(skipped);
  }
}

bool Stream::BeginNext(Microseconds now, const Exposure& exposure) {
  if (FreeRunning()) {
    SkipUnseenFrames(now, exposure.frame_us);
    Begin(idle_since_, exposure.exposure_us, exposure.frame_us, exposure);
    return true;
  }
  if (!armed_ || !running_ || trigger_period_us_ == 0.0) return false;
  const Microseconds trigger = NextTrigger();
  if (trigger > now) return false;
  ++trigger_count_;
  Begin(trigger, triggered_exposure_us_, triggered_exposure_us_ + exposure.readout_us, exposure);
  return true;
}

void Stream::AdvanceTo(Microseconds now, const Exposure& exposure) {
  for (;;) {
    if (busy_) {
      if (current_.ready > now) return;
      Finish();
    }
    if (!BeginNext(now, exposure)) return;
  }
}

bool Stream::Take(ExposedFrame* frame) {
  if (waiting_ == 0) return false;
  *frame = queue_[0];
  std::copy(queue_ + 1, queue_ + waiting_, queue_);
  --waiting_;
  return true;
}

Microseconds Stream::NextArrival(const Exposure& exposure) const {
  if (busy_) return current_.ready;
  if (!armed_ || !running_ || trigger_period_us_ == 0.0) return kNoMoment;
  return std::max(ScheduledTrigger(), idle_since_) +
         Duration(triggered_exposure_us_ + exposure.readout_us);
}

}  // namespace ormidex::simulator
