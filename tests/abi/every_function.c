/* Takes the address of every exported function, as the table names them. */
#include <stdio.h>

#include "ormidex.h"

typedef void (*AnyFunction)(void);

static const struct {
  const char* name;
  AnyFunction function;
} kFunctions[] = {
#define ORMIDEX_EXPORT(ordinal, name, argument_bytes, lock) {#name, (AnyFunction)name},
#include "frame/export_table.inc"
#undef ORMIDEX_EXPORT
};

int main(void) {
  const unsigned count = (unsigned)(sizeof(kFunctions) / sizeof(kFunctions[0]));
  unsigned i;
  for (i = 0; i < count; ++i) {
    if (kFunctions[i].function == 0) {
      printf("%s is missing\n", kFunctions[i].name);
      return 1;
    }
  }
  printf("%u functions\n", count);
  return count == 97 ? 0 : 1;
}
