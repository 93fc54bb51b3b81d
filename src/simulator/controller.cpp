#include "simulator/controller.h"

#include <algorithm>
#include <cstring>

#include "simulator/statistics.h"

namespace ormidex::simulator {
namespace {

using device::BigEndian32;

// Firmware 3.0 moved most registers; those of the older one are seen by the
// driver in a page of their own.
constexpr std::uint32_t kOlderPage = 0x8800;
constexpr std::uint32_t kLockAddress = 0xFFFF;

enum Fixed : std::uint8_t {
  kClockLetter = 0,
  kModel = 1,
  kCountSelect = 2,
  kOlderTrigger = 3,
  kCountHigh = 6,
  kCountLow = 7,
  kStatistics = 16,
};
constexpr std::uint8_t kSelectClipped = 0x20;
constexpr std::uint32_t kCountUnit = 32;  // pixels

struct Places {
  std::uint8_t trigger, flags, clock, saturation;
};
constexpr Places kOlder = {kOlderTrigger, 4, 5, 6};
constexpr Places kNewer = {10, 9, 12, 14};

constexpr std::uint8_t kFlagExternalOscillator = 0x01;
constexpr std::uint8_t kFlagMonochrome = 0x08;
constexpr std::uint8_t kFlagCmy = 0x10;
constexpr std::uint8_t kModelMonochrome = 0x01;
constexpr std::uint8_t kModelWithoutIfe = 0x04;

std::uint32_t BigWord(const std::uint8_t* bytes) {
  BigEndian32 word;
  std::memcpy(&word, bytes, sizeof word);
  return word.Value();
}

void PutBigWord(std::uint8_t* bytes, std::uint32_t value) {
  const BigEndian32 word(value);
  std::memcpy(bytes, &word, sizeof word);
}

}  // namespace

Controller::Controller(const CameraDescription& description, SerialBus& bus, ControllerHost& host)
    : description_(description), firmware_(description.firmware), bus_(bus), host_(host) {
  PowerUp();
}

void Controller::PowerUp() {
  std::fill(std::begin(registers_), std::end(registers_), std::uint8_t{0});
  const Places& place = Newer() ? kNewer : kOlder;
  registers_[kClockLetter] = description_.clock_letter;
  registers_[kModel] =
      static_cast<std::uint8_t>(kModelWithoutIfe | (description_.colour ? 0 : kModelMonochrome));
  registers_[place.flags] = static_cast<std::uint8_t>(
      (description_.external_oscillator ? kFlagExternalOscillator : 0) |
      (description_.colour ? 0 : kFlagMonochrome) | (description_.cmy_filter ? kFlagCmy : 0));
  lines_[0] = lines_[1] = OutputLine();
  saturation_ = 128;
  light_source_ = 1;
  automatic_exposure_ = false;
}

bool Controller::SmallVariant() const {
  const std::uint32_t letter = firmware_ >> 16 & 0xFF;
  return letter == 'M' || letter == 'C';
}

double Controller::ClockMegahertz() const {
  switch (registers_[Newer() ? kNewer.clock : kOlder.clock]) {
    case 128:
      return 24.0;
    case 129:
      return 12.0;
    case 1:
      return 8.0;
    case 130:
      return 6.0;
    case 2:
      return 4.0;
    default:
      return 16.0;
  }
}

bool Controller::Resolve(std::uint32_t address, std::uint32_t* index) const {
  *index = address & 0xFF;
  return (address & 0xFFFFFF00u) == (Newer() ? 0u : kOlderPage);
}

std::uint8_t Controller::ReadOne(std::uint32_t index) {
  if (description_.generation == 2 && (index == kCountHigh || index == kCountLow)) {
    const SiteSums& sums = host_.LatestSums();
    const bool clipped = (registers_[kCountSelect] & kSelectClipped) != 0;
    const std::uint32_t count = (clipped ? sums.clipped : sums.dark) / kCountUnit;
    return static_cast<std::uint8_t>(index == kCountHigh ? count >> 8 : count);
  }
  return registers_[index];
}

void Controller::WriteOne(std::uint32_t index, std::uint8_t value) {
  const std::uint8_t old = registers_[index];
  host_.BeforeChange();
  registers_[index] = value;
  host_.AfterChange();
  // A rising edge of bit 0 releases the shutter. The newer firmware still
  // listens at the older place.
  const bool trigger = index == kOlderTrigger || (Newer() && index == kNewer.trigger);
  if (trigger && (old & 1) == 0 && (value & 1) != 0) host_.SoftwareTrigger();
}

bool Controller::ReadRegister(std::uint8_t* record, std::uint32_t bytes) {
  std::uint32_t index = 0;
  const std::uint32_t address = BigWord(record + 8);
  if (bytes < 16) return false;
  if (Newer() && address == kLockAddress) {
    PutBigWord(record + 12, lock_value_);
    return true;
  }
  if (!Resolve(address, &index)) return false;
  PutBigWord(record + 12, ReadOne(index));
  return true;
}

bool Controller::WriteRegister(const std::uint8_t* record, std::uint32_t bytes) {
  std::uint32_t index = 0;
  const std::uint32_t address = BigWord(record + 8);
  if (bytes < 16) return false;
  const std::uint8_t value = static_cast<std::uint8_t>(BigWord(record + 12));
  if (Newer() && address == kLockAddress) {
    lock_value_ = value;
    return true;
  }
  if (!Resolve(address, &index)) return false;
  WriteOne(index, value);
  return true;
}

bool Controller::ReadBlock(std::uint8_t* record, std::uint32_t bytes) {
  std::uint32_t index = 0;
  if (bytes < 16 || !Resolve(BigWord(record + 8), &index)) return false;
  const std::uint32_t count = BigWord(record + 12);
  if (count > bytes - 16) return false;
  if (index == kStatistics) return ReadStatistics(record + 16, count);
  for (std::uint32_t i = 0; i < count; ++i) record[16 + i] = ReadOne((index + i) & 0xFF);
  return true;
}

bool Controller::ReadStatistics(std::uint8_t* data, std::uint32_t count) {
  std::uint8_t block[kLongestStatistics] = {};
  std::uint32_t size = 0;
  if (description_.generation == 2) {
    size = EncodeNewerStatistics(host_.LatestSums(), block);
  } else if (Newer()) {
    size = EncodeShortStatistics(host_.LatestSums(), block);
  } else if (firmware_ >= 0x02020000) {
    size = EncodeLongStatistics(host_.LatestSums(), block);
  } else {
    return false;  // this firmware does not sum
  }
  std::memset(data, 0, count);
  std::memcpy(data, block, std::min(count, size));
  return true;
}

bool Controller::DriveLine(int index, const std::uint8_t* record, std::uint32_t bytes) {
  if (bytes < 16 || SmallVariant()) return false;
  lines_[index].level = BigWord(record + 8);
  lines_[index].duration = BigWord(record + 12);
  ++lines_[index].times_set;
  return true;
}

bool Controller::Saturate(std::uint8_t* record, std::uint32_t bytes, bool set) {
  if (bytes < 12 || description_.generation != 2 || firmware_ < 0x03011101) return false;
  if (set) {
    saturation_ = static_cast<std::uint8_t>(BigWord(record + 8));
  } else {
    PutBigWord(record + 8, saturation_);
  }
  return true;
}

bool Controller::SelectLight(const std::uint8_t* record, std::uint32_t bytes) {
  if (bytes < 12 || description_.generation != 2) return false;
  const std::uint32_t source = BigWord(record + 8);
  if (source < 1 || source > 4) return false;
  light_source_ = source;
  return true;
}

bool Controller::ContinuousExposure(const std::uint8_t* record, std::uint32_t bytes) {
  if (bytes < 16 || description_.generation != 2) return false;
  automatic_exposure_ = BigWord(record + 8) != 0;
  return true;
}

bool Controller::Version(std::uint8_t* record, std::uint32_t bytes) const {
  if (bytes < sizeof(device::HardwareVersionRecord) || SmallVariant()) return false;
  PutBigWord(record + 8, description_.colour ? 0 : 1);  // bit 0: monochrome
  PutBigWord(record + 12, description_.serial);
  PutBigWord(record + 16, 0x30333641);  // "036A"
  PutBigWord(record + 20, firmware_);
  PutBigWord(record + 24, registers_[kModel]);
  return true;
}

// The transaction is a string of messages: 2 or 3 of them, each a length that
// counts the address byte, the address and the data, and a closing 0.
bool Controller::Transact(std::uint8_t* record, std::uint32_t bytes) {
  if (bytes < device::kI2cWriteOverhead || (record[8] != 2 && record[8] != 3)) return false;
  const std::uint32_t sent = static_cast<std::uint8_t>(record[9] - 1);
  if (bytes < sent + device::kI2cWriteOverhead || (record[10] & 1) != 0) return false;
  if (record[8] == 2) {
    host_.BeforeChange();
    const bool done = bus_.Send(record[10], record + 11, sent);
    host_.AfterChange();
    return done;
  }
  if (bytes < sent + device::kI2cReadOverhead) return false;
  std::uint8_t* answer = record + 11 + sent;
  const std::uint32_t wanted = static_cast<std::uint8_t>(answer[1] - 1);
  if (answer[0] != 1 || (answer[2] & 1) == 0) return false;
  if (bytes < sent + wanted + device::kI2cReadOverhead) return false;
  host_.BeforeChange();
  const bool sent_all = bus_.Send(record[10], record + 11, sent);
  host_.AfterChange();
  return sent_all && bus_.Receive(answer[2], answer + 3, wanted);
}

bool Controller::Handle(std::uint8_t* record, std::uint32_t bytes) {
  std::uint32_t operation = 0;
  if (bytes < 12) return false;
  std::memcpy(&operation, record + 4, sizeof operation);
  switch (operation) {
    case device::kCommandReadRegister:
      return ReadRegister(record, bytes);
    case device::kCommandWriteRegister:
      return WriteRegister(record, bytes);
    case device::kCommandReadBlock:
      return ReadBlock(record, bytes);
    case device::kCommandGpo1:
      return DriveLine(0, record, bytes);
    case device::kCommandGpo2:
      return DriveLine(1, record, bytes);
    case device::kCommandHardwareVersion:
      return Version(record, bytes);
    case device::kCommandI2c:
      return Transact(record, bytes);
    case device::kCommandSetSaturation:
      return Saturate(record, bytes, true);
    case device::kCommandGetSaturation:
      return Saturate(record, bytes, false);
    case device::kCommandSetLightSource:
      return SelectLight(record, bytes);
    case device::kCommandContinuousAutoExposure:
      return ContinuousExposure(record, bytes);
    default:
      return false;
  }
}

}  // namespace ormidex::simulator
