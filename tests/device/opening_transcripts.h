// Every request of the open sequence, in order, for each kind of camera.
#ifndef ORMIDEX_TESTS_DEVICE_OPENING_TRANSCRIPTS_H_
#define ORMIDEX_TESTS_DEVICE_OPENING_TRANSCRIPTS_H_

#include <cstdint>
#include <string>
#include <vector>

#include "support/model_gateway.h"

namespace ormidex::testing {

struct OpeningStep {
  std::string request;               // as ModelGateway writes it down
  std::uint32_t status_if_it_fails;  // of the opening; 0: it goes on all the same
};
using Transcript = std::vector<OpeningStep>;

// The four first-generation cameras differ in their firmware and imager kind.
struct FirstGenerationCamera {
  bool firmware3 = true;
  bool firmware_variant = false;  // M or C: no flags to read, no GPO lines
  bool monochrome = false;
};

void MakeFirstGeneration(ModelGateway& driver);
Transcript FirstGenerationTranscript(const FirstGenerationCamera& camera);

void MakeSecondGeneration(ModelGateway& driver);
// Exposure rows and row lengths are worked out in opening_transcripts.cpp.
Transcript SecondGenerationTranscript();
Transcript SecondGenerationTranscriptOfFirmware300();
Transcript SecondGenerationMonochromeTranscript();
// The controller's register 0 holds the letter J: it refuses 16 MHz.
Transcript SecondGenerationTranscriptAt12MHz();

}  // namespace ormidex::testing

#endif  // ORMIDEX_TESTS_DEVICE_OPENING_TRANSCRIPTS_H_
