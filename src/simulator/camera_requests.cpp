// The driver's requests, each answered in the record that came with it.
#include <algorithm>
#include <cstring>

#include "simulator/camera.h"

namespace ormidex::simulator {

using device::BigEndian32;

// One request, after the driver's own checks. All records but a frame are
// buffered: what came in stands in the reply wherever nothing else is put.
struct SimulatedCamera::Call {
  std::uint32_t code;
  std::uint8_t* record;  // in and out at once
  std::uint32_t bytes;   // of the record, the smaller of both lengths
  const std::uint8_t* in;
  std::uint32_t in_bytes;
  std::uint8_t* out;
  std::uint32_t out_bytes;
  std::uint32_t* returned;
  Misfortune misfortune;
};

namespace {

// Reads the record, lets `work` change it, and puts it back.
template <typename Record, typename Call, typename Work>
bool Answer(const Call& call, Work work) {
  if (call.bytes < sizeof(Record)) return false;
  Record record;
  std::memcpy(&record, call.record, sizeof record);
  work(record);
  std::memcpy(call.record, &record, sizeof record);
  *call.returned = sizeof record;
  return true;
}

std::uint32_t StatusOf(SerialBus::Answer answer) {
  return answer == SerialBus::Answer::kBadRegister ? device::kDriverInvalidArgument
                                                   : device::kDriverSuccess;
}

// Requests that change the camera, and so must not act when they are answered
// with an error.
bool Changes(std::uint32_t code) {
  switch (code) {
    case device::CAM_IOCTL_WRITE_REGISTERS:
    case device::CAM_IOCTL_SET_TRANSFER_SIZE:
    case device::CAM_IOCTL_LOAD_LOOKUP_TABLE:
    case device::CAM_IOCTL_SET_TIMEOUT:
    case device::CAM_IOCTL_SET_VIDEO_MODE:
    case device::CAM_IOCTL_SET_FLIP:
    case device::CAM_IOCTL_STILL_FRAME:
    case device::CAM_IOCTL_TRIGGER_MODE:
    case device::CAM_IOCTL_WRITE_COMMAND:
      return true;
    default:
      return false;
  }
}

bool HasStatusWord(std::uint32_t code) {
  switch (code) {
    case device::CAM_IOCTL_READ_FRAME:
    case device::CAM_IOCTL_GET_NAME_STRING_1:
    case device::CAM_IOCTL_GET_NAME_STRING_2:
    case device::CAM_IOCTL_START_STREAM:
    case device::CAM_IOCTL_STOP_STREAM:
    case device::CAM_IOCTL_PAUSE_STREAM:
    case device::CAM_IOCTL_RESUME_STREAM:
    case device::CAM_IOCTL_FLUSH:
    case device::CAM_IOCTL_ENUMERATE:
      return false;
    default:
      return true;
  }
}

}  // namespace

bool SimulatedCamera::Control(std::uint32_t plug, const device::DriverRequest& request,
                              std::uint32_t* returned) {
  *returned = 0;
  platform::ScopedLock hold(lock_);
  TrafficCount& count = traffic_[request.code >> 2 & 0xFF];
  ++count.requests;
  Call call = {};
  call.code = request.code;
  call.in = static_cast<const std::uint8_t*>(request.in);
  call.in_bytes = call.in != nullptr ? request.in_bytes : 0;
  call.out = static_cast<std::uint8_t*>(request.out);
  call.out_bytes = call.out != nullptr ? request.out_bytes : 0;
  call.record = call.out;
  call.bytes = std::min(call.in_bytes, call.out_bytes);
  call.returned = returned;
  const bool done =
      Tampered(request.code, &call.misfortune) && plugged_ && plug == plug_ && Perform(call);
  if (!done) {
    *returned = 0;
    ++count.failed;
  }
  return done;
}

// Lets the scripted faults have their way. False: the request fails at once.
bool SimulatedCamera::Tampered(std::uint32_t code, Misfortune* misfortune) {
  if (!plugged_ && replug_after_ != 0 && --replug_after_ == 0) {
    PowerUp();
    plugged_ = true;
    ++plug_;
  }
  if (faults_.Empty()) return true;
  *misfortune = faults_.Next(code);
  if (misfortune->unplug) {
    PullOut();
    replug_after_ = misfortune->replug_after;
  }
  return !misfortune->fail;
}

bool SimulatedCamera::Perform(const Call& call) {
  if (call.code != device::CAM_IOCTL_READ_FRAME && call.record != call.in && call.bytes != 0) {
    std::memmove(call.record, call.in, call.bytes);
  }
  const Misfortune& misfortune = call.misfortune;
  const bool answers = misfortune.has_status && HasStatusWord(call.code) && call.bytes >= 4;
  const bool refuses = answers && misfortune.status > device::kDriverSuccessAlternate;
  if (refuses && Changes(call.code)) {
    *call.returned = call.bytes;
  } else if (!Dispatch(call)) {
    return false;
  }
  if (answers) std::memcpy(call.record, &misfortune.status, sizeof misfortune.status);
  if (misfortune.has_returned) *call.returned = std::min(*call.returned, misfortune.returned);
  return true;
}

bool SimulatedCamera::Dispatch(const Call& call) {
  switch (call.code) {
    case device::CAM_IOCTL_READ_REGISTERS:
      return ReadRegisters(call);
    case device::CAM_IOCTL_WRITE_REGISTERS:
      return WriteRegisters(call);
    case device::CAM_IOCTL_COMMAND_REGISTER:
      return CommandRegisterRequest(call);
    case device::CAM_IOCTL_READ_FRAME:
      return ReadFrame(call);
    case device::CAM_IOCTL_FLUSH:
      return Flush();
    case device::CAM_IOCTL_GPIO:
      return Gpio(call);
    case device::CAM_IOCTL_SET_TRANSFER_SIZE:
      return SetTransferSize(call);
    case device::CAM_IOCTL_GET_FIRMWARE_VERSION:
    case device::CAM_IOCTL_GET_IMAGER_CHIP_ID:
    case device::CAM_IOCTL_GET_HARDWARE_WORD:
      return IdentityWord(call);
    case device::CAM_IOCTL_LOAD_LOOKUP_TABLE:
      return LoadLookupTable(call);
    case device::CAM_IOCTL_SET_TIMEOUT:
      return SetTimeout(call);
    case device::CAM_IOCTL_GET_NAME_STRING_1:
      return NameString(call, description_.name);
    case device::CAM_IOCTL_GET_NAME_STRING_2:
      return NameString(call, description_.type_name);
    case device::CAM_IOCTL_START_STREAM:
      return StartStream(call);
    case device::CAM_IOCTL_STOP_STREAM:
      return StopStream();
    case device::CAM_IOCTL_PAUSE_STREAM:
      return PauseStream(true);
    case device::CAM_IOCTL_RESUME_STREAM:
      return PauseStream(false);
    case device::CAM_IOCTL_SET_VIDEO_MODE:
      return SetVideoMode(call);
    case device::CAM_IOCTL_STILL_FRAME:
      return StillFrame(call);
    case device::CAM_IOCTL_TRIGGER_MODE:
      return TriggerMode(call);
    case device::CAM_IOCTL_GET_FRAME_NUMBER:
      return FrameNumber(call);
    case device::CAM_IOCTL_READ_COMMAND:
      return ReadCommand(call);
    case device::CAM_IOCTL_WRITE_COMMAND:
      return WriteCommand(call);
    case device::CAM_IOCTL_SET_FLIP:
      return SetFlip(call);
    default:
      return false;
  }
}

// --- Registers and settings ---

bool SimulatedCamera::ReadRegisters(const Call& call) {
  device::RegisterBlockRecord record;
  if (call.bytes < sizeof record) return false;
  std::memcpy(&record, call.record, sizeof record);
  if (record.byte_count > call.bytes - sizeof record) return false;
  const SerialBus::Answer answer = bus_.Read(record.bus_address, record.register_address,
                                             call.record + sizeof record, record.byte_count);
  if (answer == SerialBus::Answer::kNoDevice) return false;
  record.status = StatusOf(answer);
  std::memcpy(call.record, &record, sizeof record);
  *call.returned = static_cast<std::uint32_t>(sizeof record) + record.byte_count;
  return true;
}

bool SimulatedCamera::WriteRegisters(const Call& call) {
  device::RegisterBlockRecord record;
  if (call.bytes < sizeof record) return false;
  std::memcpy(&record, call.record, sizeof record);
  if (record.byte_count > call.bytes - sizeof record) return false;
  CatchUp();
  const SerialBus::Answer answer = bus_.Write(record.bus_address, record.register_address,
                                              call.record + sizeof record, record.byte_count);
  exposure_ready_ = false;
  if (answer == SerialBus::Answer::kNoDevice) return false;
  record.status = StatusOf(answer);
  std::memcpy(call.record, &record, sizeof record);
  *call.returned = static_cast<std::uint32_t>(sizeof record) + record.byte_count;
  return true;
}

bool SimulatedCamera::CommandRegisterRequest(const Call& call) {
  if (!controller_.Handle(call.record, call.bytes)) return false;
  std::memset(call.record, 0, sizeof(std::uint32_t));
  *call.returned = call.bytes;
  return true;
}

// The word is the state of the port. Reading is writing 0, which therefore leaves
// the port as it is.
bool SimulatedCamera::Gpio(const Call& call) {
  if (call.bytes < sizeof(device::GpioRecord)) return false;
  return Answer<device::GpioRecord>(call, [this](device::GpioRecord& record) {
    const std::uint32_t written = std::bit_cast<BigEndian32>(record.value).Value();
    if (record.selector.Value() == device::kGpioSelector && written != 0) gpio_ = written;
    record.value = gpio_;
  });
}

bool SimulatedCamera::IdentityWord(const Call& call) {
  return Answer<device::ThreeWordRecord>(call, [this, &call](device::ThreeWordRecord& record) {
    record.status = device::kDriverSuccess;
    if (call.code == device::CAM_IOCTL_GET_FIRMWARE_VERSION) {
      record.word2 = description_.firmware;
    } else if (call.code == device::CAM_IOCTL_GET_HARDWARE_WORD) {
      record.word2 = description_.serial;
    } else if (record.word1 == imager_->BusAddress()) {
      record.word2 = description_.generation == 1 ? 0x1030 : 0x2050;
    } else {
      record.status = device::kDriverInvalidArgument;
    }
  });
}

bool SimulatedCamera::SetTransferSize(const Call& call) {
  return Answer<device::ThreeWordRecord>(call, [this](device::ThreeWordRecord& record) {
    record.status = device::kDriverInvalidArgument;
    if (record.word2 != 8 && record.word2 != 16) return;
    CatchUp();
    bytes_per_pixel_ = record.word2 == 16 ? 2 : 1;
    exposure_ready_ = false;
    record.status = device::kDriverSuccess;
  });
}

bool SimulatedCamera::LoadLookupTable(const Call& call) {
  if (call.bytes < sizeof(device::LookupTable8Record)) return false;
  const std::uint8_t depth = call.record[4];
  std::uint32_t status = device::kDriverInvalidArgument;
  std::uint16_t* table = tables_[(table_version_ + 1) % kTables];
  CatchUp();
  if (depth == 0) {
    table_on_ = false;
    status = device::kDriverSuccess;
  } else if (depth == 8) {
    const std::uint8_t* entries = call.record + offsetof(device::LookupTable8Record, entries);
    for (int level = 0; level < kAdcLevels; ++level) {
      table[level] = static_cast<std::uint16_t>(entries[level >> 2] << 8);
    }
    status = device::kDriverSuccess;
  } else if (depth == 10 && call.bytes >= sizeof(device::LookupTable10Record)) {
    std::memcpy(table, call.record + offsetof(device::LookupTable10Record, entries),
                sizeof tables_[0]);
    status = device::kDriverSuccess;
  }
  if (depth != 0 && status == device::kDriverSuccess) {
    ++table_version_;
    table_on_ = true;
  }
  exposure_ready_ = false;
  std::memcpy(call.record, &status, sizeof status);
  *call.returned = call.bytes;
  return true;
}

bool SimulatedCamera::SetTimeout(const Call& call) {
  return Answer<device::ThreeWordRecord>(call, [this](device::ThreeWordRecord& record) {
    timeout_ms_ = record.word2;
    record.status = device::kDriverSuccess;
  });
}

bool SimulatedCamera::NameString(const Call& call, const std::string& name) {
  if (call.out_bytes < name.size() + 1) return false;
  std::memset(call.out, 0, call.out_bytes);
  std::memcpy(call.out, name.c_str(), name.size());
  *call.returned = std::min(call.out_bytes, device::kNameStringBytes);
  return true;
}

bool SimulatedCamera::SetFlip(const Call& call) {
  return Answer<device::ThreeWordRecord>(call, [this](device::ThreeWordRecord& record) {
    CatchUp();
    imager_->ShiftMirroredWindow(record.word2 != 0);
    exposure_ready_ = false;
    record.status = device::kDriverSuccess;
  });
}

// --- The stream ---

bool SimulatedCamera::StartStream(const Call& call) {
  if (call.in_bytes < sizeof(device::StartStreamRecord)) return false;
  CatchUp();
  stream_.Start(clock_.Now());
  WakeReaders();
  return true;
}

bool SimulatedCamera::StopStream() {
  CatchUp();
  stream_.Stop();
  ++read_round_;
  WakeReaders();
  return true;
}

bool SimulatedCamera::PauseStream(bool pause) {
  CatchUp();
  stream_.Pause(pause, clock_.Now());
  WakeReaders();
  return true;
}

bool SimulatedCamera::Flush() {
  CatchUp();
  stream_.Flush();
  return true;
}

bool SimulatedCamera::SetVideoMode(const Call& call) {
  constexpr std::uint32_t kLastMode = 7;
  return Answer<device::ThreeWordRecord>(call, [this](device::ThreeWordRecord& record) {
    record.status = device::kDriverInvalidArgument;
    if (record.word2 > kLastMode) return;
    CatchUp();
    video_mode_ = record.word2;
    stream_.SetVideoMode(video_mode_, clock_.Now());
    WakeReaders();
    record.status = device::kDriverSuccess;
  });
}

// Newer firmware counts in microseconds, older in milliseconds.
double SimulatedCamera::CaptureMicroseconds(std::uint32_t exposure) const {
  return description_.firmware >= 0x03000000 ? exposure : exposure * 1000.0;
}

bool SimulatedCamera::StillFrame(const Call& call) {
  if (call.bytes < device::kStillRecordShortBytes || !stream_.Running()) return false;
  std::uint32_t words[2];
  std::memcpy(words, call.record, sizeof words);
  CatchUp();
  stream_.Still(clock_.Now(), CurrentExposure(), CaptureMicroseconds(words[1]));
  WakeReaders();
  std::memset(call.record, 0, sizeof words[0]);
  *call.returned = call.bytes;
  return true;
}

bool SimulatedCamera::TriggerMode(const Call& call) {
  if (call.bytes < device::kTriggerRecordShortBytes) return false;
  std::uint32_t words[3];
  std::memcpy(words, call.record, sizeof words);
  CatchUp();
  if (words[1] == 1) {
    stream_.Arm(clock_.Now(), CaptureMicroseconds(words[2]), description_.trigger_hertz,
                description_.trigger == TriggerSource::kSoftware);
  } else {
    stream_.Disarm(clock_.Now());
  }
  WakeReaders();
  std::memset(call.record, 0, sizeof words[0]);
  *call.returned = call.bytes;
  return true;
}

// The byte and the first word count exposed frames, the second word those that
// the host has taken.
bool SimulatedCamera::FrameNumber(const Call& call) {
  return Answer<device::FrameNumberRecord>(call, [this](device::FrameNumberRecord& record) {
    CatchUp();
    record.status = device::kDriverSuccess;
    record.frame_counter = static_cast<std::uint8_t>(stream_.NextNumber());
    record.counters[0] = stream_.NextNumber();
    record.counters[1] = frames_taken_;
  });
}

bool SimulatedCamera::ReadFrame(const Call& call) {
  ExposedFrame frame;
  if (!stream_.Running() || !AwaitFrame(call.misfortune, &frame)) return false;
  const std::uint8_t* samples = picture_.Expose(frame.settings, frame.number);
  if (samples == nullptr) return false;
  *call.returned = std::min(call.out_bytes, frame.settings.Bytes());
  if (*call.returned != 0) std::memcpy(call.out, samples, *call.returned);
  ++frames_taken_;
  bytes_delivered_ += *call.returned;
  if (controller_.AutomaticExposure()) RunAutomaticExposure(frame);
  return true;
}

// --- The command channel ---

bool SimulatedCamera::ReadCommand(const Call& call) {
  if (description_.firmware < 0x03000000) return false;
  clock_.Polled();
  return Answer<device::CommandRecord>(call, [this, &call](device::CommandRecord& record) {
    const std::uint32_t asked = record.byte_count;
    record.status = device::kDriverInvalidArgument;
    record.byte_count = 0;
    if (asked > device::kCommandDataBytes) return;
    const std::uint32_t given = commands_.Read(clock_.Now(), record.data, asked);
    record.status = device::kDriverSuccess;
    record.byte_count = static_cast<std::uint8_t>(call.misfortune.overrun ? asked + 1 : given);
  });
}

bool SimulatedCamera::WriteCommand(const Call& call) {
  if (description_.firmware < 0x03000000) return false;
  clock_.Polled();
  return Answer<device::CommandRecord>(call, [this](device::CommandRecord& record) {
    const std::uint32_t count = record.byte_count;
    record.status = device::kDriverInvalidArgument;
    if (count > device::kCommandDataBytes) return;
    record.status = commands_.Write(clock_.Now(), record.data, count) ? device::kDriverSuccess
                                                                      : device::kDriverCondition10;
  });
}

}  // namespace ormidex::simulator
