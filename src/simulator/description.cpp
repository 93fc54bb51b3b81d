#include "simulator/description.h"

#include <cstdio>
#include <cstring>

namespace ormidex::simulator {
namespace {

constexpr std::uint32_t kFirstSerial = 0x00052001;

bool ParseDecimal(const std::string& text, double* number) {
  double value = 0.0;
  double scale = 0.0;  // of the next digit behind the point
  std::size_t digits = 0;
  for (const char c : text) {
    if (c == '.' && scale == 0.0) {
      scale = 0.1;
    } else if (c >= '0' && c <= '9') {
      const double digit = c - '0';
      value = scale == 0.0 ? value * 10.0 + digit : value + digit * scale;
      scale *= 0.1;
      ++digits;
    } else {
      return false;
    }
  }
  *number = value;
  return digits > 0 && digits < 16;
}

bool StartsWith(const std::string& text, const char* prefix) {
  return text.compare(0, std::strlen(prefix), prefix) == 0;
}

bool ParseGeneration(const std::string& value, CameraDescription* camera) {
  if (value != "1" && value != "2") return false;
  camera->generation = value == "1" ? 1 : 2;
  return true;
}

bool ParseImager(const std::string& value, CameraDescription* camera) {
  if (value != "mono" && value != "colour") return false;
  camera->colour = value == "colour";
  return true;
}

bool ParsePhase(const std::string& value, CameraDescription* camera) {
  std::uint32_t phase = 0;
  if (!ParseNumber(value, &phase) || phase > 2) return false;
  camera->phase = static_cast<int>(phase);
  return true;
}

bool ParseFirmware(const std::string& value, CameraDescription* camera) {
  return ParseNumber(value, &camera->firmware);
}

bool ParseSerial(const std::string& value, CameraDescription* camera) {
  return ParseNumber(value, &camera->serial);
}

// The driver's strings have room for 259 characters.
bool ParseName(const std::string& value, std::string* name) {
  *name = value;
  return value.size() < 260;
}

bool ParseTypeName(const std::string& value, CameraDescription* camera) {
  return ParseName(value, &camera->type_name);
}

bool ParseDescriptionText(const std::string& value, CameraDescription* camera) {
  return ParseName(value, &camera->name);
}

bool ParseClockLetter(const std::string& value, CameraDescription* camera) {
  if (value.size() != 1) return false;
  camera->clock_letter = static_cast<std::uint8_t>(value[0]);
  return true;
}

bool ParseOscillator(const std::string& value, CameraDescription* camera) {
  camera->external_oscillator = value == "external";
  return value == "external" || value == "internal";
}

bool ParseFilter(const std::string& value, CameraDescription* camera) {
  camera->cmy_filter = value == "cmy";
  return value == "cmy" || value == "rgb";
}

bool ParseImagerAnswer(const std::string& value, CameraDescription* camera) {
  std::uint32_t byte = 0;
  if (!ParseNumber(value, &byte) || byte > 255) return false;
  camera->imager_answer = static_cast<int>(byte);
  return true;
}

bool ParseScene(const std::string& value, CameraDescription* camera) {
  if (value == "chart") {
    camera->scene = SceneKind::kChart;
  } else if (value == "ramp") {
    camera->scene = SceneKind::kRamp;
  } else if (value == "noise") {
    camera->scene = SceneKind::kNoise;
  } else if (StartsWith(value, "grey:")) {
    camera->scene = SceneKind::kGrey;
    return ParseNumber(value.substr(5), &camera->grey_level) && camera->grey_level <= 255;
  } else if (StartsWith(value, "file:") && value.size() > 5) {
    camera->scene = SceneKind::kFile;
    camera->scene_path = value.substr(5);
  } else {
    return false;
  }
  return true;
}

bool ParseLens(const std::string& value, CameraDescription* camera) {
  const std::size_t cross = value.find('x');
  return cross != std::string::npos && ParseNumber(value.substr(0, cross), &camera->lens_width) &&
         ParseNumber(value.substr(cross + 1), &camera->lens_height) && camera->lens_width >= 16 &&
         camera->lens_width <= 4096 && camera->lens_height >= 16 && camera->lens_height <= 4096;
}

bool ParseLight(const std::string& value, CameraDescription* camera) {
  return ParseDecimal(value, &camera->light) && camera->light <= 1000.0;
}

struct NamedTint {
  const char* name;
  Tint tint;
};
// Band strengths of usual lights relative to the white that the camera is
// balanced for.
constexpr NamedTint kTints[] = {{"neutral", {1.0, 1.0, 1.0}},
                                {"daylight", {0.85, 1.0, 1.15}},
                                {"tungsten", {1.35, 1.0, 0.55}},
                                {"green", {0.7, 1.0, 0.65}}};

bool ParseTint(const std::string& value, CameraDescription* camera) {
  for (const NamedTint& entry : kTints) {
    if (value == entry.name) {
      camera->tint = entry.tint;
      return true;
    }
  }
  const std::size_t first = value.find(':');
  const std::size_t second = value.find(':', first == std::string::npos ? first : first + 1);
  if (second == std::string::npos) return false;
  return ParseDecimal(value.substr(0, first), &camera->tint.red) &&
         ParseDecimal(value.substr(first + 1, second - first - 1), &camera->tint.green) &&
         ParseDecimal(value.substr(second + 1), &camera->tint.blue);
}

bool ParseNoise(const std::string& value, CameraDescription* camera) {
  return ParseDecimal(value, &camera->noise) && camera->noise <= 64.0;
}

bool ParseSeed(const std::string& value, CameraDescription* camera) {
  return ParseNumber(value, &camera->seed);
}

bool ParsePace(const std::string& value, CameraDescription* camera) {
  camera->pace = value == "fast" ? Pace::kFast : Pace::kReal;
  return value == "fast" || value == "real";
}

bool ParseTrigger(const std::string& value, CameraDescription* camera) {
  const bool hardware = StartsWith(value, "hardware");
  camera->trigger = hardware ? TriggerSource::kHardware : TriggerSource::kSoftware;
  if (value == "software") camera->trigger_hertz = 0.0;
  if (value == "software" || value == "hardware") return true;
  const std::string rate = hardware ? "hardware:" : "software:";
  return StartsWith(value, rate.c_str()) &&
         ParseDecimal(value.substr(rate.size()), &camera->trigger_hertz) &&
         camera->trigger_hertz <= 100000.0;
}

bool ParseTimeout(const std::string& value, CameraDescription* camera) {
  return ParseNumber(value, &camera->timeout_ms);
}

bool ParseCommandPiece(const std::string& value, CameraDescription* camera) {
  return ParseNumber(value, &camera->command_piece) && camera->command_piece >= 1 &&
         camera->command_piece <= 96;
}

bool ParseCommandDelay(const std::string& value, CameraDescription* camera) {
  return ParseNumber(value, &camera->command_delay_ms);
}

bool ParseCommandRefuse(const std::string& value, CameraDescription* camera) {
  if (value == "always") {
    camera->command_refusals = kRefuseAlways;
    return true;
  }
  return ParseNumber(value, &camera->command_refusals);
}

struct Key {
  const char* name;
  bool (*parse)(const std::string& value, CameraDescription* camera);
  const char* expected;
};

constexpr Key kKeys[] = {
    {"generation", ParseGeneration, "1 or 2"},
    {"imager", ParseImager, "mono or colour"},
    {"phase", ParsePhase, "0, 1 or 2"},
    {"firmware", ParseFirmware, "a number such as 0x03012305"},
    {"serial", ParseSerial, "a number such as 0x00052001"},
    {"type-name", ParseTypeName, "at most 259 characters"},
    {"name", ParseDescriptionText, "at most 259 characters"},
    {"clock-letter", ParseClockLetter, "one character"},
    {"oscillator", ParseOscillator, "internal or external"},
    {"filter", ParseFilter, "rgb or cmy"},
    {"imager-answer", ParseImagerAnswer, "a number up to 255"},
    {"scene", ParseScene, "chart, grey:LEVEL (0 to 255), ramp, noise or file:PATH"},
    {"lens", ParseLens, "WIDTHxHEIGHT, each 16 to 4096"},
    {"light", ParseLight, "a number from 0 to 1000"},
    {"tint", ParseTint, "neutral, daylight, tungsten, green or RED:GREEN:BLUE"},
    {"noise", ParseNoise, "a number from 0 to 64"},
    {"seed", ParseSeed, "a number"},
    {"pace", ParsePace, "real or fast"},
    {"trigger", ParseTrigger, "hardware, hardware:HERTZ, software or software:HERTZ"},
    {"timeout", ParseTimeout, "a number of milliseconds"},
    {"command-piece", ParseCommandPiece, "a number from 1 to 96"},
    {"command-delay", ParseCommandDelay, "a number of milliseconds"},
    {"command-refuse", ParseCommandRefuse, "a number or always"},
};

// Reads the description from front to back, so that a mistake can be placed.
class Parser {
 public:
  Parser(const char* text, std::vector<CameraDescription>* cameras, std::string* error)
      : text_(text), cameras_(cameras), error_(error) {}

  bool Parse() {
    if (text_.empty()) return true;
    for (;;) {
      if (!ParseCamera()) return false;
      if (cameras_->size() > kMaxCameras) return Complain("there are more than 64 cameras");
      if (position_ == text_.size()) return true;
      ++position_;  // the ';'
      ++item_;
    }
  }

 private:
  bool ParseCamera() {
    start_ = position_;
    const std::size_t end = text_.find(';', position_);
    const std::string item = text_.substr(position_, end - position_);
    if (item.find('=') == std::string::npos) return ParseCount(item);
    CameraDescription camera = Default();
    for (;;) {
      if (!ParseKey(&camera)) return false;
      if (position_ == text_.size() || text_[position_] == ';') break;
      ++position_;  // the ','
    }
    cameras_->push_back(camera);
    return true;
  }

  bool ParseCount(const std::string& item) {
    std::uint32_t count = 0;
    if (!ParseNumber(item, &count)) {
      return Complain("expected key=value or a number of cameras, found '" + item + "'");
    }
    if (count > kMaxCameras) return Complain("there are more than 64 cameras");
    for (std::uint32_t i = 0; i < count; ++i) cameras_->push_back(Default());
    position_ += item.size();
    return true;
  }

  bool ParseKey(CameraDescription* camera) {
    start_ = position_;
    const std::size_t end = text_.find_first_of(",;", position_);
    const std::string pair = text_.substr(position_, end - position_);
    position_ += pair.size();
    const std::size_t equals = pair.find('=');
    if (equals == std::string::npos) return Complain("expected key=value, found '" + pair + "'");
    return Assign(pair.substr(0, equals), pair.substr(equals + 1), camera);
  }

  bool Assign(const std::string& name, const std::string& value, CameraDescription* camera) {
    if (name == "fault") {
      Fault fault;
      std::string complaint;
      if (!ParseFault(value, &fault, &complaint)) return Complain(complaint);
      camera->faults.push_back(fault);
      return true;
    }
    for (const Key& key : kKeys) {
      if (name != key.name) continue;
      if (key.parse(value, camera)) return true;
      return Complain(name + " is " + key.expected + ", not '" + value + "'");
    }
    return Complain("unknown key '" + name + "'");
  }

  CameraDescription Default() const {
    CameraDescription camera;
    camera.serial = kFirstSerial + static_cast<std::uint32_t>(cameras_->size());
    return camera;
  }

  bool Complain(const std::string& what) {
    char place[64];
    std::snprintf(place, sizeof place, "camera entry %u, character %u: ", item_,
                  static_cast<unsigned>(start_ + 1));
    *error_ = place + what;
    cameras_->clear();
    return false;
  }

  const std::string text_;
  std::vector<CameraDescription>* cameras_;
  std::string* error_;
  std::size_t position_ = 0;
  std::size_t start_ = 0;
  unsigned item_ = 1;
};

}  // namespace

bool ParseDescription(const char* text, std::vector<CameraDescription>* cameras,
                      std::string* error) {
  cameras->clear();
  error->clear();
  return Parser(text, cameras, error).Parse();
}

}  // namespace ormidex::simulator
