// Ctrl-C as a wish to finish, not as an end.
#ifndef ORMIDEX_TOOLS_INTERRUPT_H_
#define ORMIDEX_TOOLS_INTERRUPT_H_

namespace ormidex_tool {

// From now on the first interrupt only sets a flag; a second one ends the program.
void CatchInterrupts();

// Lets a write fail whose reader has gone, for commands that have to clean up.
void CatchBrokenPipe();
bool Interrupted();

}  // namespace ormidex_tool

#endif  // ORMIDEX_TOOLS_INTERRUPT_H_
