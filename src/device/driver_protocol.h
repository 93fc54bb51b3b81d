// The contract with the kernel driver: control codes and request records.
//
// Every record is a structure whose layout is pinned by static_assert. Words are
// in the host's order, which is little-endian on every machine the library runs
// on; a word that travels big-endian has the type BigEndian32, so the byte order
// cannot be forgotten. Data of variable length follow the structure directly.
#ifndef ORMIDEX_DEVICE_DRIVER_PROTOCOL_H_
#define ORMIDEX_DEVICE_DRIVER_PROTOCOL_H_

#include <bit>
#include <cstddef>
#include <cstdint>

namespace ormidex::device {

static_assert(std::endian::native == std::endian::little, "records are little-endian");

// All requests but CAM_IOCTL_READ_FRAME are buffered by the system; that one is
// METHOD_IN_DIRECT, so the frame is written straight into the caller's memory.
enum ControlCode : std::uint32_t {
  CAM_IOCTL_READ_REGISTERS = 0x222000,
  CAM_IOCTL_WRITE_REGISTERS = 0x222004,
  CAM_IOCTL_GPIO = 0x22200C,
  CAM_IOCTL_SET_TRANSFER_SIZE = 0x222010,
  CAM_IOCTL_GET_FIRMWARE_VERSION = 0x222018,
  CAM_IOCTL_GET_IMAGER_CHIP_ID = 0x222020,
  CAM_IOCTL_GET_HARDWARE_WORD = 0x222024,
  CAM_IOCTL_LOAD_LOOKUP_TABLE = 0x222028,
  CAM_IOCTL_SET_TIMEOUT = 0x22202C,
  CAM_IOCTL_GET_NAME_STRING_1 = 0x222030,
  CAM_IOCTL_GET_NAME_STRING_2 = 0x222034,
  CAM_IOCTL_START_STREAM = 0x222040,
  CAM_IOCTL_READ_FRAME = 0x222045,
  CAM_IOCTL_STOP_STREAM = 0x222048,
  CAM_IOCTL_PAUSE_STREAM = 0x222054,
  CAM_IOCTL_RESUME_STREAM = 0x222058,
  CAM_IOCTL_SET_VIDEO_MODE = 0x222088,
  CAM_IOCTL_STILL_FRAME = 0x2220A0,
  CAM_IOCTL_TRIGGER_MODE = 0x2220A4,
  CAM_IOCTL_GET_FRAME_NUMBER = 0x2220C0,
  CAM_IOCTL_READ_COMMAND = 0x2220E4,
  CAM_IOCTL_WRITE_COMMAND = 0x2220E8,
  CAM_IOCTL_SET_FLIP = 0x222100,
  CAM_IOCTL_FLUSH = 0x222170,
  CAM_IOCTL_ENUMERATE = 0x2223CC,
  CAM_IOCTL_COMMAND_REGISTER = 0x2223FC,
};

// Driver status words, the first word of most replies.
enum DriverStatusWord : std::uint32_t {
  kDriverSuccess = 0,
  kDriverSuccessAlternate = 1,
  kDriverCondition02 = 0x80000002,
  kDriverNotSupported = 0x80000003,
  kDriverCondition04 = 0x80000004,
  kDriverInvalidArgument = 0x80000005,
  kDriverCondition10 = 0x80000010,
  kDriverCondition11 = 0x80000011,
  kDriverNoDevice = 0x80000012,
};

// A 32-bit word that travels big-endian.
class BigEndian32 {
 public:
  constexpr BigEndian32() = default;
  constexpr explicit BigEndian32(std::uint32_t value) : raw_(Swap(value)) {}
  constexpr std::uint32_t Value() const { return Swap(raw_); }

 private:
  static constexpr std::uint32_t Swap(std::uint32_t v) {
    return (v << 24) | ((v & 0xFF00u) << 8) | ((v >> 8) & 0xFF00u) | (v >> 24);
  }
  std::uint32_t raw_ = 0;
};
static_assert(sizeof(BigEndian32) == 4);

// CAM_IOCTL_READ_REGISTERS, CAM_IOCTL_WRITE_REGISTERS; byte_count data bytes follow.
struct RegisterBlockRecord {
  std::uint32_t status = 0;
  std::uint32_t bus_address = 0;
  std::uint32_t register_address = 0;
  std::uint32_t byte_count = 0;
};
static_assert(sizeof(RegisterBlockRecord) == 16);

// CAM_IOCTL_GPIO
struct GpioRecord {
  std::uint32_t unused = 0;
  BigEndian32 selector;     // always kGpioSelector
  std::uint32_t value = 0;  // written big-endian, read back unswapped
};
inline constexpr std::uint32_t kGpioSelector = 5;
static_assert(sizeof(GpioRecord) == 12 && offsetof(GpioRecord, value) == 8);

// The 12-byte record of three words that most small requests use. The meaning
// of the words depends on the request:
//   SET_TRANSFER_SIZE      word1 bus address, word2 bits per pixel
//   GET_FIRMWARE_VERSION   word1 = 1, word2 result
//   GET_HARDWARE_WORD      word1 = 1, word2 result
//   GET_IMAGER_CHIP_ID     word1 bus address, word2 result
//   SET_TIMEOUT            word2 time-out
//   SET_VIDEO_MODE         word2 video mode
//   SET_FLIP               word2 0 or 1
struct ThreeWordRecord {
  std::uint32_t status = 0;
  std::uint32_t word1 = 0;
  std::uint32_t word2 = 0;
};
static_assert(sizeof(ThreeWordRecord) == 12 && offsetof(ThreeWordRecord, word2) == 8);

// CAM_IOCTL_LOAD_LOOKUP_TABLE in its three forms.
struct LookupTableOffRecord {
  std::uint32_t status = 0;
  std::uint32_t depth = 0;
  std::uint8_t unused[256] = {};
};
struct LookupTable8Record {
  std::uint32_t status = 0;
  std::uint8_t depth = 8;
  std::uint8_t entries[256] = {};
  std::uint8_t unused[3] = {};
};
struct LookupTable10Record {
  std::uint32_t status = 0;
  std::uint8_t depth = 10;
  std::uint8_t unused1 = 0;
  std::uint8_t entries[2048] = {};  // 1024 little-endian 16-bit words
  std::uint8_t unused2[2] = {};
};
static_assert(sizeof(LookupTableOffRecord) == 264);
static_assert(sizeof(LookupTable8Record) == 264 && offsetof(LookupTable8Record, entries) == 5);
static_assert(sizeof(LookupTable10Record) == 2056 && offsetof(LookupTable10Record, entries) == 6);

// CAM_IOCTL_GET_NAME_STRING_1 and _2: a zero-terminated string, output only.
inline constexpr std::uint32_t kNameStringBytes = 260;

// CAM_IOCTL_START_STREAM, input only.
struct StartStreamRecord {
  std::uint32_t unused0 = 0;
  std::uint32_t width = 0;        // pixels
  std::uint32_t height = 0;       // rows
  std::uint32_t frame_bytes = 0;  // width x height x bytes per pixel
  std::uint32_t unused16 = 0;
  std::uint32_t unused20 = 0;
};
static_assert(sizeof(StartStreamRecord) == 24 && offsetof(StartStreamRecord, frame_bytes) == 12);

// CAM_IOCTL_PAUSE_STREAM, CAM_IOCTL_RESUME_STREAM: four bytes without meaning.
inline constexpr std::uint32_t kPauseRecordBytes = 4;

// The timing of a still or triggered frame. Firmware of the M and C variants
// knows the first three words only.
struct CaptureTiming {
  std::uint32_t exposure = 0;
  std::uint32_t first_output_flag = 0;
  std::uint32_t first_output_time = 0;
  BigEndian32 second_output_flag;
  BigEndian32 second_output_time_a;
  BigEndian32 second_output_time_b;
};
static_assert(sizeof(CaptureTiming) == 24);

// CAM_IOCTL_STILL_FRAME
struct StillRecord {
  std::uint32_t status = 0;
  CaptureTiming timing;
};
inline constexpr std::uint32_t kStillRecordShortBytes = 16;
static_assert(sizeof(StillRecord) == 28);

// CAM_IOCTL_TRIGGER_MODE
struct TriggerRecord {
  std::uint32_t status = 0;
  std::uint32_t operation = 0;  // 1 arms trigger mode, 0 leaves it
  CaptureTiming timing;
};
inline constexpr std::uint32_t kTriggerRecordShortBytes = 20;
static_assert(sizeof(TriggerRecord) == 32 && offsetof(TriggerRecord, timing) == 8);

// CAM_IOCTL_GET_FRAME_NUMBER
struct FrameNumberRecord {
  std::uint32_t status = 0;
  std::uint32_t bus_address = 0;
  std::uint8_t frame_counter = 0;
  std::uint8_t unused[3] = {};
  std::uint32_t counters[2] = {};
};
static_assert(sizeof(FrameNumberRecord) == 20 && offsetof(FrameNumberRecord, counters) == 12);

// CAM_IOCTL_READ_COMMAND, CAM_IOCTL_WRITE_COMMAND
inline constexpr std::uint32_t kCommandDataBytes = 96;
struct CommandRecord {
  std::uint32_t status = 0;
  std::uint8_t byte_count = 0;
  std::uint8_t unused[3] = {};
  std::uint8_t data[kCommandDataBytes] = {};
};
static_assert(sizeof(CommandRecord) == 104 && offsetof(CommandRecord, data) == 8);

// CAM_IOCTL_ENUMERATE: a text list of device names in equal-length lines.
inline constexpr std::uint32_t kDeviceListBytes = 1024;

// CAM_IOCTL_COMMAND_REGISTER operation codes.
enum CommandOperation : std::uint32_t {
  kCommandReadRegister = 1,
  kCommandWriteRegister = 2,
  kCommandGpo1 = 6,
  kCommandHardwareVersion = 7,
  kCommandI2c = 8,
  kCommandGpo2 = 9,
  kCommandReadBlock = 17,
  kCommandSetSaturation = 20,
  kCommandGetSaturation = 21,
  kCommandSetLightSource = 22,
  kCommandContinuousAutoExposure = 24,
};

// CAM_IOCTL_COMMAND_REGISTER with two arguments; block data follow.
struct CommandRegisterRecord {
  std::uint32_t status = 0;
  std::uint32_t operation = 0;
  BigEndian32 first;
  BigEndian32 second;
};
static_assert(sizeof(CommandRegisterRecord) == 16);

// The same with one argument (saturation, light source).
struct CommandArgumentRecord {
  std::uint32_t status = 0;
  std::uint32_t operation = 0;
  BigEndian32 argument;
};
static_assert(sizeof(CommandArgumentRecord) == 12);

// The same for the hardware version block: five big-endian words come back.
struct HardwareVersionRecord {
  std::uint32_t status = 0;
  std::uint32_t operation = kCommandHardwareVersion;
  BigEndian32 words[5];
  std::uint32_t unused = 0;
};
static_assert(sizeof(HardwareVersionRecord) == 32 && offsetof(HardwareVersionRecord, words) == 8);

// I2C transactions are byte strings behind the first two words:
//   write       2, w + 1, address, w bytes, 0
//   write-read  3, w + 1, address, w bytes, 1, r + 1, address | 1, r bytes, 0
inline constexpr std::uint32_t kI2cWriteOverhead = 12;
inline constexpr std::uint32_t kI2cReadOverhead = 15;

}  // namespace ormidex::device

#endif  // ORMIDEX_DEVICE_DRIVER_PROTOCOL_H_
