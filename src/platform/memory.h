// Working memory whose failed allocation is a status, not an exception.
#ifndef ORMIDEX_PLATFORM_MEMORY_H_
#define ORMIDEX_PLATFORM_MEMORY_H_

#include <cstddef>
#include <cstdint>

namespace ormidex::platform {

// Zero-filled memory, aligned for any fundamental type (8 bytes on 32-bit Windows,
// 16 on Linux), or null. Zero bytes give a valid
// pointer. A size beyond what the address space can hold gives null.
void* Allocate(std::size_t bytes) noexcept;
// The same without clearing: for frame and image buffers that are overwritten whole.
void* AllocateUncleared(std::size_t bytes) noexcept;
void Release(void* memory) noexcept;

// Owns working memory for the duration of a call.
class Buffer {
 public:
  Buffer() = default;
  explicit Buffer(std::size_t bytes) noexcept : data_(Allocate(bytes)) {}
  static Buffer Uncleared(std::size_t bytes) noexcept {
    Buffer buffer;
    buffer.data_ = AllocateUncleared(bytes);
    return buffer;
  }
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;
  Buffer(Buffer&& other) noexcept : data_(other.Leak()) {}
  Buffer& operator=(Buffer&& other) noexcept {
    if (this != &other) {
      Release(data_);
      data_ = other.Leak();
    }
    return *this;
  }
  ~Buffer() { Release(data_); }

  explicit operator bool() const { return data_ != nullptr; }
  std::uint8_t* Bytes() const { return static_cast<std::uint8_t*>(data_); }
  // Gives up ownership: the memory is not released by this object.
  void* Leak() noexcept {
    void* data = data_;
    data_ = nullptr;
    return data;
  }

 private:
  void* data_ = nullptr;
};

}  // namespace ormidex::platform

#endif  // ORMIDEX_PLATFORM_MEMORY_H_
