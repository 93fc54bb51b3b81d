#include "simulator/faults.h"

#include "device/driver_protocol.h"

namespace ormidex::simulator {
namespace {

struct CodeName {
  const char* name;
  std::uint32_t code;
};

constexpr CodeName kCodeNames[] = {
    {"any", kAnyCode},
    {"read-registers", device::CAM_IOCTL_READ_REGISTERS},
    {"write-registers", device::CAM_IOCTL_WRITE_REGISTERS},
    {"gpio", device::CAM_IOCTL_GPIO},
    {"set-transfer-size", device::CAM_IOCTL_SET_TRANSFER_SIZE},
    {"get-firmware-version", device::CAM_IOCTL_GET_FIRMWARE_VERSION},
    {"get-imager-chip-id", device::CAM_IOCTL_GET_IMAGER_CHIP_ID},
    {"get-hardware-word", device::CAM_IOCTL_GET_HARDWARE_WORD},
    {"load-lookup-table", device::CAM_IOCTL_LOAD_LOOKUP_TABLE},
    {"set-timeout", device::CAM_IOCTL_SET_TIMEOUT},
    {"get-name-string-1", device::CAM_IOCTL_GET_NAME_STRING_1},
    {"get-name-string-2", device::CAM_IOCTL_GET_NAME_STRING_2},
    {"start-stream", device::CAM_IOCTL_START_STREAM},
    {"read-frame", device::CAM_IOCTL_READ_FRAME},
    {"stop-stream", device::CAM_IOCTL_STOP_STREAM},
    {"pause-stream", device::CAM_IOCTL_PAUSE_STREAM},
    {"resume-stream", device::CAM_IOCTL_RESUME_STREAM},
    {"set-video-mode", device::CAM_IOCTL_SET_VIDEO_MODE},
    {"still-frame", device::CAM_IOCTL_STILL_FRAME},
    {"trigger-mode", device::CAM_IOCTL_TRIGGER_MODE},
    {"get-frame-number", device::CAM_IOCTL_GET_FRAME_NUMBER},
    {"read-command", device::CAM_IOCTL_READ_COMMAND},
    {"write-command", device::CAM_IOCTL_WRITE_COMMAND},
    {"set-flip", device::CAM_IOCTL_SET_FLIP},
    {"flush", device::CAM_IOCTL_FLUSH},
    {"enumerate", device::CAM_IOCTL_ENUMERATE},
    {"command-register", device::CAM_IOCTL_COMMAND_REGISTER},
};

bool ParseCode(const std::string& text, std::uint32_t* code) {
  for (const CodeName& entry : kCodeNames) {
    if (text == entry.name) {
      *code = entry.code;
      return true;
    }
  }
  return ParseNumber(text, code) && *code >= 0x222000 && *code <= 0x2223FC;
}

// How the words behind a fault's name are to be read: c code, v value, n which
// request it strikes. Words behind '?' may be left out.
struct FaultForm {
  const char* name;
  FaultKind kind;
  const char* words;
  std::uint32_t code;  // for the faults of one request only
};

constexpr FaultForm kForms[] = {
    {"fail", FaultKind::kFail, "c?n", kAnyCode},
    {"status", FaultKind::kStatus, "cv?n", kAnyCode},
    {"late", FaultKind::kLate, "v?n", device::CAM_IOCTL_READ_FRAME},
    {"never", FaultKind::kNever, "?n", device::CAM_IOCTL_READ_FRAME},
    {"short", FaultKind::kShort, "cv?n", kAnyCode},
    {"overrun", FaultKind::kOverrun, "?n", device::CAM_IOCTL_READ_COMMAND},
    {"random", FaultKind::kRandom, "v?c", kAnyCode},
    {"unplug", FaultKind::kUnplug, "n?v", kAnyCode},
    {"busy", FaultKind::kBusy, "?v", kAnyCode},
};

std::vector<std::string> Split(const std::string& text) {
  std::vector<std::string> words(1);
  for (const char c : text) {
    if (c == ':') {
      words.emplace_back();
    } else {
      words.back() += c;
    }
  }
  return words;
}

bool ParseWord(char meaning, const std::string& word, Fault* fault) {
  if (meaning == 'c') return ParseCode(word, &fault->code);
  if (meaning == 'v') return ParseNumber(word, &fault->value);
  return ParseNumber(word, &fault->nth) && fault->nth != kEveryTime;
}

bool ParseWords(const FaultForm& form, const std::vector<std::string>& words, Fault* fault,
                std::string* complaint) {
  std::size_t next = 1;
  bool optional = false;
  for (const char* meaning = form.words; *meaning != 0; ++meaning) {
    if (*meaning == '?') {
      optional = true;
    } else if (next == words.size()) {
      if (optional) return true;
      *complaint = std::string("fault '") + form.name + "' needs more after it";
      return false;
    } else if (!ParseWord(*meaning, words[next++], fault)) {
      *complaint = "fault '" + words[0] + "' does not understand '" + words[next - 1] + "'";
      return false;
    }
  }
  if (next == words.size()) return true;
  *complaint = "fault '" + words[0] + "' does not know what to do with '" + words[next] + "'";
  return false;
}

void Inflict(const Fault& fault, Misfortune* result) {
  switch (fault.kind) {
    case FaultKind::kFail:
    case FaultKind::kRandom:
      result->fail = true;
      break;
    case FaultKind::kStatus:
      result->has_status = true;
      result->status = fault.value;
      break;
    case FaultKind::kLate:
      result->late_ms = fault.value;
      break;
    case FaultKind::kNever:
      result->never = true;
      break;
    case FaultKind::kShort:
      result->has_returned = true;
      result->returned = fault.value;
      break;
    case FaultKind::kOverrun:
      result->overrun = true;
      break;
    case FaultKind::kUnplug:
      result->unplug = true;
      result->replug_after = fault.value;
      break;
    case FaultKind::kBusy:
      break;
  }
}

}  // namespace

bool ParseNumber(const std::string& text, std::uint32_t* number) {
  const bool hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
  std::uint64_t value = 0;
  if (text.empty()) return false;
  for (std::size_t i = hex ? 2 : 0; i < text.size(); ++i) {
    const char c = text[i];
    std::uint32_t digit = 99;
    if (c >= '0' && c <= '9') digit = static_cast<std::uint32_t>(c - '0');
    if (c >= 'a' && c <= 'f') digit = static_cast<std::uint32_t>(c - 'a') + 10;
    if (c >= 'A' && c <= 'F') digit = static_cast<std::uint32_t>(c - 'A') + 10;
    if (digit >= (hex ? 16u : 10u)) return false;
    value = value * (hex ? 16 : 10) + digit;
    if (value > 0xFFFFFFFFu) return false;
  }
  *number = static_cast<std::uint32_t>(value);
  return true;
}

bool ParseFault(const std::string& text, Fault* fault, std::string* complaint) {
  const std::vector<std::string> words = Split(text);
  for (const FaultForm& form : kForms) {
    if (words[0] == form.name) {
      fault->kind = form.kind;
      fault->code = form.code;
      return ParseWords(form, words, fault, complaint);
    }
  }
  *complaint = "there is no fault '" + words[0] + "'";
  return false;
}

std::uint32_t FaultScript::NextRandom() {
  random_ ^= random_ << 13;
  random_ ^= random_ >> 17;
  random_ ^= random_ << 5;
  return random_;
}

bool FaultScript::Applies(Entry& entry, std::uint32_t code) {
  if (entry.fault.code != kAnyCode && entry.fault.code != code) return false;
  ++entry.seen;
  if (entry.fault.kind == FaultKind::kRandom) return NextRandom() % 1000 < entry.fault.value;
  return entry.fault.nth == kEveryTime || entry.fault.nth == entry.seen;
}

Misfortune FaultScript::Next(std::uint32_t code) {
  Misfortune result;
  for (Entry& entry : entries_) {
    if (entry.fault.kind != FaultKind::kBusy && Applies(entry, code)) {
      Inflict(entry.fault, &result);
    }
  }
  return result;
}

bool FaultScript::RefusesOpening() {
  bool refused = false;
  for (Entry& entry : entries_) {
    if (entry.fault.kind != FaultKind::kBusy) continue;
    refused = refused || entry.fault.value == 0 || entry.seen < entry.fault.value;
    ++entry.seen;
  }
  return refused;
}

}  // namespace ormidex::simulator
