// The request trace: one JSON object a line, literal apart from the times.
#include <gtest/gtest.h>

#include <cctype>
#include <cstdio>
#include <string>
#include <vector>

#include "device/driver_protocol.h"
#include "device/request_trace.h"
#include "support/scripted_gateway.h"

namespace ormidex::testing {
namespace {

using device::DriverRequest;
using device::DriverShare;
using device::RequestTrace;

constexpr char kPath[] = "device_test_trace.jsonl";

// The trace's lines with the digits after "t": and "us": replaced by T.
std::vector<std::string> TraceLines() {
  std::vector<std::string> lines;
  std::FILE* file = std::fopen(kPath, "r");
  if (file == nullptr) return lines;
  std::string line;
  for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file)) {
    if (c != '\n') {
      line += static_cast<char>(c);
      continue;
    }
    for (const char* key : {"\"t\":", "\"us\":"}) {
      const std::size_t start = line.find(key) + std::string(key).size();
      std::size_t end = start;
      while (std::isdigit(static_cast<unsigned char>(line[end])) != 0 || line[end] == '.') ++end;
      line.replace(start, end - start, end > start ? "T" : "missing");
    }
    lines.push_back(line);
    line.clear();
  }
  std::fclose(file);
  return lines;
}

class Trace : public ::testing::Test {
 protected:
  Trace() : trace(driver, kPath) {}
  ~Trace() override { std::remove(kPath); }

  bool Exchange(std::uint32_t code, Bytes& record, std::uint32_t* returned) {
    const auto size = static_cast<std::uint32_t>(record.size());
    return trace.Control(handle, {code, record.data(), size, record.data(), size}, returned);
  }

  ScriptedGateway driver;
  RequestTrace trace;
  device::DriverHandle handle = trace.Open("//./QV \"1\" \\ \t", DriverShare::kShared);
};

TEST_F(Trace, WritesWhatWasSentAndWhatCameBackThoughTheRecordIsAnsweredInPlace) {
  driver.Expect(0x222024, "00000000 01000000 00000000", "00000000 01000000 78563412");
  Bytes record = FromHex("00000000 01000000 00000000");
  std::uint32_t returned = 0;
  EXPECT_TRUE(Exchange(0x222024, record, &returned));
  EXPECT_EQ(returned, 12u);
  EXPECT_EQ(ToHex(record.data(), 12), "00000000 01000000 78563412");
  EXPECT_EQ(TraceLines(),
            std::vector<std::string>{
                R"({"t":T,"camera":"//./QV \"1\" \\ ?","code":"0x222024",)"
                R"("name":"CAM_IOCTL_GET_HARDWARE_WORD","in":"000000000100000000000000",)"
                R"("out":"000000000100000078563412","ok":true,"returned":12,"us":T})"});
}

TEST_F(Trace, WritesAFailedRequestWithoutOutput) {
  driver.ExpectFailure(0x222048, "");
  std::uint32_t returned = 0;
  EXPECT_FALSE(trace.Control(handle, {0x222048, nullptr, 0, nullptr, 0}, &returned));
  EXPECT_EQ(TraceLines(), std::vector<std::string>{
                              R"({"t":T,"camera":"//./QV \"1\" \\ ?","code":"0x222048",)"
                              R"("name":"CAM_IOCTL_STOP_STREAM","in":"","out":"","ok":false,)"
                              R"("returned":0,"us":T})"});
}

TEST_F(Trace, WritesAFrameAsLengthAndChecksum) {
  driver.Expect(0x222045, "", "31323334 35363738 39");  // "123456789"
  Bytes frame(9);
  std::uint32_t returned = 0;
  EXPECT_TRUE(trace.Control(handle, {0x222045, nullptr, 0, frame.data(), 9}, &returned));
  EXPECT_EQ(TraceLines(),
            std::vector<std::string>{R"({"t":T,"camera":"//./QV \"1\" \\ ?","code":"0x222045",)"
                                     R"("name":"CAM_IOCTL_READ_FRAME","in":"",)"
                                     R"("out":{"length":9,"crc32":"0xcbf43926"},"ok":true,)"
                                     R"("returned":9,"us":T})"});
}

TEST_F(Trace, WritesNullForAClosedCameraAndUnknownForAnUnknownCode) {
  EXPECT_TRUE(trace.Close(handle));
  driver.Expect(0x222999, "0102", "03");
  Bytes record = FromHex("0102");
  std::uint32_t returned = 0;
  EXPECT_TRUE(Exchange(0x222999, record, &returned));
  EXPECT_EQ(TraceLines(),
            std::vector<std::string>{R"({"t":T,"camera":null,"code":"0x222999","name":"unknown",)"
                                     R"("in":"0102","out":"03","ok":true,"returned":1,"us":T})"});
}

TEST_F(Trace, KeepsTheOrderOfTheRequests) {
  std::uint32_t returned = 0;
  driver.Expect(0x222170, "");
  driver.Expect(0x222048, "");
  EXPECT_TRUE(trace.Control(handle, {0x222170, nullptr, 0, nullptr, 0}, &returned));
  EXPECT_TRUE(trace.Control(handle, {0x222048, nullptr, 0, nullptr, 0}, &returned));
  const std::vector<std::string> lines = TraceLines();
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_NE(lines[0].find("CAM_IOCTL_FLUSH"), std::string::npos);
  EXPECT_NE(lines[1].find("CAM_IOCTL_STOP_STREAM"), std::string::npos);
}

TEST(TraceWithoutAFile, LetsRequestsThrough) {
  ScriptedGateway driver;
  ::testing::internal::CaptureStderr();
  RequestTrace trace(driver, "no such directory/trace.jsonl");
  const std::string said = ::testing::internal::GetCapturedStderr();
  EXPECT_NE(said.find("no such directory/trace.jsonl"), std::string::npos);
  EXPECT_EQ(said.find('\n'), said.size() - 1) << "one line";
  driver.Expect(0x222170, "");
  std::uint32_t returned = 0;
  EXPECT_TRUE(trace.Control(&driver, {0x222170, nullptr, 0, nullptr, 0}, &returned));
}

TEST(TraceToStderr, WritesItsLinesThere) {
  ScriptedGateway driver;
  driver.Expect(0x222170, "");
  ::testing::internal::CaptureStderr();
  {
    RequestTrace trace(driver, "stderr");
    std::uint32_t returned = 0;
    EXPECT_TRUE(trace.Control(&driver, {0x222170, nullptr, 0, nullptr, 0}, &returned));
  }
  EXPECT_NE(::testing::internal::GetCapturedStderr().find("\"code\":\"0x222170\""),
            std::string::npos);
}

TEST(Crc32, HasItsKnownValues) {
  EXPECT_EQ(device::Crc32("", 0), 0u);
  EXPECT_EQ(device::Crc32("123456789", 9), 0xCBF43926u);
  EXPECT_EQ(device::Crc32("The quick brown fox jumps over the lazy dog", 43), 0x414FA339u);
  const std::uint8_t zeros[32] = {};
  EXPECT_EQ(device::Crc32(zeros, 32), 0x190A55ADu);
}

TEST(ControlCodeName, NamesEveryRequest) {
  const std::pair<std::uint32_t, const char*> names[] = {
      {0x222000, "CAM_IOCTL_READ_REGISTERS"},
      {0x222004, "CAM_IOCTL_WRITE_REGISTERS"},
      {0x22200C, "CAM_IOCTL_GPIO"},
      {0x222010, "CAM_IOCTL_SET_TRANSFER_SIZE"},
      {0x222018, "CAM_IOCTL_GET_FIRMWARE_VERSION"},
      {0x222020, "CAM_IOCTL_GET_IMAGER_CHIP_ID"},
      {0x222024, "CAM_IOCTL_GET_HARDWARE_WORD"},
      {0x222028, "CAM_IOCTL_LOAD_LOOKUP_TABLE"},
      {0x22202C, "CAM_IOCTL_SET_TIMEOUT"},
      {0x222030, "CAM_IOCTL_GET_NAME_STRING_1"},
      {0x222034, "CAM_IOCTL_GET_NAME_STRING_2"},
      {0x222040, "CAM_IOCTL_START_STREAM"},
      {0x222045, "CAM_IOCTL_READ_FRAME"},
      {0x222048, "CAM_IOCTL_STOP_STREAM"},
      {0x222054, "CAM_IOCTL_PAUSE_STREAM"},
      {0x222058, "CAM_IOCTL_RESUME_STREAM"},
      {0x222088, "CAM_IOCTL_SET_VIDEO_MODE"},
      {0x2220A0, "CAM_IOCTL_STILL_FRAME"},
      {0x2220A4, "CAM_IOCTL_TRIGGER_MODE"},
      {0x2220C0, "CAM_IOCTL_GET_FRAME_NUMBER"},
      {0x2220E4, "CAM_IOCTL_READ_COMMAND"},
      {0x2220E8, "CAM_IOCTL_WRITE_COMMAND"},
      {0x222100, "CAM_IOCTL_SET_FLIP"},
      {0x222170, "CAM_IOCTL_FLUSH"},
      {0x2223CC, "CAM_IOCTL_ENUMERATE"},
      {0x2223FC, "CAM_IOCTL_COMMAND_REGISTER"},
  };
  for (const auto& [code, name] : names) EXPECT_STREQ(device::ControlCodeName(code), name);
  EXPECT_STREQ(device::ControlCodeName(0x222001), "unknown");
}

}  // namespace
}  // namespace ormidex::testing
