// A buffer with guard bytes on both sides, for tests of what a conversion touches.
#ifndef ORMIDEX_TESTS_CONVERT_GUARDED_BUFFER_H_
#define ORMIDEX_TESTS_CONVERT_GUARDED_BUFFER_H_

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ormidex::convert {

inline constexpr std::uint8_t kUntouched = 0xA5;

class GuardedBuffer {
 public:
  // `offset` shifts the start, so that any alignment can be tried.
  explicit GuardedBuffer(std::size_t bytes, std::size_t offset = 0)
      : bytes_(bytes),
        start_(kGuardBytes + offset),
        memory_(2 * kGuardBytes + offset + bytes, kUntouched) {}

  std::uint8_t* Data() { return memory_.data() + start_; }
  const std::uint8_t* Data() const { return memory_.data() + start_; }
  std::size_t Size() const { return bytes_; }
  std::uint8_t operator[](std::size_t i) const { return Data()[i]; }

  std::vector<std::uint8_t> Contents() const { return {Data(), Data() + bytes_}; }

  // Says on which side of the buffer something was written.
  void ExpectGuardsIntact() const {
    for (std::size_t i = 0; i < start_; ++i) {
      ASSERT_EQ(memory_[i], kUntouched) << "written " << start_ - i << " bytes before the buffer";
    }
    for (std::size_t i = start_ + bytes_; i < memory_.size(); ++i) {
      ASSERT_EQ(memory_[i], kUntouched)
          << "written " << i - start_ - bytes_ << " bytes after the buffer";
    }
  }

 private:
  static constexpr std::size_t kGuardBytes = 256;
  std::size_t bytes_;
  std::size_t start_;
  std::vector<std::uint8_t> memory_;
};

}  // namespace ormidex::convert

#endif  // ORMIDEX_TESTS_CONVERT_GUARDED_BUFFER_H_
