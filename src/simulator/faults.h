// Scripted and seeded misbehaviour of a simulated camera.
#ifndef ORMIDEX_SIMULATOR_FAULTS_H_
#define ORMIDEX_SIMULATOR_FAULTS_H_

#include <cstdint>
#include <string>
#include <vector>

namespace ormidex::simulator {

enum class FaultKind {
  kFail,     // the driver fails the request
  kStatus,   // the driver answers with another status word (value)
  kLate,     // the frame comes value milliseconds late
  kNever,    // the frame never comes: the read runs into the driver's time-out
  kShort,    // only value bytes are reported as returned
  kOverrun,  // a command read reports more bytes than were asked for
  kRandom,   // the driver fails value requests in a thousand, drawn from the seed
  kUnplug,   // the camera is pulled; plugged in again after value further attempts
  kBusy,     // the first value openings are refused, or all of them
};

inline constexpr std::uint32_t kAnyCode = 0;
inline constexpr std::uint32_t kEveryTime = 0;

struct Fault {
  FaultKind kind = FaultKind::kFail;
  std::uint32_t code = kAnyCode;   // the control code it waits for
  std::uint32_t nth = kEveryTime;  // counted from 1 among the requests it waits for
  std::uint32_t value = 0;
};

// What is to go wrong with one request.
struct Misfortune {
  bool fail = false;
  bool never = false;
  bool overrun = false;
  bool unplug = false;
  std::uint32_t replug_after = 0;  // attempts; 0: never
  std::uint32_t late_ms = 0;
  bool has_status = false;
  std::uint32_t status = 0;
  bool has_returned = false;
  std::uint32_t returned = 0;
};

// The faults of one camera. Not thread-safe: the camera's lock guards it.
class FaultScript {
 public:
  explicit FaultScript(std::uint32_t seed) : random_(seed * 2654435761u + 1) {}

  void Add(const Fault& fault) { entries_.push_back({fault, 0}); }
  void Clear() { entries_.clear(); }
  bool Empty() const { return entries_.empty(); }

  // Called once for each request, in order.
  Misfortune Next(std::uint32_t code);

  // Called once for each opening: whether it is refused, as while another program
  // holds the camera.
  bool RefusesOpening();

 private:
  struct Entry {
    Fault fault;
    std::uint32_t seen;
  };
  bool Applies(Entry& entry, std::uint32_t code);
  std::uint32_t NextRandom();

  std::vector<Entry> entries_;
  std::uint32_t random_;
};

// Reads one fault, such as "fail:write-registers:3". False on a mistake, with
// what is wrong in *complaint.
bool ParseFault(const std::string& text, Fault* fault, std::string* complaint);

// Reads a whole number, decimal or with 0x hexadecimal, of at most 32 bits.
bool ParseNumber(const std::string& text, std::uint32_t* number);

}  // namespace ormidex::simulator

#endif  // ORMIDEX_SIMULATOR_FAULTS_H_
