// Records as readable literals: hexadecimal digits, spaces ignored.
#ifndef ORMIDEX_TESTS_SUPPORT_HEX_H_
#define ORMIDEX_TESTS_SUPPORT_HEX_H_

#include <cstdint>
#include <string>
#include <vector>

namespace ormidex::testing {

using Bytes = std::vector<std::uint8_t>;

inline Bytes FromHex(const std::string& text) {
  Bytes bytes;
  int nibbles = 0;
  int value = 0;
  for (const char c : text) {
    if (c == ' ' || c == '\n') continue;
    value = value * 16 + (c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10);
    if (++nibbles % 2 == 0) {
      bytes.push_back(static_cast<std::uint8_t>(value));
      value = 0;
    }
  }
  return bytes;
}

// Groups of four bytes, as the tests write them.
inline std::string ToHex(const void* data, std::size_t size) {
  static constexpr char kDigits[] = "0123456789abcdef";
  const auto* bytes = static_cast<const std::uint8_t*>(data);
  std::string text;
  for (std::size_t i = 0; i < size; ++i) {
    if (i != 0 && i % 4 == 0) text += ' ';
    text += kDigits[bytes[i] >> 4];
    text += kDigits[bytes[i] & 15];
  }
  return text;
}

}  // namespace ormidex::testing

#endif  // ORMIDEX_TESTS_SUPPORT_HEX_H_
