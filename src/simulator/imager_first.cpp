// The first imager generation.
//
// Rows are exposed by a reset that runs ahead of the readout. Its counter ends at
// 2047 with the last row; the exposure register says where in that count the
// reset starts, so a frame of H rows is exposed for E - (2047 - H) row times.
#include <algorithm>

#include "simulator/imager.h"

namespace ormidex::simulator {
namespace {

constexpr std::uint32_t kAddress = 0x60;

enum Register : std::uint8_t {
  kIdentity = 0,
  kReadMode = 1,
  kColumnHigh = 4,
  kRowHigh = 6,
  kWidthCode = 8,
  kHeightCode = 9,
  kExposureHigh = 18,
  kRedGain = 20,
  kGreenGain = 21,
  kBlueGain = 22,
};

constexpr std::uint8_t kUprightBit = 0x08;
constexpr std::uint8_t kMirrorBit = 0x10;
constexpr std::uint8_t kOrientation = kUprightBit | kMirrorBit;

constexpr int kCountEnd = 2047;
constexpr int kBorder = 4;  // dark columns and rows before the picture
// Rows between the last of one frame and the first of the next.
constexpr int kBlankRows = 2;

int FactorOf(std::uint8_t mode) {
  const int code = mode >> 1 & 3;
  return code == 0 ? 1 : code == 3 ? 4 : 2;
}

int RowClocks(int factor) { return factor == 1 ? 1664 : factor == 2 ? 960 : 608; }

// The six-bit amplifiers: unity at code 0, twice at 40, nearly 3.5 times at 63.
double GainOf(std::uint8_t code) {
  const double ratio = (code & 63) / 40.0;
  return 1.0 + ratio * ratio;
}

class FirstGenerationImager : public Imager {
 public:
  FirstGenerationImager(int phase, int answer)
      : phase_(phase), answer_(answer < 0 ? 0x30 : static_cast<std::uint8_t>(answer)) {
    PowerUp();
  }

  std::uint32_t BusAddress() const override { return kAddress; }

  void PowerUp() override {
    std::fill(std::begin(registers_), std::end(registers_), std::uint8_t{0});
    registers_[kIdentity] = answer_;
    registers_[kReadMode] = Wired() ? Strap() : kUprightBit;
    SetWord(kColumnHigh, kBorder);
    SetWord(kRowHigh, kBorder);
    registers_[kWidthCode] = 1280 / 8;
    registers_[kHeightCode] = 1024 / 8;
    SetWord(kExposureHigh, 2046);
    shifted_ = false;
  }

  void Write(std::uint8_t address, std::uint8_t value) override {
    if (address == kIdentity) return;
    if (address == kReadMode && Wired()) {
      value = static_cast<std::uint8_t>((value & ~kOrientation) | Strap());
    }
    registers_[address] = value;
  }

  void ShiftMirroredWindow(bool shift) override { shifted_ = shift; }

  ImagerState Run(double megahertz) const override {
    ImagerState state;
    state.readout = Window();
    const int rows = state.readout.height;
    const int exposed = static_cast<int>(Word(kExposureHigh) & 0x7FF) - (kCountEnd - rows);
    state.row_us = RowClocks(state.readout.factor) / megahertz;
    state.exposure_us = std::max(exposed, 0) * state.row_us;
    state.frame_us = (rows + kBlankRows) * state.row_us;
    state.gain[kRed] = GainOf(registers_[kRedGain]);
    state.gain[kGreen1] = state.gain[kGreen2] = GainOf(registers_[kGreenGain]);
    state.gain[kBlue] = GainOf(registers_[kBlueGain]);
    return state;
  }

  Picture::Setup Sensor() const override {
    Picture::Setup setup;
    setup.scene_column = kBorder;
    setup.scene_row = kBorder;
    setup.red_column = phase_ == 0 ? 0 : 1;
    setup.red_row = phase_ == 2 ? 1 : 0;
    return setup;
  }

  // The opened camera's: 479 rows of 1664 clocks at 16 MHz.
  double NominalExposure() const override { return 479.0 * 1664.0 / 16.0; }

 private:
  // In the heads with another phase than 0 the chip is mounted turned round, and
  // its orientation is wired instead of programmable: the two bits always read
  // as the chip stands, and writing them changes nothing.
  bool Wired() const { return phase_ != 0; }
  std::uint8_t Strap() const { return phase_ == 2 ? kOrientation : kMirrorBit; }

  Readout Window() const {
    Readout readout;
    readout.factor = FactorOf(registers_[kReadMode]);
    const int columns = registers_[kWidthCode] * 8;
    const int rows = registers_[kHeightCode] * 8;
    readout.width = std::min(columns, kArrayColumns) / readout.factor;
    readout.height = std::min(rows, kArrayRows) / readout.factor;
    readout.first_column = static_cast<int>(Word(kColumnHigh) & 0x7FF);
    readout.first_row = static_cast<int>(Word(kRowHigh) & 0x7FF);
    if (!Wired()) Turn(columns, rows, &readout);
    return readout;
  }

  // Upside down the chip begins one row below the window, which keeps the mosaic.
  // Mirrored it keeps the mosaic only where it skips pixels; at full resolution
  // the window must be moved by the driver, or the mosaic moves: by a column, and
  // by a row too while the picture is upright.
  void Turn(int columns, int rows, Readout* readout) const {
    const bool upright = (registers_[kReadMode] & kUprightBit) != 0;
    if (!upright) {
      readout->upside_down = true;
      readout->first_row += rows;
    }
    if ((registers_[kReadMode] & kMirrorBit) == 0) return;
    readout->mirrored = true;
    if (readout->factor != 1) {
      readout->whole_pairs = true;
      readout->first_column += (readout->width - 1) / 2 * 2 * readout->factor;
    } else if (shifted_) {
      readout->first_column += columns;
    } else {
      readout->first_column += columns - 1;
      if (upright) ++readout->first_row;
    }
  }

  const int phase_;
  const std::uint8_t answer_;
  bool shifted_ = false;
};

}  // namespace

std::unique_ptr<Imager> CreateFirstGenerationImager(int phase, int answer) {
  return std::make_unique<FirstGenerationImager>(phase, answer);
}

}  // namespace ormidex::simulator
