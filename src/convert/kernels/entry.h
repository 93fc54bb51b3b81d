// Attributes of a kernel's entry.
#ifndef ORMIDEX_CONVERT_KERNELS_ENTRY_H_
#define ORMIDEX_CONVERT_KERNELS_ENTRY_H_

// 32-bit Windows applications keep their stack aligned to 4 bytes only, vectors that
// are spilled need more.
#if defined(__i386__)
#define ORMIDEX_KERNEL __attribute__((force_align_arg_pointer))
#else
#define ORMIDEX_KERNEL
#endif

#endif  // ORMIDEX_CONVERT_KERNELS_ENTRY_H_
