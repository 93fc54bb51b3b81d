// Double-precision arithmetic that rounds once in each operation, with the same
// results on every processor.
//
// The control laws truncate to whole levels and codes, so a difference in the last
// bit can become a different setting. 32-bit builds compute on the x87 unit, whose
// precision belongs to the host process: a compiler's start-up code sets 64 bits,
// graphics libraries set 24, others 53. Some hosts also let floating-point
// exceptions trap.
#ifndef ORMIDEX_AUTOMATION_EXACT_ARITHMETIC_H_
#define ORMIDEX_AUTOMATION_EXACT_ARITHMETIC_H_

#include <cstdint>

namespace ormidex::automation {

// While one of these lives, the operations round to 53 bits and nothing traps.
class DoublePrecision {
 public:
#if defined(__i386__)
  DoublePrecision() {
    __asm__ volatile("fnstcw %0" : "=m"(host_) : : "memory");
    const std::uint16_t own = kAllMaskedDoubleNearest;
    __asm__ volatile("fldcw %0" : : "m"(own) : "memory");
  }
  // Flags that were raised meanwhile must not trap once they are unmasked.
  ~DoublePrecision() { __asm__ volatile("fnclex\n\tfldcw %0" : : "m"(host_) : "memory"); }
#else
  DoublePrecision() {}
  ~DoublePrecision() {}
#endif
  DoublePrecision(const DoublePrecision&) = delete;
  DoublePrecision& operator=(const DoublePrecision&) = delete;

  static double Sum(double a, double b) {
    const volatile double x = a, y = b;
    const volatile double result = x + y;
    return result;
  }
  static double Difference(double a, double b) {
    const volatile double x = a, y = b;
    const volatile double result = x - y;
    return result;
  }
  static double Product(double a, double b) {
    const volatile double x = a, y = b;
    const volatile double result = x * y;
    return result;
  }
  static double Quotient(double a, double b) {
    const volatile double x = a, y = b;
    const volatile double result = x / y;
    return result;
  }
  static float ToFloat(double a) {
    const volatile double x = a;
    const volatile float result = static_cast<float>(x);
    return result;
  }

 private:
#if defined(__i386__)
  // Operands and results are volatile, and so are these statements: the compiler
  // keeps each operation between them.
  static constexpr std::uint16_t kAllMaskedDoubleNearest = 0x027F;
  std::uint16_t host_ = 0;
#endif
};

}  // namespace ormidex::automation

#endif  // ORMIDEX_AUTOMATION_EXACT_ARITHMETIC_H_
