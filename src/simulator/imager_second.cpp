// The second imager generation.
//
// It counts rows: a frame lasts for the frame length, and is exposed for the
// number of rows last completed by a change of the update toggle.
#include <algorithm>

#include "simulator/imager.h"

namespace ormidex::simulator {
namespace {

constexpr std::uint32_t kAddress = 0x66;

enum Register : std::uint8_t {
  kGreen1Gain = 0,
  kRedGain = 1,
  kBlueGain = 2,
  kGreen2Gain = 3,
  kIdentity = 15,
  kExposureGain = 16,
  kGainMode = 34,
  kDecimation = 65,
  kRowHigh = 69,
  kHeightHigh = 71,
  kColumnHigh = 73,
  kWidthHigh = 75,
  kExposureHigh = 78,
  kExposureLow = 79,
  kFrameLengthHigh = 80,
  kRowLengthHigh = 82,
  kOrientation = 87,
  kBlanking1 = 95,
  kBlanking2 = 96,
};

constexpr std::uint8_t kUpdateToggle = 0x40;
constexpr std::uint8_t kManualGain = 2;
constexpr std::uint32_t kHighSixBits = 0x3FFF;
constexpr int kRowOverhead = 19;  // clocks of every row beyond its programmed parts
constexpr std::uint8_t kUnityGain = 5;
constexpr std::uint8_t kUnityColourGain = 14;

// The common amplifier: 6 bits, steps of 0.11119 from 0.483.
double ExposureGainOf(std::uint8_t code) { return 0.483 + (code & 63) * 0.11119; }

// The amplifiers of the four sites: fine steps up to code 31, double steps above.
double ColourGainOf(std::uint8_t code) {
  const int c = code & 63;
  return c < 32 ? 0.695 + c * 0.02175 : 1.3475 + (c - 31) * 0.0435;
}

class SecondGenerationImager : public Imager {
 public:
  explicit SecondGenerationImager(int answer)
      : answer_(answer < 0 ? 0x50 : static_cast<std::uint8_t>(answer)) {
    PowerUp();
  }

  std::uint32_t BusAddress() const override { return kAddress; }

  void PowerUp() override {
    std::fill(std::begin(registers_), std::end(registers_), std::uint8_t{0});
    registers_[kIdentity] = answer_;
    for (int i = kGreen1Gain; i <= kGreen2Gain; ++i) registers_[i] = kUnityColourGain;
    registers_[kGainMode] = kManualGain;
    registers_[kExposureGain] = kUnityGain;
    SetWord(kRowHigh, 16);
    SetWord(kColumnHigh, 9);
    SetWord(kHeightHigh, 1023);
    SetWord(kWidthHigh, 1279);
    SetWord(kRowLengthHigh, 1290);
    SetWord(kFrameLengthHigh, 1025);
    SetWord(kExposureHigh, 300);
    registers_[kBlanking1] = 8;
    registers_[kBlanking2] = 16;
    exposed_rows_ = 300;
  }

  void Write(std::uint8_t address, std::uint8_t value) override {
    if (address == kIdentity) return;
    const std::uint8_t old = registers_[address];
    registers_[address] = value;
    // The two exposure bytes take effect together, when the toggle changes.
    if (address == kExposureHigh && ((old ^ value) & kUpdateToggle) != 0) {
      exposed_rows_ = static_cast<int>(Word(kExposureHigh) & kHighSixBits);
    }
  }

  ImagerState Run(double megahertz) const override {
    ImagerState state;
    state.readout = Window();
    const int length = static_cast<int>(Word(kRowLengthHigh) & kHighSixBits);
    const int clocks = std::max(length, state.readout.width) + registers_[kBlanking1] +
                       registers_[kBlanking2] + kRowOverhead;
    const int frame_length = static_cast<int>(Word(kFrameLengthHigh));
    state.row_us = clocks / megahertz;
    state.exposure_us = exposed_rows_ * state.row_us;
    state.frame_us =
        std::max({frame_length, exposed_rows_, state.readout.height + 1}) * state.row_us;
    const double common = CommonGain() / ColourGainOf(kUnityColourGain);
    state.gain[kRed] = common * ColourGainOf(registers_[kRedGain]);
    state.gain[kGreen1] = common * ColourGainOf(registers_[kGreen1Gain]);
    state.gain[kGreen2] = common * ColourGainOf(registers_[kGreen2Gain]);
    state.gain[kBlue] = common * ColourGainOf(registers_[kBlueGain]);
    return state;
  }

  Picture::Setup Sensor() const override {
    Picture::Setup setup;
    setup.scene_column = 9;
    setup.scene_row = 16;
    setup.red_column = 1;
    setup.red_row = 0;
    return setup;
  }

  double NominalExposure() const override { return 25100.0; }

  void ScaleExposure(double factor) override {
    const double rows = std::clamp(exposed_rows_ * factor, 1.0, 16383.0);
    exposed_rows_ = static_cast<int>(rows + 0.5);
    const std::uint32_t toggle = registers_[kExposureHigh] & kUpdateToggle;
    SetWord(kExposureHigh, static_cast<std::uint32_t>(exposed_rows_) | toggle << 8);
  }

 private:
  // Out of manual mode the chip holds its amplifier at the power-up gain.
  double CommonGain() const {
    const bool manual = (registers_[kGainMode] & 3) == kManualGain;
    return ExposureGainOf(manual ? registers_[kExposureGain] : kUnityGain) /
           ExposureGainOf(kUnityGain);
  }

  Readout Window() const {
    Readout readout;
    const int code = registers_[kDecimation] & 3;
    readout.factor = code == 0 ? 1 : code == 1 ? 2 : 4;
    const int columns = static_cast<int>(Word(kWidthHigh) & kHighSixBits) + 1;
    const int rows = static_cast<int>(Word(kHeightHigh) & kHighSixBits) + 1;
    readout.width = std::min(columns, kArrayColumns) / readout.factor;
    readout.height = std::min(rows, kArrayRows) / readout.factor;
    readout.first_column = static_cast<int>(Word(kColumnHigh) & kHighSixBits);
    readout.first_row = static_cast<int>(Word(kRowHigh) & kHighSixBits);
    // Mirrored, reading begins at the window's right end. Upside down the chip
    // begins one row below the window, which keeps the mosaic.
    readout.mirrored = (registers_[kOrientation] & 1) != 0;
    readout.upside_down = (registers_[kOrientation] & 2) != 0;
    if (readout.mirrored) readout.first_column += columns - 1;
    if (readout.upside_down) readout.first_row += rows;
    return readout;
  }

  const std::uint8_t answer_;
  int exposed_rows_ = 0;
};

}  // namespace

std::unique_ptr<Imager> CreateSecondGenerationImager(int answer) {
  return std::make_unique<SecondGenerationImager>(answer);
}

}  // namespace ormidex::simulator
