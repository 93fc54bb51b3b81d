/*
 * Calls each exported function with a null handle, as a program does that was
 * linked against the import library, and looks at its status and at the stack
 * pointer afterwards: a stdcall function removes its own arguments, and one byte
 * too many or too few ruins the caller.
 */
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include "ormidex.h"

typedef void (*AnyFunction)(void);

static const struct {
  const char* name;
  AnyFunction function;
  unsigned argument_bytes;
} kFunctions[] = {
#define ORMIDEX_EXPORT(ordinal, name, argument_bytes, lock) \
  {#name, (AnyFunction)name, argument_bytes},
#include "frame/export_table.inc"
#undef ORMIDEX_EXPORT
};

/* Returns the status; *left_over is by how many bytes the stack pointer is wrong. */
static uint32_t Call(AnyFunction function, const uint32_t* arguments, uint32_t count,
                     int32_t* left_over) {
  uint32_t status;
  __asm__ volatile(
      "movl %%esp, %%ebx\n\t"
      "1: jecxz 2f\n\t"
      "pushl -4(%%esi,%%ecx,4)\n\t"
      "decl %%ecx\n\t"
      "jmp 1b\n\t"
      "2: call *%%edi\n\t"
      "subl %%esp, %%ebx\n\t"
      "addl %%ebx, %%esp\n\t"
      : "=a"(status), "=b"(*left_over), "+c"(count)
      : "S"(arguments), "D"(function)
      : "edx", "memory", "cc");
  return status;
}

/* The arguments of the three functions that take no handle by value. */
static uint32_t null_variable;
static uint32_t count_variable = 99;

static void Prepare(const char* name, uint32_t* arguments, uint32_t* expected) {
  memset(arguments, 0, 16 * sizeof *arguments);
  *expected = ORMIDEX_NO_CAMERA;
  if (strcmp(name, "OrmidexGetNumberDevices") == 0) {
    /* a null name; the count is set to 0 all the same */
    arguments[1] = (uint32_t)(uintptr_t)&count_variable;
    *expected = ORMIDEX_NULL_POINTER;
  } else if (strcmp(name, "OrmidexInitialize") == 0) {
    arguments[2] = (uint32_t)(uintptr_t)&null_variable;
    *expected = ORMIDEX_NULL_POINTER;
  } else if (strcmp(name, "OrmidexUninitialize") == 0) {
    arguments[0] = (uint32_t)(uintptr_t)&null_variable;
  }
}

int main(void) {
  const unsigned count = (unsigned)(sizeof kFunctions / sizeof kFunctions[0]);
  unsigned faults = count == 97 ? 0 : 1;
  unsigned null_handles = 0;
  unsigned i;
  for (i = 0; i < count; ++i) {
    uint32_t arguments[16];
    uint32_t expected;
    int32_t left_over = 0;
    uint32_t status;
    Prepare(kFunctions[i].name, arguments, &expected);
    status = Call(kFunctions[i].function, arguments, kFunctions[i].argument_bytes / 4, &left_over);
    if (arguments[0] == 0 && status == ORMIDEX_NO_CAMERA) ++null_handles;
    if (status != expected || left_over != 0) {
      printf("%s: status %u, expected %u; stack pointer off by %d, expected 0\n",
             kFunctions[i].name, (unsigned)status, (unsigned)expected, (int)left_over);
      ++faults;
    }
  }
  if (count_variable != 0) {
    printf("OrmidexGetNumberDevices: the count is %u, expected 0\n", (unsigned)count_variable);
    ++faults;
  }
  printf("%u functions, %u refuse a null handle, %u faults\n", count, null_handles, faults);
  return faults != 0;
}
