// Memory operators that count.
#ifndef ORMIDEX_TESTS_PREVIEW_COUNTED_MEMORY_H_
#define ORMIDEX_TESTS_PREVIEW_COUNTED_MEMORY_H_

namespace ormidex::testing {

// By operator new, in every thread of the program.
int AllocationsSoFar();

}  // namespace ormidex::testing

#endif  // ORMIDEX_TESTS_PREVIEW_COUNTED_MEMORY_H_
