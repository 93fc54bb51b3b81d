// Runs auto exposure and white balance on simulated cameras and prints what they
// did, one comma-separated record a line; scripts/automation_report.py makes the
// tables and plots of docs/automation.md of it.
#include <cstdio>
#include <string>
#include <vector>

#include "automation/exposure_laws.h"
#include "automation/loop_camera.h"

namespace ormidex::automation {
namespace {

constexpr std::uint32_t kWidth = 640;
constexpr std::uint32_t kHeight = 480;
constexpr SiteRectangle kWhole = {0, 0, kWidth, kHeight};
constexpr SiteRectangle kPart = {200, 140, 440, 340};

struct Case {
  int generation;
  const char* imager;
  std::uint32_t bits;
  bool rectangle;
  std::string scene;

  std::string Keys() const {
    return "generation=" + std::to_string(generation) + ",imager=" + imager + "," + scene;
  }
  const SiteRectangle& Area() const { return rectangle ? kPart : kWhole; }
};

bool Start(LoopCamera& camera, const Case& c) {
  if (!camera.Start(kWidth, kHeight, c.bits)) {
    std::fprintf(stderr, "automation_loops: %s\n", camera.Error().c_str());
    return false;
  }
  camera.Watch(c.Area());
  camera.Measure();
  camera.TakePasses();
  return true;
}

std::uint32_t Brightness(const Case& c, const SiteLevels& levels) {
  return std::string(c.imager) == "mono" ? MonoBrightness(levels) : ColourBrightness(levels);
}

// Exposure rows are written by their two bytes one after the other, of which the
// recorder sees the last; the time is what tells.
std::vector<LoopPass> Expose(LoopCamera& camera, const Case& c, std::uint32_t percent,
                             Status* status) {
  const SiteRectangle& area = c.Area();
  *status = camera->AutoExposure(percent, c.rectangle ? 1 : 0, area.left, area.top,
                                 area.right - area.left, area.bottom - area.top);
  return camera.TakePasses();
}

std::vector<LoopPass> Balance(LoopCamera& camera, const Case& c, Status* status) {
  const SiteRectangle& area = c.Area();
  *status = camera->WhiteBalance(c.rectangle ? 1 : 0, area.left, area.top, area.right - area.left,
                                 area.bottom - area.top, 1, 1, 1);
  return camera.TakePasses();
}

void PrintCase(const char* kind, const Case& c) {
  std::printf("%s,%d,%s,%u,%s,\"%s\"", kind, c.generation, c.imager, c.bits,
              c.rectangle ? "part" : "whole", c.scene.c_str());
}

void PrintExposure(const Case& c, std::uint32_t percent) {
  LoopCamera camera(c.Keys());
  if (!Start(camera, c)) return;
  Status status = kOk;
  const auto passes = Expose(camera, c, percent, &status);
  float milliseconds = 0.0f;
  camera->GetExposureTime(&milliseconds);
  PrintCase("exposure", c);
  std::printf(",%u,%u,%zu,%u,%.3f\n", percent, status, passes.size() - 1,
              Brightness(c, passes.back().levels), static_cast<double>(milliseconds));
}

std::size_t GainWrites(const Case& c, const std::vector<LoopPass>& passes) {
  std::size_t count = 0;
  for (const LoopPass& pass : passes) count += pass.setting.size() == (c.generation == 2 ? 4u : 3u);
  return count;
}

void PrintBalance(const Case& c) {
  LoopCamera camera(c.Keys());
  if (!Start(camera, c)) return;
  const SiteLevels before = camera.Measure();
  camera.TakePasses();
  Status status = kOk;
  const auto passes = Balance(camera, c, &status);
  const SiteLevels after = camera.Measure();
  PrintCase("balance", c);
  std::printf(",%u,%zu,%u,%u,%u,%u,%u,%u,%u,%u,%u,%u,%u\n", status, GainWrites(c, passes),
              before.red, before.green1, before.green2, before.blue, after.red, after.green1,
              after.green2, after.blue, camera->gains.red, camera->gains.green, camera->gains.blue);
}

void PrintPlot(const char* law, const Case& c, bool exposure) {
  LoopCamera camera(c.Keys());
  if (!Start(camera, c)) return;
  Status status = kOk;
  const auto passes = exposure ? Expose(camera, c, 50, &status) : Balance(camera, c, &status);
  int number = 0;
  for (const LoopPass& pass : passes) {
    const SiteLevels& levels = pass.levels;
    std::printf("plot,%s,%d,%u,%u,%u,%u,%u\n", law, number++, levels.red, levels.green1,
                levels.green2, levels.blue, Brightness(c, levels));
  }
}

constexpr const char* kDark = "scene=chart,light=0.15";
constexpr const char* kMixed = "scene=chart,light=1";
constexpr const char* kBright = "scene=chart,light=6";

void PrintExposures() {
  for (const int generation : {1, 2}) {
    for (const char* scene : {kDark, kMixed, kBright}) {
      for (const std::uint32_t percent : {0u, 25u, 50u, 75u, 100u}) {
        PrintExposure({generation, "colour", 8, false, scene}, percent);
      }
    }
    for (const char* imager : {"colour", "mono"}) {
      for (const std::uint32_t bits : {8u, 16u}) {
        for (const bool rectangle : {false, true}) {
          PrintExposure({generation, imager, bits, rectangle, kBright}, 40);
        }
      }
    }
  }
}

void PrintBalances() {
  for (const int generation : {1, 2}) {
    for (const char* tint : {"neutral", "tungsten", "daylight", "green"}) {
      for (const std::uint32_t bits : {8u, 16u}) {
        for (const bool rectangle : {false, true}) {
          PrintBalance({generation, "colour", bits, rectangle,
                        std::string("scene=chart,light=1,tint=") + tint});
        }
      }
    }
  }
}

}  // namespace
}  // namespace ormidex::automation

int main() {
  using namespace ormidex::automation;
  PrintExposures();
  PrintBalances();
  PrintPlot("bisection", {1, "colour", 8, false, kBright}, true);
  PrintPlot("proportional", {2, "colour", 8, false, kDark}, true);
  PrintPlot("older-balance", {1, "colour", 8, false, "scene=chart,light=1,tint=daylight"}, false);
  PrintPlot("newer-balance", {2, "colour", 8, true, "scene=chart,light=4,tint=tungsten"}, false);
  return 0;
}
