// The description of the cameras and its mistakes.
#include "simulator/description.h"

#include <gtest/gtest.h>

#include "device/driver_protocol.h"
#include "simulator/create.h"
#include "simulator/simulator.h"

namespace ormidex::simulator {
namespace {

std::vector<CameraDescription> Parse(const char* text) {
  std::vector<CameraDescription> cameras;
  std::string error;
  EXPECT_TRUE(ParseDescription(text, &cameras, &error)) << error;
  EXPECT_EQ(error, "");
  return cameras;
}

std::string Mistake(const char* text) {
  std::vector<CameraDescription> cameras(3);
  std::string error;
  EXPECT_FALSE(ParseDescription(text, &cameras, &error));
  EXPECT_TRUE(cameras.empty());
  EXPECT_EQ(error.find('\n'), std::string::npos);
  return error;
}

TEST(Description, ANumberAsksForThatManyColourCamerasOfTheSecondGeneration) {
  const auto cameras = Parse("3");
  ASSERT_EQ(cameras.size(), 3u);
  for (const CameraDescription& camera : cameras) {
    EXPECT_EQ(camera.generation, 2);
    EXPECT_TRUE(camera.colour);
    EXPECT_GE(camera.firmware, 0x03012200u);
    EXPECT_EQ(camera.type_name, "Torvenal(tm) 1394 Camera");
    EXPECT_EQ(camera.scene, SceneKind::kChart);
    EXPECT_EQ(camera.pace, Pace::kReal);
  }
  EXPECT_NE(cameras[0].serial, cameras[1].serial);
}

TEST(Description, AnEmptyTextOrZeroDescribesNoCamera) {
  EXPECT_TRUE(Parse("").empty());
  EXPECT_TRUE(Parse("0").empty());
}

TEST(Description, EveryKeyIsUnderstood) {
  const auto cameras = Parse(
      "generation=1,imager=mono,phase=2,firmware=0x02020001,serial=0xAB,type-name=X y,name=Z,"
      "clock-letter=J,oscillator=external,filter=cmy,imager-answer=0x31,scene=grey:77,"
      "lens=640x480,light=1.5,tint=0.5:1:2,noise=2.25,seed=9,pace=fast,trigger=software:25,"
      "timeout=100,command-piece=40,command-delay=3,command-refuse=2,fault=never;2");
  ASSERT_EQ(cameras.size(), 3u);
  const CameraDescription& camera = cameras[0];
  EXPECT_EQ(camera.generation, 1);
  EXPECT_FALSE(camera.colour);
  EXPECT_EQ(camera.phase, 2);
  EXPECT_EQ(camera.firmware, 0x02020001u);
  EXPECT_EQ(camera.serial, 0xABu);
  EXPECT_EQ(camera.type_name, "X y");
  EXPECT_EQ(camera.name, "Z");
  EXPECT_EQ(camera.clock_letter, 'J');
  EXPECT_TRUE(camera.external_oscillator);
  EXPECT_TRUE(camera.cmy_filter);
  EXPECT_EQ(camera.imager_answer, 0x31);
  EXPECT_EQ(camera.scene, SceneKind::kGrey);
  EXPECT_EQ(camera.grey_level, 77u);
  EXPECT_EQ(camera.lens_width, 640u);
  EXPECT_EQ(camera.lens_height, 480u);
  EXPECT_DOUBLE_EQ(camera.light, 1.5);
  EXPECT_DOUBLE_EQ(camera.tint.red, 0.5);
  EXPECT_DOUBLE_EQ(camera.tint.green, 1.0);
  EXPECT_DOUBLE_EQ(camera.tint.blue, 2.0);
  EXPECT_DOUBLE_EQ(camera.noise, 2.25);
  EXPECT_EQ(camera.seed, 9u);
  EXPECT_EQ(camera.pace, Pace::kFast);
  EXPECT_EQ(camera.trigger, TriggerSource::kSoftware);
  EXPECT_DOUBLE_EQ(camera.trigger_hertz, 25.0);
  EXPECT_EQ(camera.timeout_ms, 100u);
  EXPECT_EQ(camera.command_piece, 40u);
  EXPECT_EQ(camera.command_delay_ms, 3u);
  EXPECT_EQ(camera.command_refusals, 2u);
  ASSERT_EQ(camera.faults.size(), 1u);
  EXPECT_EQ(camera.faults[0].kind, FaultKind::kNever);
  EXPECT_EQ(cameras[2].generation, 2);
}

TEST(Description, AFilePathMayHoldAColonAndSpaces) {
  const auto cameras = Parse("scene=file:C:\\My pictures\\a.png,pace=fast");
  EXPECT_EQ(cameras[0].scene, SceneKind::kFile);
  EXPECT_EQ(cameras[0].scene_path, "C:\\My pictures\\a.png");
}

TEST(Description, SoftwareTriggerAloneHasNoRate) {
  EXPECT_DOUBLE_EQ(Parse("trigger=software")[0].trigger_hertz, 0.0);
  EXPECT_DOUBLE_EQ(Parse("trigger=hardware:2.5")[0].trigger_hertz, 2.5);
}

TEST(Description, FaultsNameTheRequestByWordOrCode) {
  const auto cameras = Parse(
      "fault=fail:write-registers:3,fault=fail:0x222045,fault=status:any:0x80000005:2,"
      "fault=late:250:4,fault=short:read-frame:100,fault=random:50,fault=unplug:9:2,"
      "fault=overrun");
  const std::vector<Fault>& faults = cameras[0].faults;
  ASSERT_EQ(faults.size(), 8u);
  EXPECT_EQ(faults[0].code, device::CAM_IOCTL_WRITE_REGISTERS);
  EXPECT_EQ(faults[0].nth, 3u);
  EXPECT_EQ(faults[1].code, device::CAM_IOCTL_READ_FRAME);
  EXPECT_EQ(faults[1].nth, kEveryTime);
  EXPECT_EQ(faults[2].code, kAnyCode);
  EXPECT_EQ(faults[2].value, 0x80000005u);
  EXPECT_EQ(faults[2].nth, 2u);
  EXPECT_EQ(faults[3].value, 250u);
  EXPECT_EQ(faults[3].nth, 4u);
  EXPECT_EQ(faults[4].value, 100u);
  EXPECT_EQ(faults[5].value, 50u);
  EXPECT_EQ(faults[6].nth, 9u);
  EXPECT_EQ(faults[6].value, 2u);
  EXPECT_EQ(faults[7].kind, FaultKind::kOverrun);
}

TEST(DescriptionMistakes, AreReportedInOneLineThatNamesThePlace) {
  EXPECT_EQ(Mistake("generatoin=2"), "camera entry 1, character 1: unknown key 'generatoin'");
  EXPECT_EQ(Mistake("1;imager=mono,generation=3"),
            "camera entry 2, character 15: generation is 1 or 2, not '3'");
  EXPECT_EQ(Mistake("two"),
            "camera entry 1, character 1: expected key=value or a number of cameras, found 'two'");
  EXPECT_EQ(Mistake("seed=1,oops"),
            "camera entry 1, character 8: expected key=value, found 'oops'");
}

TEST(DescriptionMistakes, EveryValueOutOfItsRangeIsRefused) {
  for (const char* text : {"imager=color",
                           "phase=3",
                           "firmware=0xG",
                           "serial=",
                           "serial=0x100000000",
                           "clock-letter=AB",
                           "oscillator=on",
                           "filter=none",
                           "imager-answer=256",
                           "scene=gray:1",
                           "scene=grey:256",
                           "scene=file:",
                           "lens=640",
                           "lens=8x480",
                           "light=-1",
                           "light=1e3",
                           "light=1001",
                           "tint=red",
                           "tint=1:2",
                           "noise=65",
                           "pace=slow",
                           "trigger=laser",
                           "trigger=hardware:",
                           "timeout=soon",
                           "command-piece=0",
                           "command-piece=97",
                           "command-refuse=never",
                           "65",
                           "60;5",
                           "1;;1",
                           ";",
                           "1,",
                           "fault=",
                           "fault=explode",
                           "fault=fail",
                           "fault=fail:read-film",
                           "fault=fail:any:0",
                           "fault=status:any",
                           "fault=never:1:2",
                           "fault=unplug"}) {
    EXPECT_NE(Mistake(text).find("camera entry"), std::string::npos) << text;
  }
}

TEST(DescriptionMistakes, GiveNoCamera) {
  std::string error;
  EXPECT_EQ(CreateFromDescription("pace=slow", &error), nullptr);
  EXPECT_EQ(error, "camera entry 1, character 1: pace is real or fast, not 'slow'");
  EXPECT_EQ(CreateFromDescription("1;scene=file:/nowhere/at-all.png", &error), nullptr);
  EXPECT_EQ(error,
            "camera 2, scene: cannot read a PNG, JPEG, PGM or PPM picture from "
            "'/nowhere/at-all.png'");
  EXPECT_NE(CreateFromDescription("1", &error), nullptr);
  EXPECT_EQ(error, "");
}

}  // namespace
}  // namespace ormidex::simulator
