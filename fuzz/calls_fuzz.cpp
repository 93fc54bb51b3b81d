// Sequences of calls on simulated cameras that fail now and then: every call returns
// one of the statuses, and writes no byte beyond what belongs to it.
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "ormidex.h"

namespace {

// Every camera fails some requests; the last one is pulled and plugged in again.
constexpr char kCameras[] =
    "pace=fast,fault=random:3;pace=fast,generation=1,fault=random:3;"
    "pace=fast,imager=mono,fault=random:3;pace=fast,fault=unplug:400:3";
constexpr OrmidexUInt32 kCameraCount = 4;
constexpr std::size_t kFrameBytes = std::size_t{1280} * 1024 * 2;
constexpr std::size_t kMostCalls = 64;
// A read that nothing is certain to end takes this long.
constexpr OrmidexUInt32 kTimeoutMilliseconds = 100;

class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : data_(data), end_(data + size) {}
  bool AtEnd() const { return data_ == end_; }
  OrmidexUInt32 Byte() { return AtEnd() ? 0 : *data_++; }
  // Numbers about which functions have opinions.
  OrmidexUInt32 Number() {
    static constexpr OrmidexUInt32 kNumbers[] = {
        0,   1,   2,   3,   4,   8,   10,  16,  24,  63,   64,   128,  255,
        256, 320, 480, 512, 640, 800, 960, 720, 768, 1023, 1024, 1280, 0xFFFFFFFFu};
    const OrmidexUInt32 byte = Byte();
    return byte < 128 ? kNumbers[byte % std::size(kNumbers)] : Byte() * 256 + Byte();
  }
  float Fraction() { return static_cast<float>(Number()) / static_cast<float>(Byte() + 1); }

 private:
  const std::uint8_t* data_;
  const std::uint8_t* end_;
};

struct Caller {
  OrmidexHandle camera = nullptr;
  std::vector<std::uint8_t> frame = std::vector<std::uint8_t>(kFrameBytes);
  std::vector<std::uint8_t> image = std::vector<std::uint8_t>(kFrameBytes * 3);
  // The library's own while the trigger is armed.
  std::vector<std::uint8_t> triggered = std::vector<std::uint8_t>(kFrameBytes);
  OrmidexUInt32 numbers[5] = {};
};

OrmidexStatus ReadFrame(Caller& c, Input&) {
  OrmidexUInt32* n = c.numbers;
  OrmidexUInt32 bits = 8;
  if (OrmidexGetSubWindow(c.camera, n, n + 1, n + 2, n + 3, n + 4) != ORMIDEX_OK) return 0;
  OrmidexGetDataTransferSize(c.camera, &bits);
  return OrmidexReturnVideoData(c.camera, n[3] / n[0] * (n[4] / n[0]) * bits / 8, c.frame.data());
}

// Into memory of just the size, so that a sanitizer sees a byte too many.
OrmidexStatus Convert(Caller& c, Input& in) {
  const OrmidexUInt32 kind = in.Byte() % 5;
  const OrmidexUInt32 width = in.Byte() % 40;
  const OrmidexUInt32 height = in.Byte() % 40;
  const OrmidexUInt32 code = in.Number();
  const std::size_t pixels = std::size_t{width} * height;
  const std::vector<std::uint8_t> raw(pixels * (kind == 0 || kind == 3 ? 1 : 2), 0x5A);
  std::vector<std::uint8_t> image(pixels * (kind == 2 ? 6 : 3));
  switch (kind) {
    case 0:
      return OrmidexConvertColor8BppTo24Bpp(c.camera, raw.data(), width, height, image.data(),
                                            code);
    case 1:
      return OrmidexConvertColor16BppTo24Bpp(c.camera, raw.data(), width, height, image.data(),
                                             code);
    case 2:
      return OrmidexConvertColor16BppTo48Bpp(c.camera, raw.data(), width, height, image.data(),
                                             code);
    case 3:
      return OrmidexConvertMono8BppTo24Bpp(c.camera, raw.data(), width, height, image.data());
    default:
      return OrmidexConvertMono16BppTo24Bpp(c.camera, raw.data(), width, height, image.data());
  }
}

OrmidexUInt32 ORMIDEX_CALL OnFrame(OrmidexHandle, void*) { return 0; }

OrmidexStatus ArmTrigger(Caller& c, Input& in) {
  return OrmidexReturnFrameAfterTrigger(c.camera, in.Fraction(), 0, 0.0f, 0, 0.0f, 0.0f, &OnFrame,
                                        0, c.triggered.data(), nullptr, ORMIDEX_BILINEAR);
}

using Call = OrmidexStatus (*)(Caller&, Input&);

constexpr Call kCalls[] = {
    [](Caller& c, Input&) { return OrmidexStartVideoStream(c.camera); },
    &ReadFrame,
    &Convert,
    [](Caller& c, Input&) { return OrmidexStopVideoStream(c.camera); },
    [](Caller& c, Input& in) { return OrmidexPauseVideoStream(c.camera, in.Byte() & 1u); },
    [](Caller& c, Input&) { return OrmidexFlushVideoData(c.camera); },
    &ArmTrigger,
    [](Caller& c, Input&) { return OrmidexStopTriggerMode(c.camera); },
    [](Caller& c, Input& in) {
      return OrmidexReturnStillFrame(c.camera, c.frame.data(), in.Fraction(), 0, 0.0f, 0, 0.0f,
                                     0.0f);
    },
    [](Caller& c, Input& in) {
      return OrmidexSetSubWindow(c.camera, in.Byte() % 6, in.Number(), in.Number(), in.Number(),
                                 in.Number());
    },
    [](Caller& c, Input& in) {
      return OrmidexSetSubWindowSize(c.camera, in.Byte() % 6, in.Number(), in.Number());
    },
    [](Caller& c, Input& in) { return OrmidexSetSubWindowPos(c.camera, in.Number(), in.Number()); },
    [](Caller& c, Input& in) { return OrmidexSetDataTransferSize(c.camera, in.Number()); },
    [](Caller& c, Input& in) { return OrmidexSetVideoMode(c.camera, in.Byte() % 4); },
    [](Caller& c, Input& in) {
      return OrmidexImageFlip(c.camera, static_cast<OrmidexInt32>(in.Byte() & 1u),
                              static_cast<OrmidexInt32>(in.Byte() & 1u));
    },
    [](Caller& c, Input& in) { return OrmidexSetExposure(c.camera, in.Number()); },
    [](Caller& c, Input& in) {
      return OrmidexSetExposureTime(c.camera, in.Fraction(), in.Byte() & 1u);
    },
    [](Caller& c, Input& in) { return OrmidexSetExposureGain(c.camera, in.Fraction()); },
    [](Caller& c, Input& in) { return OrmidexSetImagerClocking(c.camera, in.Number()); },
    [](Caller& c, Input& in) { return OrmidexSetRedGain(c.camera, in.Number()); },
    [](Caller& c, Input& in) { return OrmidexSetMonoGain(c.camera, in.Number()); },
    [](Caller& c, Input& in) { return OrmidexSetGamma(c.camera, in.Fraction()); },
    [](Caller& c, Input& in) { return OrmidexSetSaturation(c.camera, in.Number()); },
    [](Caller& c, Input& in) { return OrmidexSetLightSource(c.camera, in.Number()); },
    [](Caller& c, Input& in) {
      return OrmidexReadMultRegister(c.camera, in.Number(), in.Byte(), c.frame.data());
    },
    [](Caller& c, Input& in) {
      return OrmidexI2cRead(c.camera, static_cast<OrmidexUInt8>(in.Byte()), c.frame.data(),
                            static_cast<OrmidexInt32>(in.Byte() % 16), c.image.data(),
                            static_cast<OrmidexInt32>(in.Byte() % 16));
    },
    [](Caller& c, Input&) {
      return OrmidexSaveFrameAsBitmap(c.camera, c.image.data(), "/dev/null");
    },
    [](Caller& c, Input& in) {
      return OrmidexSaveFrameAsTiff(c.camera, c.frame.data(), "/dev/null", in.Byte() & 1u, 8,
                                    in.Number());
    },
    [](Caller& c, Input& in) {
      return OrmidexAutoExposure(c.camera, in.Byte(), in.Byte() & 1u, in.Number(), in.Number(),
                                 in.Number(), in.Number());
    },
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  setenv("ORMIDEX_SIMULATOR", kCameras, 1);
  static Caller caller;
  Input input(data, size);
  if (OrmidexInitialize("", input.Byte() % kCameraCount, &caller.camera) != ORMIDEX_OK) return 0;
  OrmidexSetTimeout(caller.camera, kTimeoutMilliseconds);
  for (std::size_t i = 0; i < kMostCalls && !input.AtEnd(); ++i) {
    if (kCalls[input.Byte() % std::size(kCalls)](caller, input) > ORMIDEX_CLOCKING_CHANGED) {
      std::abort();
    }
  }
  OrmidexStopTriggerMode(caller.camera);
  OrmidexUninitialize(&caller.camera);
  return 0;
}
