#include "preview/counted_memory.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

constinit std::atomic<int> allocations{0};

void* Counted(std::size_t bytes) {
  allocations.fetch_add(1);
  return std::malloc(bytes == 0 ? 1 : bytes);
}

void* CountedOrEnd(std::size_t bytes) {
  void* memory = Counted(bytes);
  if (memory == nullptr) std::abort();
  return memory;
}

}  // namespace

namespace ormidex::testing {
int AllocationsSoFar() { return allocations.load(); }
}  // namespace ormidex::testing

void* operator new(std::size_t bytes) { return CountedOrEnd(bytes); }
void* operator new[](std::size_t bytes) { return CountedOrEnd(bytes); }
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept { return Counted(bytes); }
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept { return Counted(bytes); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
