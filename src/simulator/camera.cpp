#include "simulator/camera.h"

#include <algorithm>
#include <cstring>

#include "platform/thread.h"

namespace ormidex::simulator {
namespace {

// The frame counters start close to their wrap, so that a host that cannot cope
// with the wrap fails in the first second and not after months.
constexpr std::uint32_t kFirstFrame = 0xFFFFFFFA;
constexpr double kAutomaticTarget = 115.0;

std::unique_ptr<Imager> CreateImager(const CameraDescription& description) {
  return description.generation == 1
             ? CreateFirstGenerationImager(description.phase, description.imager_answer)
             : CreateSecondGenerationImager(description.imager_answer);
}

Picture::Setup SensorOf(const Imager& imager, const CameraDescription& description) {
  Picture::Setup setup = imager.Sensor();
  setup.colour = description.colour;
  setup.seed = description.seed;
  return setup;
}

std::uint32_t CodeIndex(std::uint32_t code) { return code >> 2 & 0xFF; }

}  // namespace

SimulatedCamera::SimulatedCamera(const CameraDescription& description, std::unique_ptr<Scene> scene,
                                 Clock& clock)
    : description_(description),
      clock_(clock),
      imager_(CreateImager(description_)),
      bus_(*imager_),
      controller_(description_, bus_, *this),
      picture_(SensorOf(*imager_, description_), std::move(scene)),
      stream_(kFirstFrame),
      commands_(description_.command_piece, description_.command_delay_ms,
                description_.command_refusals),
      faults_(description_.seed),
      light_(description_.light),
      tint_(description_.tint),
      noise_(description_.noise),
      timeout_ms_(description_.timeout_ms),
      frames_taken_(kFirstFrame) {
  lock_.Initialise();
  for (const Fault& fault : description_.faults) faults_.Add(fault);
  // Made in advance, so that a host short of events is not made shorter still
  // when it reads a frame.
  for (Waiter& waiter : waiters_) waiter.event.Create(false);
}

SimulatedCamera::~SimulatedCamera() {
  for (Waiter& waiter : waiters_) waiter.event.Close();
  lock_.Delete();
}

void SimulatedCamera::PowerUp() {
  imager_->PowerUp();
  imager_->ShiftMirroredWindow(false);
  controller_.PowerUp();
  stream_ = Stream(kFirstFrame);
  commands_.Clear();
  bytes_per_pixel_ = 1;
  gpio_ = 0;
  timeout_ms_ = description_.timeout_ms;
  video_mode_ = 0;
  frames_taken_ = kFirstFrame;
  table_on_ = false;
  exposure_ready_ = false;
}

void SimulatedCamera::PullOut() {
  if (!plugged_) return;
  plugged_ = false;
  ++read_round_;
  WakeReaders();
}

void SimulatedCamera::Unplug() {
  platform::ScopedLock hold(lock_);
  PullOut();
  replug_after_ = 0;
}

void SimulatedCamera::Replug() {
  platform::ScopedLock hold(lock_);
  if (plugged_) return;
  PowerUp();
  plugged_ = true;
  ++plug_;
}

std::uint32_t SimulatedCamera::Plug() {
  platform::ScopedLock hold(lock_);
  return plugged_ ? plug_ : 0;
}

std::uint32_t SimulatedCamera::AttemptOpen() {
  platform::ScopedLock hold(lock_);
  if (!plugged_ && replug_after_ != 0 && --replug_after_ == 0) {
    PowerUp();
    plugged_ = true;
    ++plug_;
  }
  return plugged_ && !faults_.RefusesOpening() ? plug_ : 0;
}

void SimulatedCamera::CancelReads() {
  platform::ScopedLock hold(lock_);
  ++read_round_;
  WakeReaders();
}

void SimulatedCamera::WakeReaders() {
  for (Waiter& waiter : waiters_) {
    if (waiter.used) waiter.event.Signal();
  }
}

// Works out what has happened until now, under the settings of until now.
void SimulatedCamera::CatchUp() {
  if (!stream_.Running()) return;
  stream_.AdvanceTo(clock_.Now(), CurrentExposure());
}

const Exposure& SimulatedCamera::CurrentExposure() {
  if (exposure_ready_) return exposure_;
  const ImagerState state = imager_->Run(controller_.ClockMegahertz());
  FrameSettings& settings = exposure_.settings;
  settings.readout = state.readout;
  settings.bytes_per_pixel = bytes_per_pixel_;
  settings.noise = noise_ * kAdcLevels / 256.0;
  settings.table = table_on_ ? tables_[table_version_ % kTables] : nullptr;
  settings.table_version = table_on_ ? table_version_ : 0;
  const double band[kSiteCount] = {tint_.red, tint_.green, tint_.green, tint_.blue};
  for (int site = 0; site < kSiteCount; ++site) {
    settings.response[site] = light_ * band[site] * state.gain[site] / imager_->NominalExposure();
  }
  exposure_.exposure_us = state.exposure_us;
  exposure_.frame_us = state.frame_us;
  exposure_.readout_us = state.readout.height * state.row_us;
  exposure_ready_ = true;
  return exposure_;
}

void SimulatedCamera::SoftwareTrigger() {
  CatchUp();
  stream_.Fire(clock_.Now(), CurrentExposure());
  WakeReaders();
}

bool SimulatedCamera::FireTrigger() {
  platform::ScopedLock hold(lock_);
  if (!plugged_) return false;
  CatchUp();
  const bool released = stream_.Fire(clock_.Now(), CurrentExposure());
  WakeReaders();
  return released;
}

const SiteSums& SimulatedCamera::LatestSums() {
  static const SiteSums kNothing;
  CatchUp();
  const ExposedFrame* latest = stream_.Latest();
  return latest != nullptr ? picture_.Measure(latest->settings, latest->number) : kNothing;
}

// --- Frames ---

// Leaves the lock while it waits, and takes it again. False: reading is over.
bool SimulatedCamera::WaitUntil(Microseconds due, bool certain) {
  const std::uint32_t round = read_round_;
  Waiter* mine = nullptr;
  for (Waiter& waiter : waiters_) {
    if (!waiter.used && waiter.event.Exists()) mine = &waiter;
  }
  if (mine == nullptr) {  // more readers than waiting places
    lock_.Leave();
    platform::SleepMilliseconds(1);
    lock_.Enter();
    return read_round_ == round;
  }
  mine->used = true;
  mine->event.Wait(0);  // a signal to the one who waited here before
  lock_.Leave();
  if (certain) {
    clock_.WaitUntil(due, mine->event);
  } else {
    clock_.WaitForWake(due, mine->event);
  }
  lock_.Enter();
  mine->used = false;
  return read_round_ == round;
}

bool SimulatedCamera::AwaitFrame(const Misfortune& misfortune, ExposedFrame* frame) {
  const Microseconds begun = clock_.Now();
  const Microseconds deadline = begun + timeout_ms_ * Microseconds{1000};
  Microseconds release = 0;  // of a frame that is held back
  bool have = false;
  for (;;) {
    const Microseconds now = clock_.Now();
    CatchUp();
    if (!have && !misfortune.never && stream_.Take(frame)) {
      have = true;
      release = now + misfortune.late_ms * Microseconds{1000};
    }
    if (have && now >= release) return true;
    if (now >= deadline) return false;
    const Microseconds arrival = have               ? release
                                 : misfortune.never ? deadline
                                                    : stream_.NextArrival(CurrentExposure());
    if (!WaitUntil(std::min(arrival, deadline), arrival != kNoMoment)) return false;
  }
}

void SimulatedCamera::RunAutomaticExposure(const ExposedFrame& frame) {
  const double mean = picture_.EstimateMean(frame.settings);
  const double change = std::clamp(kAutomaticTarget / std::max(mean, 1.0), 0.25, 4.0);
  // The frame may have been exposed before the last correction.
  const double factor = change * frame.exposure_us / std::max(CurrentExposure().exposure_us, 1.0);
  if (factor > 0.96 && factor < 1.04) return;
  CatchUp();
  imager_->ScaleExposure(factor);
  exposure_ready_ = false;
}

// --- Hands, light and cables ---

void SimulatedCamera::SetLight(double light) {
  platform::ScopedLock hold(lock_);
  CatchUp();
  light_ = light;
  exposure_ready_ = false;
}

void SimulatedCamera::SetTint(const Tint& tint) {
  platform::ScopedLock hold(lock_);
  CatchUp();
  tint_ = tint;
  exposure_ready_ = false;
}

void SimulatedCamera::SetNoise(double noise) {
  platform::ScopedLock hold(lock_);
  CatchUp();
  noise_ = noise;
  exposure_ready_ = false;
}

void SimulatedCamera::ReplaceScene(std::unique_ptr<Scene> scene) {
  platform::ScopedLock hold(lock_);
  picture_.ReplaceScene(std::move(scene));
}

void SimulatedCamera::AddFault(const Fault& fault) {
  platform::ScopedLock hold(lock_);
  faults_.Add(fault);
}

void SimulatedCamera::ClearFaults() {
  platform::ScopedLock hold(lock_);
  faults_.Clear();
}

// --- Looking inside ---

std::uint8_t SimulatedCamera::ImagerRegister(std::uint8_t address) {
  platform::ScopedLock hold(lock_);
  return imager_->Read(address);
}

void SimulatedCamera::SetImagerRegister(std::uint8_t address, std::uint8_t value) {
  platform::ScopedLock hold(lock_);
  CatchUp();
  imager_->Write(address, value);
  exposure_ready_ = false;
}

std::uint8_t SimulatedCamera::CommandRegister(std::uint8_t index) {
  platform::ScopedLock hold(lock_);
  return controller_.Register(index);
}

void SimulatedCamera::SetCommandRegister(std::uint8_t index, std::uint8_t value) {
  platform::ScopedLock hold(lock_);
  CatchUp();
  controller_.SetRegister(index, value);
  exposure_ready_ = false;
}

OutputLine SimulatedCamera::Line(int index) {
  platform::ScopedLock hold(lock_);
  return controller_.Line(index);
}

std::uint32_t SimulatedCamera::Gpio() {
  platform::ScopedLock hold(lock_);
  return gpio_;
}

std::uint32_t SimulatedCamera::TimeoutMilliseconds() {
  platform::ScopedLock hold(lock_);
  return timeout_ms_;
}

std::uint32_t SimulatedCamera::VideoMode() {
  platform::ScopedLock hold(lock_);
  return video_mode_;
}

bool SimulatedCamera::Streaming() {
  platform::ScopedLock hold(lock_);
  return stream_.Running();
}

bool SimulatedCamera::Armed() {
  platform::ScopedLock hold(lock_);
  return stream_.Armed();
}

std::uint32_t SimulatedCamera::MissedTriggers() {
  platform::ScopedLock hold(lock_);
  CatchUp();
  return stream_.MissedTriggers();
}

double SimulatedCamera::FrameMicroseconds() {
  platform::ScopedLock hold(lock_);
  return CurrentExposure().frame_us;
}

double SimulatedCamera::ExposureMicroseconds() {
  platform::ScopedLock hold(lock_);
  return CurrentExposure().exposure_us;
}

TrafficCount SimulatedCamera::Traffic(std::uint32_t code) {
  platform::ScopedLock hold(lock_);
  return traffic_[CodeIndex(code)];
}

std::uint32_t SimulatedCamera::TotalRequests() {
  platform::ScopedLock hold(lock_);
  std::uint32_t total = 0;
  for (const TrafficCount& count : traffic_) total += count.requests;
  return total;
}

std::uint64_t SimulatedCamera::FrameBytesDelivered() {
  platform::ScopedLock hold(lock_);
  return bytes_delivered_;
}

void SimulatedCamera::SetCommandPiece(std::uint32_t piece) {
  platform::ScopedLock hold(lock_);
  commands_.SetPiece(piece);
}

void SimulatedCamera::SetCommandDelay(Microseconds delay) {
  platform::ScopedLock hold(lock_);
  commands_.SetDelay(delay);
}

void SimulatedCamera::RefuseCommands(std::uint32_t count) {
  platform::ScopedLock hold(lock_);
  commands_.Refuse(count);
}

}  // namespace ormidex::simulator
