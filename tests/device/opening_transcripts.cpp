#include "device/opening_transcripts.h"

#include <cstdio>

namespace ormidex::testing {

namespace {

// A lookup table in its off form: 66 clear words.
std::string LookupTableOff() {
  std::string line = "0x222028 [264]";
  for (int i = 0; i < 66; ++i) line += " 00000000";
  return line;
}

void Append(Transcript* transcript, const Transcript& part) {
  transcript->insert(transcript->end(), part.begin(), part.end());
}

}  // namespace

// ---- First generation ----

void MakeFirstGeneration(ModelGateway& driver) {
  driver.bus_address = 0x60;
  driver.registers[0x00] = 0x30;
  driver.registers[0x01] = 0x96;  // sub-sampled by 4, mirrored, not upright; bit 7 is kept
  driver.registers[0x14] = 11;
  driver.registers[0x15] = 12;
  driver.registers[0x16] = 13;
}

Transcript FirstGenerationTranscript(const FirstGenerationCamera& camera) {
  Transcript t;
  Append(&t, {{"0x222024 [12] 00000000 01000000 00000000", 5},
              {"0x222018 [12] 00000000 01000000 00000000", 5},
              // Values of the camera's own; the imager's address is not known yet.
              {"0x222000 [22] 00000000 00000000 00ff0000 06000000 00000000 0000", 0},
              {"0x222030 [0]", 5},
              {"0x222034 [0]", 5}});
  if (!camera.firmware_variant) {
    // Imager flags: command register 9, or 4 on page 0x88. When they cannot be read,
    // the camera with a known name is a colour camera.
    t.push_back({camera.firmware3 ? "0x2223FC [16] 00000000 01000000 00000009 00000000"
                                  : "0x2223FC [16] 00000000 01000000 00008804 00000000",
                 0});
  }
  // The probe. Without an answer the imager is looked for at 0x66, where this one
  // does not answer either, and the first register write there ends the opening.
  t.push_back({"0x222000 [20] 00000000 60000000 00000000 01000000 00000000", 5});
  t.push_back({"0x222088 [12] 00000000 00000000 01000000", 5});
  // Imager clocking 0: command register 12, or 5 on page 0x88; register 145 gets
  // the fourth of the values 25, 17, 17, 17, 17, 17.
  t.push_back({camera.firmware3 ? "0x2223FC [16] 00000000 02000000 0000000c 00000000"
                                : "0x2223FC [16] 00000000 02000000 00008805 00000000",
               5});
  t.push_back({"0x222004 [20] ff000000 60000000 91000000 01000000 11000000", 5});
  if (!camera.firmware3) {
    // 8 bits a pixel: bit 0 of command register 7 is cleared (0xff becomes 0xfe).
    Append(&t, {{"0x2223FC [16] 00000000 01000000 00008807 00000000", 5},
                {"0x2223FC [16] 00000000 02000000 00008807 000000fe", 5}});
  }
  Append(&t, {{"0x222010 [12] 00000000 60000000 08000000", 5},
              {LookupTableOff(), 5},  // for the gamma 0 that a new session has
              // Sub-window. The unknown old size leaves no room, so the size goes first:
              // 0x96 without bits 1 and 2 is 0x90; 640 / 8 = 0x50, 480 / 8 = 0x3c.
              {"0x222000 [20] 00000000 60000000 01000000 01000000 00000000", 5},
              {"0x222004 [20] ff000000 60000000 01000000 01000000 90000000", 5},
              {"0x222004 [18] 00000000 60000000 08000000 02000000 503c", 5}});
  if (camera.firmware3) {
    t.push_back({"0x2223FC [16] 00000000 02000000 00000008 00000050", 5});
  }
  Append(&t,
         {// Column 0 + 4, row 0 + 4.
          {"0x222054 [4] 00000000", 0},
          {"0x222004 [20] 00000000 60000000 04000000 04000000 00040004", 5},
          {"0x222058 [4] 00000000", 0},
          {"0x22202C [12] 00000000 00000000 a00f0000", 5},  // 4000
          {LookupTableOff(), 5},                            // gamma 1
                                  // Both flips off: 0x90 without bit 4 and with bit 3 is 0x88.
          {"0x222000 [20] 00000000 60000000 01000000 01000000 00000000", 5},
          {"0x222100 [12] 00000000 00000000 00000000", 5},
          {"0x222004 [20] ff000000 60000000 01000000 01000000 88000000", 5},
          // The Bayer phase.
          {"0x222000 [20] 00000000 60000000 01000000 01000000 00000000", 5}});
  if (!camera.firmware_variant) {
    t.push_back({"0x2223FC [16] 00000000 06000000 00000000 00000000", 0});
  }
  t.push_back({"0x222004 [18] 00000000 60000000 12000000 02000000 07fe", 0});  // 2046
  if (camera.monochrome) {
    t.push_back({"0x222004 [19] 00000000 60000000 14000000 03000000 000000", 0});
  } else {
    Append(&t, {{"0x222000 [20] 00000000 60000000 14000000 01000000 00000000", 5},
                {"0x222000 [20] 00000000 60000000 15000000 01000000 00000000", 5},
                {"0x222000 [20] 00000000 60000000 16000000 01000000 00000000", 5}});
    // Bit 0 cleared: 0xa5 becomes 0xa4 in register 0x0f, 0xfe stays in register 7.
    if (camera.firmware3) {
      Append(&t, {{"0x2223FC [16] 00000000 01000000 0000000f 00000000", 0},
                  {"0x2223FC [16] 00000000 02000000 0000000f 000000a4", 0}});
    } else {
      Append(&t, {{"0x2223FC [16] 00000000 01000000 00008807 00000000", 0},
                  {"0x2223FC [16] 00000000 02000000 00008807 000000fe", 0}});
    }
  }
  t.push_back({"0x222048 [0]", 0});
  return t;
}

// ---- Second generation ----

void MakeSecondGeneration(ModelGateway& driver) {
  driver.bus_address = 0x66;
  driver.registers = {
      {0, 21},      {1, 31},    {2, 32},    {3, 24},
      {0x0F, 0x50}, {65, 0x30},                          // no decimation; bits 4 to 7 are kept
      {71, 0x03},   {72, 0xFF},                          // height 1023 + 1
      {75, 0x04},   {76, 0xFF},                          // width 1279 + 1
      {78, 0x01},   {79, 0x83},                          // 387 rows exposed, update bit clear
      {80, 0x04},   {81, 0x01}, {82, 0x06}, {83, 0x40},  // row length 1600
      {87, 0x87},                                        // both flips on; bits 2 to 7 are kept
      {95, 20},     {96, 10},
  };
}

namespace {

std::string ReadLine(std::uint8_t address) {
  return "0x222000 [20] 00000000 66000000 " + ToHex(&address, 1) + "000000 01000000 00000000";
}

// What opening sends on the way to one exposure. Reads of 78, 79, 82, 83, 95, 96.
Transcript ReadExposureTime(std::uint32_t status) {
  Transcript t;
  for (const int address : {78, 79, 82, 83, 95, 96}) {
    t.push_back({ReadLine(static_cast<std::uint8_t>(address)), status});
  }
  return t;
}

struct Exposure {
  const char* row_length;  // written to 82 and 83, or null when it is right already
  const char* rows;        // written to 80 and 81
  const char* low;         // to 79
  const char* high;        // to 78, with the update bit turned over
};

Transcript SetExposureTime(const Exposure& exposure, std::uint32_t status) {
  Transcript t;
  for (const int address : {82, 83, 75, 76,             // row length, width
                            75, 76, 71, 72, 65,         // for the shortest row
                            80, 81, 71, 72, 95, 96}) {  // for the shortest frame, blanking
    t.push_back({ReadLine(static_cast<std::uint8_t>(address)), status});
  }
  if (exposure.row_length != nullptr) {
    t.push_back(
        {std::string("0x222004 [18] 00000000 66000000 52000000 02000000 ") + exposure.row_length,
         status});
  }
  t.push_back(
      {std::string("0x222004 [18] 00000000 66000000 50000000 02000000 ") + exposure.rows, status});
  t.push_back({ReadLine(78), status});
  t.push_back(
      {std::string("0x222004 [20] ff000000 66000000 4f000000 01000000 ") + exposure.low + "000000",
       status});
  t.push_back(
      {std::string("0x222004 [20] ff000000 66000000 4e000000 01000000 ") + exposure.high + "000000",
       status});
  return t;
}

const Transcript kSecondGenerationPosition = {
    {"0x222054 [4] 00000000", 0},
    // Column (0 + 8) with bit 0 set, since the image is not mirrored; row 0 + 16.
    {"0x222004 [18] 00000000 66000000 49000000 02000000 0009", 5},
    {"0x222004 [18] 00000000 66000000 45000000 02000000 0010", 5},
    {"0x222058 [4] 00000000", 0},
};

struct SecondGenerationExposures {
  Exposure after_clocking;
  Exposure after_transfer_size;
  Exposure after_resizing;
  Exposure of_25_1_ms;
};

// letter_j: 16 MHz is tried first and refused by the controller's letter.
Transcript SecondGeneration(const SecondGenerationExposures& exposures, bool letter_j,
                            bool monochrome) {
  Transcript t;
  Append(&t, {{"0x222024 [12] 00000000 01000000 00000000", 5},
              {"0x222018 [12] 00000000 01000000 00000000", 5},
              {"0x222000 [22] 00000000 00000000 00ff0000 06000000 00000000 0000", 0},
              {"0x222030 [0]", 5},
              {"0x222034 [0]", 5},
              {"0x2223FC [16] 00000000 01000000 00000009 00000000", 0},
              {"0x222000 [20] 00000000 60000000 00000000 01000000 00000000", 0},
              // Without this answer the camera opens as a first-generation one.
              {"0x222000 [20] 00000000 66000000 0f000000 01000000 00000000", 0},
              {"0x222088 [12] 00000000 00000000 01000000", 5},
              {"0x2223FC [16] 00000000 01000000 00000000 00000000", 5}});
  if (letter_j) t.push_back({"0x2223FC [16] 00000000 01000000 00000000 00000000", 5});
  Append(&t, ReadExposureTime(5));
  t.push_back({letter_j ? "0x2223FC [16] 00000000 02000000 0000000c 00000081"
                        : "0x2223FC [16] 00000000 02000000 0000000c 00000000",
               5});
  // How setting the exposure again ends does not count, only the clocking itself.
  Append(&t, SetExposureTime(exposures.after_clocking, 0));
  Append(&t, ReadExposureTime(5));
  t.push_back({"0x222010 [12] 00000000 66000000 08000000", 5});
  Append(&t, SetExposureTime(exposures.after_transfer_size, 5));
  Append(&t, {{LookupTableOff(), 5},
              {ReadLine(65), 5},
              {"0x222004 [20] ff000000 66000000 41000000 01000000 30000000", 5},
              // 480 - 1 = 0x1df, 640 - 1 = 0x27f
              {"0x222004 [18] 00000000 66000000 47000000 02000000 01df", 5},
              {"0x222004 [18] 00000000 66000000 4b000000 02000000 027f", 5}});
  Append(&t, SetExposureTime(exposures.after_resizing, 5));
  t.push_back({"0x2223FC [16] 00000000 02000000 00000008 00000050", 5});
  Append(&t, kSecondGenerationPosition);
  Append(&t, {{"0x22202C [12] 00000000 00000000 a00f0000", 5},
              {LookupTableOff(), 5},
              {ReadLine(87), 5},
              // 0x87 without bits 0 and 1
              {"0x222004 [20] ff000000 66000000 57000000 01000000 84000000", 5}});
  Append(&t, kSecondGenerationPosition);
  Append(&t, {{"0x2223FC [12] 00000000 16000000 00000001", 5},
              {"0x2223FC [16] 00000000 06000000 00000000 00000000", 0}});
  Append(&t, SetExposureTime(exposures.of_25_1_ms, 5));
  if (monochrome) {
    t.push_back({"0x222004 [20] 00000000 66000000 00000000 04000000 00000000", 0});
  } else {
    Append(&t, {{ReadLine(1), 5}, {ReadLine(2), 5}, {ReadLine(0), 5}, {ReadLine(3), 5}});
  }
  t.push_back({"0x222048 [0]", 0});
  return t;
}

// The imager as opening finds it exposes 387 rows of 1600 clocks:
//   10 + 1600 + 20 + 19 = 1649 clocks a row, x 6.25e-5 ms x 387 = 39.88519 ms
//
// Firmware 3.1.22, 16 MHz, 1280 x 1024 at 1 byte a pixel:
//   q = (1280 x 5 + 265) x 25 x 80 = 13330000; q / 16 = 833125
//   n = 1250000 / 833125 + 1 = 2; 2 x 1280 < 4088 and 1024 is a multiple of 2
//   row = 125 x 16 / 2 - 43 = 957, at least 1280 + 10 = 1290 = 0x50a
//   rows = 39.88519 / ((10 + 20 + 1290 + 19) x 6.25e-5 = 0.0836875) = 476.6: 476 = 0x1dc
// The sub-sampling factor is still unknown, all bits set, so the shortest frame is
// 1024 / 0xffffffff + 1 = 1 row and the frame length is the 476 rows themselves.
// Read back: 1339 x 6.25e-5 x 476 = 39.83525 ms, which is 476 rows again.
// 640 x 480:
//   q = (3200 + 265) x 2000 = 6930000; q / 16 = 433125; n = 1250000 / 433125 + 1 = 3
//   3 x 640 < 4088 and 480 is a multiple of 3
//   row = 2000 / 3 - 43 = 623.7: 624, at least 640 + 10 = 650 = 0x28a
//   rows = 39.83525 / ((10 + 20 + 650 + 19) x 6.25e-5 = 0.0436875) = 911.8: 911 = 0x38f
//   shortest frame 480 / 1 + 1 = 481 rows
// 25.1 ms: 25.1 / 0.0436875 = 574.5: 574 = 0x23e
constexpr SecondGenerationExposures kFirmware3122 = {
    {"050a", "01dc", "dc", "41"},
    {nullptr, "01dc", "dc", "01"},
    {"028a", "038f", "8f", "43"},
    {nullptr, "023e", "3e", "02"},
};

// Firmware 3.0, 1280 x 1024:
//   d = 833125 - 203 x 1280 = 573285; e = 1250000 - 530000 / 16 = 1216875
//   n = 1216875 / 573285 + 1 = 3; 3 x 1280 < 4088 but 1024 is no multiple of 3: 4;
//   4 x 1280 is too much; downwards 4 and 3 fail, 2 fits
//   x = (1280 x 2 x 0.0203 + 125) x 16 + 1280 = 176.968 x 16 + 1280 = 4111.488; y = 3
//   row = 4111.488 / 3 - 43 = 1327.496: 1328 = 0x530
//   rows = 39.88519 / ((10 + 20 + 1328 + 19) x 6.25e-5 = 0.0860625) = 463.4: 463 = 0x1cf
// Read back: 1377 x 6.25e-5 x 463 = 39.84694 ms, which is 463 rows again.
// 640 x 480:
//   d = 433125 - 203 x 640 = 303205; n = 1216875 / 303205 + 1 = 5; 480 is a multiple
//   x = (640 x 5 x 0.0203 + 125) x 16 + 640 = 3679.36; y = 6
//   row = 3679.36 / 6 - 43 = 570.2: 571, at least 650
//   rows = 39.84694 / 0.0436875 = 912.1: 912 = 0x390
constexpr SecondGenerationExposures kFirmware300 = {
    {"0530", "01cf", "cf", "41"},
    {nullptr, "01cf", "cf", "01"},
    {"028a", "0390", "90", "43"},
    {nullptr, "023e", "3e", "02"},
};

// Firmware 3.1.22 at 12 MHz, from 397 rows: 1649 x 6.25e-5 x 397 = 40.91581 ms (the
// clock that opening finds counts as 16 MHz).
//   1280 x 1024: 13330000 / 12 = 1110833; n = 2; row = 1500 / 2 - 43: 1290 again
//   rows = 40.91581 / (1339 x 8.3334e-5 = 0.11158423) = 366.7: 366 = 0x16e
// Read back: 0.11158423 x 366 = 40.83983 ms, which is 366 rows again.
//   640 x 480: 6930000 / 12 = 577500; n = 3; row = 1500 / 3 - 43 = 457: 650 again
//   rows = 40.83983 / (699 x 8.3334e-5 = 0.05825047) = 701.1: 701 = 0x2bd
// 25.1 ms: 25.1 / 0.05825047 = 430.9: 430 = 0x1ae; frame at least 481 = 0x1e1 rows.
constexpr SecondGenerationExposures kAt12MHz = {
    {"050a", "016e", "6e", "41"},
    {nullptr, "016e", "6e", "01"},
    {"028a", "02bd", "bd", "42"},
    {nullptr, "01e1", "ae", "01"},
};

}  // namespace

Transcript SecondGenerationTranscript() { return SecondGeneration(kFirmware3122, false, false); }

Transcript SecondGenerationTranscriptOfFirmware300() {
  return SecondGeneration(kFirmware300, false, false);
}

Transcript SecondGenerationMonochromeTranscript() {
  return SecondGeneration(kFirmware3122, false, true);
}

Transcript SecondGenerationTranscriptAt12MHz() { return SecondGeneration(kAt12MHz, true, false); }

}  // namespace ormidex::testing
