/*
 * Calls a DLL's stdcall functions as the lines of standard input ask, and answers
 * each line with one line. So a test can play any application, several at once.
 *
 *   caller.exe PATH-OF-DLL
 *
 *   load                       load the DLL
 *   unload                     free it
 *   call NAME ARGUMENT...      call a function, 32 bits for each argument:
 *                                17 0x11 -1   a number        f1.5   a float
 *                                "text"       a string        $a     variable a
 *                                &a           its address     @3     buffer 3
 *                                *a           a callback (handle, buffer) that
 *                                             counts its calls in variable a
 *   set VARIABLE NUMBER        a to z, 32 bits each, 0 at first
 *   get VARIABLE               its value
 *   buffer N BYTES             a buffer of zeros; N from 0 to 9
 *   crc N BYTES                CRC-32 of its first bytes
 *   hex N OFFSET BYTES         some of its bytes
 *   offset BYTES               stack misalignment of the calls that follow
 *   resource ID                whether the DLL has an icon of that number
 *   sleep MILLISECONDS
 *   exit
 *
 * A message box of this process is pressed away by a thread of its own, which
 * first prints: box "title" "text" BUTTONS
 */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <windows.h>

enum { kMaxArguments = 16, kBuffers = 10, kLineBytes = 4096 };

static HMODULE library;
static const char* library_path;
static uint32_t variables[26];
static unsigned char* buffers[kBuffers];
static uint32_t buffer_bytes[kBuffers];
static uint32_t stack_offset;

/* --- Message boxes --------------------------------------------------------- */

struct BoxContent {
  char text[256];
  unsigned buttons;
};

static BOOL CALLBACK ReadBoxPart(HWND window, LPARAM parameter) {
  struct BoxContent* content = (struct BoxContent*)parameter;
  char class_name[32];
  char text[256];
  GetClassNameA(window, class_name, sizeof class_name);
  GetWindowTextA(window, text, sizeof text);
  if (strcmp(class_name, "Button") == 0) ++content->buttons;
  if (strcmp(class_name, "Static") == 0 && text[0] != '\0') strcpy(content->text, text);
  return TRUE;
}

static BOOL CALLBACK PressBox(HWND window, LPARAM unused) {
  struct BoxContent content = {"", 0};
  char class_name[32];
  char title[256];
  DWORD process = 0;
  (void)unused;
  GetClassNameA(window, class_name, sizeof class_name);
  GetWindowThreadProcessId(window, &process);
  if (process != GetCurrentProcessId() || strcmp(class_name, "#32770") != 0) return TRUE;
  if (!IsWindowVisible(window)) return TRUE; /* still being filled */
  GetWindowTextA(window, title, sizeof title);
  EnumChildWindows(window, ReadBoxPart, (LPARAM)&content);
  printf("box \"%s\" \"%s\" %u\n", title, content.text, content.buttons);
  fflush(stdout);
  PostMessageA(window, WM_COMMAND, IDOK, 0);
  Sleep(200); /* until it has gone */
  return TRUE;
}

static DWORD WINAPI WatchForBoxes(LPVOID ready) {
  for (;;) {
    EnumWindows(PressBox, 0);
    SetEvent((HANDLE)ready);
    Sleep(20);
  }
  return 0;
}

/*
 * A library that is being loaded may show a box while it holds the loader's lock.
 * So the watcher must have loaded before whatever looking at windows needs.
 */
static void StartWatching(void) {
  const HANDLE ready = CreateEventA(NULL, FALSE, FALSE, NULL);
  IsWindow(GetDesktopWindow());
  CloseHandle(CreateThread(NULL, 0, WatchForBoxes, ready, 0, NULL));
  WaitForSingleObject(ready, 10000);
}

/* --- Calls ----------------------------------------------------------------- */

/*
 * Calls a stdcall function with its stack `offset` bytes below a multiple of 16.
 * *left_over receives by how many bytes the function left the stack pointer wrong.
 */
static uint32_t CallFunction(void* function, const uint32_t* arguments, uint32_t count,
                             uint32_t offset, int32_t* left_over) {
  uint32_t result;
  int32_t difference;
  __asm__ volatile(
      "pushl %%ebp\n\t"
      "movl %%esp, %%ebp\n\t"
      "andl $-16, %%esp\n\t"
      "subl %%edx, %%esp\n\t"
      "movl %%esp, %%ebx\n\t" /* where the callee must leave it */
      "1: jecxz 2f\n\t"
      "pushl -4(%%esi,%%ecx,4)\n\t"
      "decl %%ecx\n\t"
      "jmp 1b\n\t"
      "2: call *%%edi\n\t"
      "subl %%esp, %%ebx\n\t"
      "movl %%ebp, %%esp\n\t"
      "popl %%ebp\n\t"
      : "=a"(result), "=b"(difference), "+c"(count), "+d"(offset)
      : "S"(arguments), "D"(function)
      : "memory", "cc");
  *left_over = difference;
  return result;
}

static uint32_t* counted_calls;

static uint32_t __stdcall CountCall(uint32_t handle, void* buffer) {
  (void)handle;
  (void)buffer;
  ++*counted_calls;
  return 0;
}

static uint32_t* Variable(const char* name) {
  if (name == NULL || name[0] < 'a' || name[0] > 'z') return NULL;
  return &variables[name[0] - 'a'];
}

static uint32_t FloatBits(float value) {
  uint32_t bits;
  memcpy(&bits, &value, sizeof bits);
  return bits;
}

static uint32_t Pointer(const void* address) { return (uint32_t)(uintptr_t)address; }

static uint32_t Argument(const char* word) {
  switch (word[0]) {
    case '"':
      return Pointer(word + 1);
    case '$':
      return *Variable(word + 1);
    case '&':
      return Pointer(Variable(word + 1));
    case '*':
      counted_calls = Variable(word + 1);
      return (uint32_t)(uintptr_t)CountCall;
    case '@':
      return Pointer(buffers[(word[1] - '0') % kBuffers]);
    case 'f':
      return FloatBits((float)atof(word + 1));
    default:
      return (uint32_t)strtoul(word, NULL, 0);
  }
}

static void Call(char** words, uint32_t count) {
  uint32_t arguments[kMaxArguments];
  int32_t left_over = 0;
  uint32_t status;
  uint32_t i;
  void* function = count > 0 ? (void*)(uintptr_t)GetProcAddress(library, words[0]) : NULL;
  if (function == NULL) {
    printf("no such function\n");
    return;
  }
  for (i = 1; i < count; ++i) arguments[i - 1] = Argument(words[i]);
  status = CallFunction(function, arguments, count - 1, stack_offset, &left_over);
  if (left_over != 0) {
    printf("stack off by %ld\n", (long)left_over);
  } else {
    printf("%lu\n", (unsigned long)status);
  }
}

/* --- Buffers --------------------------------------------------------------- */

static uint32_t Crc32(const unsigned char* bytes, uint32_t count) {
  uint32_t crc = 0xFFFFFFFFu;
  while (count-- > 0) {
    int bit;
    crc ^= *bytes++;
    for (bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
  }
  return ~crc;
}

static void MakeBuffer(uint32_t number, uint32_t bytes) {
  free(buffers[number]);
  buffers[number] = calloc(bytes, 1);
  buffer_bytes[number] = buffers[number] != NULL ? bytes : 0;
  printf("%lu\n", (unsigned long)buffer_bytes[number]);
}

static void PrintHex(uint32_t number, uint32_t offset, uint32_t bytes) {
  uint32_t i;
  for (i = offset; i < offset + bytes && i < buffer_bytes[number]; ++i) {
    printf("%02x", buffers[number][i]);
  }
  printf("\n");
}

/* --- Commands -------------------------------------------------------------- */

static void Load(void) {
  library = LoadLibraryA(library_path);
  if (library != NULL) {
    printf("loaded\n");
  } else {
    printf("refused %lu\n", GetLastError());
  }
}

static void Unload(void) {
  const BOOL done = FreeLibrary(library);
  printf(done && GetModuleHandleA(library_path) == NULL ? "unloaded\n" : "still loaded\n");
}

static void Execute(char** words, uint32_t count) {
  const uint32_t first = count > 1 ? (uint32_t)strtoul(words[1], NULL, 0) : 0;
  const uint32_t second = count > 2 ? (uint32_t)strtoul(words[2], NULL, 0) : 0;
  const uint32_t third = count > 3 ? (uint32_t)strtoul(words[3], NULL, 0) : 0;
  const char* command = words[0];
  if (strcmp(command, "load") == 0) {
    Load();
  } else if (strcmp(command, "unload") == 0) {
    Unload();
  } else if (strcmp(command, "call") == 0) {
    Call(words + 1, count - 1);
  } else if (strcmp(command, "set") == 0 && count > 2) {
    *Variable(words[1]) = Argument(words[2]);
    printf("set\n");
  } else if (strcmp(command, "get") == 0 && count > 1) {
    printf("%lu\n", (unsigned long)*Variable(words[1]));
  } else if (strcmp(command, "buffer") == 0) {
    MakeBuffer(first % kBuffers, second);
  } else if (strcmp(command, "crc") == 0) {
    printf("%08lx\n", (unsigned long)Crc32(buffers[first % kBuffers], second));
  } else if (strcmp(command, "hex") == 0) {
    PrintHex(first % kBuffers, second, third);
  } else if (strcmp(command, "offset") == 0) {
    stack_offset = first;
    printf("set\n");
  } else if (strcmp(command, "resource") == 0) {
    const HICON icon = LoadIconA(library, (LPCSTR)(uintptr_t)first);
    printf(icon != NULL ? "icon\n" : "no icon\n");
  } else if (strcmp(command, "sleep") == 0) {
    Sleep(first);
    printf("slept\n");
  } else {
    printf("what?\n");
  }
}

/* Splits a line at blanks; a quoted word keeps its blanks and its first quote. */
static uint32_t Split(char* line, char** words) {
  uint32_t count = 0;
  while (count < kMaxArguments) {
    char end = ' ';
    line += strspn(line, " \r\n");
    if (*line == '\0') break;
    words[count++] = line;
    if (*line == '"') {
      ++line;
      end = '"';
    }
    while (*line != '\0' && *line != end && (end == '"' || strchr("\r\n", *line) == NULL)) ++line;
    if (*line != '\0') *line++ = '\0';
  }
  return count;
}

int main(int argc, char** argv) {
  static char line[kLineBytes];
  char* words[kMaxArguments + 1];
  if (argc != 2) return 2;
  library_path = argv[1];
  /* Faults end the process at once instead of asking somebody. */
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
  StartWatching();
  while (fgets(line, sizeof line, stdin) != NULL) {
    const uint32_t count = Split(line, words);
    if (count == 0) continue;
    if (strcmp(words[0], "exit") == 0) break;
    Execute(words, count);
    fflush(stdout);
  }
  return 0;
}
