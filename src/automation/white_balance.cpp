// Adjusts the colour gains until the channels of the running stream are equal.
#include "automation/balance_laws.h"
#include "automation/exposure_laws.h"
#include "automation/measurement.h"
#include "device/session.h"
#include "imager/registers.h"

namespace ormidex::device {

using namespace automation;

namespace {

constexpr std::uint32_t kNoThreshold = 0xFFFFFFFFu;
constexpr std::uint32_t kDarkThreshold = 16;  // at 8 bits, as all thresholds here
constexpr std::uint32_t kBrightThreshold = 240;

// Saturation mixes the channels, so it is put out of the way for the run.
class SaturationHold {
 public:
  SaturationHold(CameraSession& session, std::uint32_t for_the_run)
      : session_(session), saved_(for_the_run) {
    session_.GetSaturation(&saved_);
    session_.SetSaturation(for_the_run);
  }
  // A saturation that could not be read stays as it was set for the run.
  void Restore() { session_.SetSaturation(saved_); }

 private:
  CameraSession& session_;
  std::uint32_t saved_;
};

constexpr std::uint32_t kOlderSaturation = 0;
constexpr std::uint32_t kNewerSaturation = 128;

// What both laws begin with, in this order.
struct Run {
  Region region;
  ColourWeights weights;
};

Status CheckAndAllocate(CameraSession& session, const Region& given, FrameMeter& meter) {
  if (!session.HasDevice()) return kNoCamera;
  if (session.stream.running.load() == 0) return kWrongState;
  if (!given.FitsInFrameOf(session)) return kOutOfRange;
  std::uint32_t bits = 0;
  if (Status status = session.GetDataTransferSize(&bits); status != kOk) return status;
  return meter.Allocate() ? kOk : kOutOfMemory;
}

// ---- Older controllers ----------------------------------------------------------

void CacheGains(CameraSession& session, const ColourGainCodes& codes) {
  session.gains.red = codes.red;
  session.gains.green = codes.green;
  session.gains.blue = codes.blue;
}

Status ReadGains(CameraSession& session, ColourGainCodes* codes) {
  std::uint8_t bytes[3] = {};
  const Status status = session.ReadMultRegister(imager::first::kRedGain, sizeof(bytes), bytes);
  if (status != kOk) return status;
  *codes = {bytes[0], bytes[1], bytes[2]};
  CacheGains(session, *codes);
  return kOk;
}

Status WriteGains(CameraSession& session, const ColourGainCodes& codes) {
  const std::uint8_t bytes[3] = {codes.red, codes.green, codes.blue};
  const Status status = session.WriteMultRegister(imager::first::kRedGain, sizeof(bytes), bytes, 0);
  if (status == kOk) CacheGains(session, codes);
  return status;
}

// A new gain shows in the fourth frame.
Status MeasureOlder(const CameraSession& session, FrameMeter& meter, const Region& region,
                    ColourLevels* levels) {
  meter.SkipFrames(3);
  const Status status = meter.ReadFrame();
  if (!region.given && !LacksStatistics(session)) {
    *levels = meter.ReadOlderStatistics();
    return kOk;
  }
  if (status == kOk) *levels = ColourLevels::FromMeans(meter.Measure(region, kNoThreshold));
  return status;
}

Status BalanceOlder(CameraSession& session, FrameMeter& meter, const Run& run) {
  OlderBalance law;
  while (law.passes < kPassLimit) {
    ColourLevels levels;
    if (Status status = MeasureOlder(session, meter, run.region, &levels); status != kOk) {
      return status;
    }
    const std::optional<ColourGainCodes> codes = law.Step(run.weights.Apply(levels));
    if (!codes) return kOk;
    if (Status status = WriteGains(session, *codes); status != kOk) return status;
  }
  return kNotConverged;
}

Status RunOlderBalance(CameraSession& session, const Region& given, const ColourWeights& weights) {
  FrameMeter meter(session);
  if (Status status = CheckAndAllocate(session, given, meter); status != kOk) return status;
  PreviewSuspension preview(session);
  preview.Suspend();
  SaturationHold saturation(session, kOlderSaturation);

  // Gains that cannot be read are taken to be those last known, so that the camera
  // keeps them.
  ColourGainCodes saved{static_cast<std::uint8_t>(session.gains.red),
                        static_cast<std::uint8_t>(session.gains.green),
                        static_cast<std::uint8_t>(session.gains.blue)};
  Status status = ReadGains(session, &saved);
  if (status == kOk) {
    status = BalanceOlder(session, meter, {given.RoundedInFrameOf(session), weights});
  }
  if (status != kOk) {
    WriteGains(session, saved);
    CacheGains(session, saved);
  }
  saturation.Restore();
  preview.Resume();
  return status;
}

// ---- Newer controllers ----------------------------------------------------------

constexpr std::uint32_t kSiteGains = imager::second::kGreen1Gain;
constexpr std::uint32_t kBalanceExposurePercent = 45;

void CacheGains(CameraSession& session, const SiteGainCodes& codes) {
  session.gains.red = codes.red;
  session.gains.green = (std::uint32_t{codes.green1} + codes.green2) >> 1;
  session.gains.blue = codes.blue;
}

Status ReadGains(CameraSession& session, SiteGainCodes* codes) {
  std::uint8_t bytes[4] = {};
  const Status status = session.ReadMultRegister(kSiteGains, sizeof(bytes), bytes);
  if (status != kOk) return status;
  *codes = {bytes[0], bytes[1], bytes[2], bytes[3]};
  CacheGains(session, *codes);
  return kOk;
}

Status WriteGains(CameraSession& session, const SiteGainCodes& codes) {
  const std::uint8_t bytes[4] = {codes.green1, codes.red, codes.blue, codes.green2};
  const Status status = session.WriteMultRegister(kSiteGains, sizeof(bytes), bytes, 0);
  if (status == kOk) CacheGains(session, codes);
  return status;
}

// The controller counts dark or clipped pixels, whichever is selected, in units of
// 32.
constexpr std::uint32_t kCountSelection = 2;
constexpr std::uint8_t kSelectBright = 0x20;

std::uint32_t ReadCount(CameraSession& session) {
  std::uint8_t high = 0;
  std::uint8_t low = 0;
  session.ReadCommandRegister(6, &high);
  session.ReadCommandRegister(7, &low);
  return (high * 256u + low) * 32u;
}

struct Extremes {
  std::uint32_t dark = 0;
  std::uint32_t clipped = 0;
  std::uint32_t pixels = 0;

  // More than a quarter of the pixels. A frame without pixels has none.
  bool BadlyExposed() const {
    return pixels != 0 && std::uint64_t{dark > clipped ? dark : clipped} * 4 > pixels;
  }
};

Extremes CountInFrame(CameraSession& session, const FrameMeter& meter) {
  std::uint8_t selection = 0;
  session.ReadCommandRegister(kCountSelection, &selection);
  session.WriteCommandRegister(kCountSelection,
                               static_cast<std::uint8_t>(selection & ~kSelectBright));
  Extremes extremes;
  extremes.dark = ReadCount(session);
  session.WriteCommandRegister(kCountSelection,
                               static_cast<std::uint8_t>(selection | kSelectBright));
  extremes.clipped = ReadCount(session);
  extremes.pixels = meter.Pixels();
  return extremes;
}

// The site means count nothing, so a region is never found to be badly exposed.
Extremes CountInRegion(FrameMeter& meter, const Region& region) {
  meter.Flush();
  meter.SkipFrames(3);
  Extremes extremes;
  meter.Measure(region, kDarkThreshold, &extremes.dark, nullptr);
  meter.Measure(region, kBrightThreshold, nullptr, &extremes.clipped);
  extremes.pixels = region.width * region.height;
  return extremes;
}

// Exposes a badly exposed picture so that it can be balanced. Whether that worked
// shows in the balance; the exposure is put back in any case.
Status ExposeForBalance(CameraSession& session, FrameMeter& meter, const Region& region,
                        std::optional<float>* exposure_before) {
  const Extremes extremes =
      region.given ? CountInRegion(meter, region) : CountInFrame(session, meter);
  if (!extremes.BadlyExposed() || session.exposure.continuous_auto != 0) return kOk;
  float milliseconds = 0.0f;
  if (Status status = session.GetExposureTime(&milliseconds); status != kOk) return status;
  *exposure_before = milliseconds;
  session.AutoExposure(kBalanceExposurePercent, region.given ? 1 : 0, region.left, region.top,
                       region.width, region.height);
  return kOk;
}

Status MeasureNewer(FrameMeter& meter, const Region& region, SiteLevels* levels) {
  meter.Flush();
  meter.SkipFrames(2);
  if (!region.given) {
    *levels = meter.ReadNewerStatistics();
    return kOk;
  }
  if (Status status = meter.ReadFrame(); status != kOk) return status;
  *levels = SiteLevels::FromMeans(meter.Measure(region, kBrightThreshold));
  for (std::uint32_t* level : {&levels->red, &levels->green1, &levels->green2, &levels->blue}) {
    if (*level == 0) *level = 1;
  }
  return kOk;
}

Status BalanceNewer(CameraSession& session, FrameMeter& meter, const Run& run) {
  SiteGainCodes codes;
  if (Status status = ReadGains(session, &codes); status != kOk) return status;
  NewerBalance law;
  while (law.passes < kPassLimit) {
    SiteLevels levels;
    if (Status status = MeasureNewer(meter, run.region, &levels); status != kOk) return status;
    const std::optional<SiteGainCodes> next = law.Step(codes, run.weights.Apply(levels));
    if (!next) return kOk;
    codes = *next;
    if (Status status = WriteGains(session, codes); status != kOk) return status;
  }
  return kNotConverged;
}

// A failure leaves the gains last written in force, unlike with older controllers;
// deliberate, applications go on from there with a second run.
Status RunNewerBalance(CameraSession& session, const Region& given, const ColourWeights& weights) {
  FrameMeter meter(session);
  if (Status status = CheckAndAllocate(session, given, meter); status != kOk) return status;
  PreviewSuspension preview(session);
  preview.Suspend();
  SaturationHold saturation(session, kNewerSaturation);
  float gamma = 0.0f;
  session.GetGamma(&gamma);

  const Run run{given.RoundedInFrameOf(session), weights};
  std::optional<float> exposure_before;
  Status status = ExposeForBalance(session, meter, run.region, &exposure_before);
  if (status == kOk) status = BalanceNewer(session, meter, run);

  if (exposure_before) session.SetExposureTime(*exposure_before, 0);
  session.SetGamma(gamma);
  saturation.Restore();
  preview.Resume();
  return status;
}

}  // namespace

Status CameraSession::WhiteBalance(std::uint32_t use_rectangle, std::uint32_t left,
                                   std::uint32_t top, std::uint32_t width, std::uint32_t height,
                                   std::uint32_t red_target, std::uint32_t green_target,
                                   std::uint32_t blue_target) {
  const Region region{use_rectangle != 0, left, top, width, height};
  const auto weights = ColourWeights::FromTargets(red_target, green_target, blue_target);
  return IsSecondGeneration() ? RunNewerBalance(*this, region, weights)
                              : RunOlderBalance(*this, region, weights);
}

}  // namespace ormidex::device
