// A live view, with keys on the terminal.
#include <chrono>
#include <cstdio>
#include <memory>

#ifdef _WIN32
#include <conio.h>
#include <windows.h>
#else
#include <poll.h>
#include <termios.h>
#include <unistd.h>
#endif

#include "camera.h"
#include "commands.h"
#include "exit_code.h"
#include "interrupt.h"
#include "output.h"
#include "pause.h"

namespace ormidex_tool {

namespace {

struct PreviewOptions {
  CameraOptions camera;
  std::string save = "preview-####.bmp";
  OrmidexUInt32 algorithm = ORMIDEX_BILINEAR;
  double seconds = 0.0;
  bool force = false;
};

constexpr OrmidexUInt32 kAlgorithms[] = {1, 2, 3, 4, 5, 16, 17, 18, 255, 0};
constexpr OrmidexUInt32 kVisibleWindow = 0x10CF0000;  // an ordinary window, visible

// Single keys, without waiting and without echo, while it lives.
class Keyboard {
 public:
#ifdef _WIN32
  int Key() { return _kbhit() ? _getch() : 0; }
#else
  Keyboard() : terminal_(isatty(STDIN_FILENO) != 0 && tcgetattr(STDIN_FILENO, &before_) == 0) {
    if (!terminal_) return;
    termios single = before_;
    single.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    tcsetattr(STDIN_FILENO, TCSANOW, &single);
  }
  ~Keyboard() {
    if (terminal_) tcsetattr(STDIN_FILENO, TCSANOW, &before_);
  }
  Keyboard(const Keyboard&) = delete;
  Keyboard& operator=(const Keyboard&) = delete;

  int Key() {
    pollfd source = {STDIN_FILENO, POLLIN, 0};
    unsigned char key = 0;
    if (ended_ || poll(&source, 1, 0) <= 0) return 0;
    if (read(STDIN_FILENO, &key, 1) == 1) return key;
    ended_ = true;  // no more keys will come
    return 0;
  }

 private:
  termios before_ = {};
  bool terminal_;
  bool ended_ = false;
#endif
};

// On Windows the preview's messages arrive on the thread that opened it.
void HandleWindowMessages() {
#ifdef _WIN32
  MSG message;
  while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
    TranslateMessage(&message);
    DispatchMessageA(&message);
  }
#endif
}

class LiveView {
 public:
  LiveView(Camera& camera, const PreviewOptions& options) : camera_(camera), options_(options) {
    if (camera_.IsColour()) SetAlgorithm(options.algorithm);
    const OrmidexStatus status =
        OrmidexStartPreview(camera.handle(), "Ormidex preview", kVisibleWindow, 40, 40,
                            ORMIDEX_FRAME_SIZE, ORMIDEX_FRAME_SIZE, nullptr, 0, 0, 0);
    if (status == ORMIDEX_OUT_OF_RANGE) {
      throw ToolError(kExitFailure, "the preview window could not be opened; is there a display?");
    }
    Check(status, "starting the preview");
  }
  ~LiveView() { OrmidexStopPreview(camera_.handle()); }
  LiveView(const LiveView&) = delete;
  LiveView& operator=(const LiveView&) = delete;

  void ShowRate() const {
    OrmidexUInt32 rate = 0;
    if (IsQuiet() || OrmidexGetCurrentFrameRate(camera_.handle(), &rate) != ORMIDEX_OK) return;
    fmt::print(stderr, "\r{} frames/s, conversion {}   ", rate, algorithm_);
    std::fflush(stderr);
  }

  // False when the user wants to end. A failure is said and the view goes on.
  bool Do(int key) {
    try {
      switch (key) {
        case 'q':
          return false;
        case 's':
          Save();
          break;
        case 'a':
          NextAlgorithm();
          break;
        case 'e':
          Check(OrmidexAutoExposure(camera_.handle(), 50, 0, 0, 0, 0, 0), "auto exposure");
          break;
        case 'w':
          Check(OrmidexWhiteBalance(camera_.handle(), 0, 0, 0, 0, 0, 1, 1, 1), "white balance");
          break;
        default:
          break;
      }
    } catch (const ToolError& error) {
      Say("\n{}", error.what());
    }
    return true;
  }

 private:
  void SetAlgorithm(OrmidexUInt32 algorithm) {
    Check(OrmidexSetPreviewColorConversion(camera_.handle(), algorithm), "setting the conversion");
    algorithm_ = algorithm;
  }
  void NextAlgorithm() {
    std::size_t i = 0;
    while (i + 1 < std::size(kAlgorithms) && kAlgorithms[i] != algorithm_) ++i;
    SetAlgorithm(kAlgorithms[(i + 1) % std::size(kAlgorithms)]);
  }
  // The preview leaves the stream alone while a frame is read for the file.
  void Save() {
    const Geometry geometry = camera_.ReadGeometry();
    std::vector<unsigned char> frame(geometry.FrameBytes());
    OrmidexPausePreview(camera_.handle(), 1);
    camera_.ReadFrame(frame);
    OrmidexPausePreview(camera_.handle(), 0);
    const std::string path = NumberedPath(options_.save, saved_++);
    RefuseOverwriting(path, options_.force);
    FrameWriter(camera_, geometry, {FormatOf(path), algorithm_}).Write(frame, path);
    Say("\n{}", path);
  }

  Camera& camera_;
  const PreviewOptions& options_;
  OrmidexUInt32 algorithm_ = ORMIDEX_BILINEAR;
  std::uint64_t saved_ = 0;
};

void RunPreview(const PreviewOptions& options) {
  FormatOf(options.save);
  Camera camera = options.camera.Open();
  LiveView view(camera, options);
  CatchInterrupts();
  Keyboard keyboard;
  Say("keys: s save, e auto exposure, w white balance, a next algorithm, q quit");
  const auto start = std::chrono::steady_clock::now();
  for (int round = 0; !Interrupted(); ++round) {
    HandleWindowMessages();
    if (!view.Do(keyboard.Key())) break;
    if (round % 50 == 0) view.ShowRate();
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    if (options.seconds > 0.0 && elapsed.count() >= options.seconds) break;
    PauseMilliseconds(10);
  }
  if (!IsQuiet()) std::fputc('\n', stderr);
}

}  // namespace

void AddPreview(CLI::App& app) {
  CLI::App* command = app.add_subcommand("preview", "Show the live picture in a window");
  command->footer(
      "Keys on the terminal: s save, e auto exposure, w white balance, a next\n"
      "algorithm, q quit.");
  auto options = std::make_shared<PreviewOptions>();
  options->camera.AddTo(*command);
  command->add_option("--algorithm", options->algorithm, "Demosaic algorithm code")
      ->capture_default_str();
  command->add_option("--save-as", options->save, "Where the key s saves pictures")
      ->capture_default_str();
  command->add_option("--seconds", options->seconds, "Close the window after so many seconds")
      ->check(CLI::NonNegativeNumber);
  command->add_flag("--force", options->force, "Replace files that exist");
  command->callback([options] { RunPreview(*options); });
}

}  // namespace ormidex_tool
