// Memory between two pages that nobody may read.
#ifndef ORMIDEX_TESTS_AUTOMATION_FENCED_BYTES_H_
#define ORMIDEX_TESTS_AUTOMATION_FENCED_BYTES_H_

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/mman.h>
#endif

#include <cstddef>
#include <cstdint>

namespace ormidex::automation {

class FencedBytes {
 public:
  static constexpr std::size_t kPage = 65536;  // a multiple of every processor's
  static constexpr std::size_t kSize = kPage;

#if defined(_WIN32)
  FencedBytes()
      : memory_(static_cast<std::uint8_t*>(
            VirtualAlloc(nullptr, 3 * kPage, MEM_RESERVE | MEM_COMMIT, PAGE_NOACCESS))) {
    DWORD before = 0;
    ready_ = memory_ != nullptr && VirtualProtect(Begin(), kSize, PAGE_READWRITE, &before) != 0;
  }
  ~FencedBytes() { VirtualFree(memory_, 0, MEM_RELEASE); }
#else
  FencedBytes()
      : memory_(static_cast<std::uint8_t*>(
            mmap(nullptr, 3 * kPage, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {
    ready_ = mprotect(Begin(), kSize, PROT_READ | PROT_WRITE) == 0;
  }
  ~FencedBytes() { munmap(memory_, 3 * kPage); }
#endif
  FencedBytes(const FencedBytes&) = delete;
  FencedBytes& operator=(const FencedBytes&) = delete;

  bool Ready() const { return ready_; }
  std::uint8_t* Begin() { return memory_ + kPage; }
  std::uint8_t* End() { return Begin() + kSize; }

 private:
  std::uint8_t* memory_;
  bool ready_ = false;
};

}  // namespace ormidex::automation

#endif  // ORMIDEX_TESTS_AUTOMATION_FENCED_BYTES_H_
