// The text form of a camera's version numbers.
#ifndef ORMIDEX_DEVICE_HARDWARE_VERSION_H_
#define ORMIDEX_DEVICE_HARDWARE_VERSION_H_

#include <cstdint>

namespace ormidex::device {

// The five words that the controller reports of itself, in host order.
struct HardwareVersionWords {
  // Low byte: bit 0 monochrome, bit 1 EC variant, bit 2 clear: with IFE.
  std::uint32_t model = 0;
  std::uint32_t serial_number = 0;
  std::uint32_t model_text = 0;  // four characters, the first in the top byte
  std::uint32_t firmware_version = 0;
  std::uint32_t hardware_revision = 0;
};

// value as lower-case hexadecimal without leading zeros; text holds 9 characters.
void FormatHex(std::uint32_t value, char* text);
// The four bytes of value, most significant first, each in hexadecimal and
// separated by points: 0x03012200 gives "3.1.22.0". text holds 12 characters.
void FormatVersionBytes(std::uint32_t value, char* text);
// The camera's descriptive name, of at most 63 characters.
void DescribeCamera(const HardwareVersionWords& words, std::uint32_t firmware_version,
                    char (&text)[64]);

}  // namespace ormidex::device

#endif  // ORMIDEX_DEVICE_HARDWARE_VERSION_H_
