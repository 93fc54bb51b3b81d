// Brings the brightness of the running stream to a target.
#include "automation/exposure_laws.h"
#include "automation/measurement.h"
#include "device/session.h"

namespace ormidex::device {

using namespace automation;

namespace {

constexpr std::uint32_t kPercentMax = 100;

// The thresholds of the site means, at 8 bits. They select nothing.
constexpr std::uint32_t kNoThreshold = 0xFFFFFFFFu;
constexpr std::uint32_t kBrightThreshold = 240;

// ---- Older controllers: bisection over the raw exposure value ------------------

// A bit that colour cameras hold set while they are being exposed. The stream rests
// meanwhile. Nothing of this is required to succeed.
void SetExposingBit(CameraSession& session, bool on) {
  const std::uint32_t address = session.HasCommandRegisterMap3() ? 15 : 7;
  session.PauseVideoStream(1);
  ChangeCommandRegister(session, address, 0xFE, on ? 1 : 0);
  session.PauseVideoStream(0);
}

// The status is that of the frame, which matters only when the frame is looked at.
Status MeasureOlder(const CameraSession& session, FrameMeter& meter, const Region& region,
                    ColourLevels* levels) {
  meter.Flush();
  meter.SkipFrames(1);  // exposed under the previous setting
  const Status status = meter.ReadFrame();
  if (!region.given && !LacksStatistics(session)) {
    *levels = meter.ReadOlderStatistics();
    return kOk;
  }
  if (status == kOk) *levels = ColourLevels::FromMeans(meter.Measure(region, kNoThreshold));
  return status;
}

Status Bisect(CameraSession& session, FrameMeter& meter, const Region& region, std::uint32_t target,
              Bisection& search) {
  const bool colour = session.identity.imager_type == kImagerColour;
  for (std::uint32_t pass = 0; pass < kPassLimit; ++pass) {
    ColourLevels levels;
    if (Status status = MeasureOlder(session, meter, region, &levels); status != kOk) {
      return status;
    }
    const std::uint32_t brightness = colour ? ColourBrightness(levels) : MonoBrightness(levels);
    if (search.Step(target, brightness) == Bisection::Verdict::kDone) return kOk;
    if (Status status = session.SetExposure(search.current); status != kOk) return status;
  }
  return kNotConverged;
}

Status ExposeByBisection(CameraSession& session, std::uint32_t percent, const Region& given) {
  PreviewSuspension preview(session);
  preview.Suspend();
  const Region region = given.RoundedInFrameOf(session);
  Bisection search(session.geometry.height);
  // These two failures leave the preview suspended, deliberately: applications
  // that meet them close it or resume it themselves.
  if (Status status = session.SetExposure(search.current); status != kOk) return status;
  FrameMeter meter(session);
  if (!meter.Allocate()) return kOutOfMemory;

  const bool colour = session.identity.imager_type == kImagerColour;
  if (colour) SetExposingBit(session, true);
  const Status status = Bisect(session, meter, region, BisectionTarget(percent), search);
  if (colour) SetExposingBit(session, false);
  preview.Resume();
  return status;
}

// ---- Newer controllers: proportional law over the exposure time ----------------

SiteLevels MeasureNewer(FrameMeter& meter, const Region& region) {
  meter.Flush();
  meter.SkipFrames(region.given ? 3 : 2);
  if (!region.given) return meter.ReadNewerStatistics();
  return SiteLevels::FromMeans(meter.Measure(region, kBrightThreshold));
}

void ExposeProportionally(CameraSession& session, FrameMeter& meter, const Region& region,
                          float target, Proportional& law) {
  const bool colour = session.identity.imager_type == kImagerColour;
  for (std::uint32_t pass = 0; pass < kPassLimit; ++pass) {
    const SiteLevels levels = MeasureNewer(meter, region);
    const std::uint32_t brightness = colour ? ColourBrightness(levels) : MonoBrightness(levels);
    const Proportional::Action action = law.Step(target, brightness);
    if (action.set_exposure) session.SetExposureTime(law.exposure_ms, 0);
    if (action.last_pass) return;
  }
}

// Succeeds even where the target is not reached, unlike the bisection; deliberate,
// applications treat any failure of these cameras as a lost camera.
Status ExposeByProportion(CameraSession& session, std::uint32_t percent, const Region& region) {
  Proportional law;
  if (Status status = session.GetExposureTime(&law.exposure_ms); status != kOk) return status;
  if (law.exposure_ms <= 0.0f) law.exposure_ms = kExposureTimeStart;
  float gamma = 0.0f;
  if (Status status = session.GetGamma(&gamma); status != kOk) return status;
  FrameMeter meter(session);
  if (!meter.Allocate()) return kOutOfMemory;

  PreviewSuspension preview(session);
  preview.Suspend();
  ExposeProportionally(session, meter, region, ProportionalTarget(gamma, percent), law);
  preview.Resume();
  return kOk;
}

}  // namespace

Status CameraSession::AutoExposure(std::uint32_t target_percent, std::uint32_t use_rectangle,
                                   std::uint32_t left, std::uint32_t top, std::uint32_t width,
                                   std::uint32_t height) {
  if (!HasDevice()) return kNoCamera;
  if (stream.running.load() == 0) return kWrongState;
  if (exposure.continuous_auto != 0) return kWrongState;
  if (target_percent > kPercentMax) return kOutOfRange;
  const Region region{use_rectangle != 0, left, top, width, height};
  if (!region.FitsInFrameOf(*this)) return kOutOfRange;
  return IsSecondGeneration() ? ExposeByProportion(*this, target_percent, region)
                              : ExposeByBisection(*this, target_percent, region);
}

}  // namespace ormidex::device
