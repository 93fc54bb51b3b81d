// Registers, I2C and GPIO, for those who know their camera.
#include <cstdio>
#include <memory>

#include "camera.h"
#include "commands.h"
#include "exit_code.h"

namespace ormidex_tool {

namespace {

using Bytes = std::vector<OrmidexUInt8>;

struct RegisterOptions {
  CameraOptions camera;
  std::string address;
  std::string value;
  std::vector<std::string> values;
  OrmidexUInt32 count = 1;
};

OrmidexUInt32 Number(const std::string& text, OrmidexUInt32 most) {
  char* end = nullptr;
  const unsigned long long value = std::strtoull(text.c_str(), &end, 0);
  if (text.empty() || text[0] == '-' || *end != '\0' || value > most) {
    FailUsage("'" + text + "' is no number from 0 to " + std::to_string(most));
  }
  return static_cast<OrmidexUInt32>(value);
}

Bytes ToBytes(const std::vector<std::string>& texts) {
  Bytes bytes;
  for (const std::string& text : texts) {
    bytes.push_back(static_cast<OrmidexUInt8>(Number(text, 255)));
  }
  return bytes;
}

void Print(const Bytes& bytes) { fmt::print("0x{:02X}\n", fmt::join(bytes, " 0x")); }

constexpr OrmidexUInt32 kAnyAddress = 0xFFFFFFFFu;

void RunRead(const RegisterOptions& options) {
  const OrmidexUInt32 address = Number(options.address, kAnyAddress);
  const Camera camera = options.camera.Open();
  Bytes bytes(options.count);
  Check(options.count == 1
            ? OrmidexReadRegister(camera.handle(), address, bytes.data())
            : OrmidexReadMultRegister(camera.handle(), address, options.count, bytes.data()),
        "reading the register");
  Print(bytes);
}

void RunWrite(const RegisterOptions& options) {
  const OrmidexUInt32 address = Number(options.address, kAnyAddress);
  const Bytes bytes = ToBytes(options.values);
  const Camera camera = options.camera.Open();
  Check(bytes.size() == 1
            ? OrmidexWriteRegister(camera.handle(), address, bytes[0], 0)
            : OrmidexWriteMultRegister(camera.handle(), address,
                                       static_cast<OrmidexUInt32>(bytes.size()), bytes.data(), 0),
        "writing the register");
}

void RunI2cRead(const RegisterOptions& options) {
  const auto device = static_cast<OrmidexUInt8>(Number(options.address, 255));
  Bytes sent = ToBytes(options.values);
  const auto sent_count = static_cast<OrmidexInt32>(sent.size());
  sent.resize(sent.size() + 1);  // never a null pointer, even for nothing to send
  const Camera camera = options.camera.Open();
  Bytes bytes(options.count);
  Check(OrmidexI2cRead(camera.handle(), device, sent.data(), sent_count, bytes.data(),
                       static_cast<OrmidexInt32>(options.count)),
        "the I2C transaction");
  Print(bytes);
}

void RunI2cWrite(const RegisterOptions& options) {
  const auto device = static_cast<OrmidexUInt8>(Number(options.address, 255));
  const Bytes bytes = ToBytes(options.values);
  const Camera camera = options.camera.Open();
  Check(OrmidexI2cWrite(camera.handle(), device, bytes.data(),
                        static_cast<OrmidexUInt32>(bytes.size())),
        "the I2C transaction");
}

void RunGpio(const RegisterOptions& options) {
  const Camera camera = options.camera.Open();
  if (!options.value.empty()) {
    Check(OrmidexWriteGpio(camera.handle(), Number(options.value, kAnyAddress)),
          "writing the GPIO lines");
    return;
  }
  OrmidexUInt32 value = 0;
  Check(OrmidexReadGpio(camera.handle(), &value), "reading the GPIO lines");
  fmt::print("0x{:08X}\n", value);
}

using Runner = void (*)(const RegisterOptions&);

std::shared_ptr<RegisterOptions> AddAccess(CLI::App& parent, CLI::App** command, const char* name,
                                           const char* description, Runner run) {
  *command = parent.add_subcommand(name, description);
  auto options = std::make_shared<RegisterOptions>();
  options->camera.AddTo(**command);
  (*command)->callback([options, run] { run(*options); });
  return options;
}

void AddCount(CLI::App& command, RegisterOptions& options) {
  command.add_option("-n,--count", options.count, "Bytes to read")
      ->check(CLI::Range(1, 4096))
      ->capture_default_str();
}

}  // namespace

void AddRegister(CLI::App& app) {
  CLI::App* command = app.add_subcommand("register", "Read and write registers, I2C and GPIO");
  command->require_subcommand(1);
  CLI::App* access = nullptr;

  auto read = AddAccess(*command, &access, "read", "Read camera registers", &RunRead);
  access->add_option("address", read->address, "First register")->required();
  AddCount(*access, *read);

  auto write = AddAccess(*command, &access, "write", "Write camera registers", &RunWrite);
  access->add_option("address", write->address, "First register")->required();
  access->add_option("values", write->values, "Bytes to write")->required();

  auto i2c_read = AddAccess(*command, &access, "i2c-read", "Read from a device on the camera's bus",
                            &RunI2cRead);
  access->add_option("device", i2c_read->address, "Address byte of the device")->required();
  access->add_option("values", i2c_read->values, "Bytes to send first");
  AddCount(*access, *i2c_read);

  auto i2c_write = AddAccess(*command, &access, "i2c-write",
                             "Write to a device on the camera's bus", &RunI2cWrite);
  access->add_option("device", i2c_write->address, "Address byte of the device")->required();
  access->add_option("values", i2c_write->values, "Bytes to write")->required();

  auto gpio = AddAccess(*command, &access, "gpio", "Read the GPIO lines, or write them", &RunGpio);
  access->add_option("value", gpio->value, "Value to write");
}

}  // namespace ormidex_tool
