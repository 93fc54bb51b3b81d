#include "platform/driver_file.h"

#include <windows.h>
// After windows.h, whose types they use.
#include <ocidl.h>
#include <oleauto.h>
#include <strmif.h>

namespace ormidex::platform {
namespace {

constexpr CLSID kSystemDeviceEnumerator = {
    0x62BE5D10, 0x60EB, 0x11D0, {0xBD, 0x3B, 0x00, 0xA0, 0xC9, 0x11, 0xCE, 0x86}};
constexpr IID kCreateDeviceEnumeratorInterface = {
    0x29840822, 0x5B84, 0x11D0, {0xBD, 0x3B, 0x00, 0xA0, 0xC9, 0x11, 0xCE, 0x86}};
constexpr CLSID kVideoInputDeviceCategory = {
    0x860BB310, 0x5D01, 0x11D0, {0xBD, 0x3B, 0x00, 0xA0, 0xC9, 0x11, 0xCE, 0x86}};
constexpr IID kPropertyBagInterface = {
    0x55272A00, 0x42CB, 0x11CE, {0x81, 0x35, 0x00, 0xAA, 0x00, 0x4B, 0xB8, 0x51}};

// Owns one reference to a COM object.
template <typename Interface>
class ComReference {
 public:
  ComReference() = default;
  ~ComReference() {
    if (object_ != nullptr) {
      object_->Release();
    }
  }
  ComReference(const ComReference&) = delete;
  ComReference& operator=(const ComReference&) = delete;

  Interface* operator->() const { return object_; }
  Interface* Get() const { return object_; }
  Interface** Receive() { return &object_; }
  void** ReceiveUntyped() { return reinterpret_cast<void**>(&object_); }

 private:
  Interface* object_ = nullptr;
};

HRESULT EnumerateCategory(IEnumMoniker** monikers) {
  ComReference<ICreateDevEnum> devices;
  const HRESULT created =
      CoCreateInstance(kSystemDeviceEnumerator, nullptr, CLSCTX_INPROC_SERVER,
                       kCreateDeviceEnumeratorInterface, devices.ReceiveUntyped());
  if (FAILED(created)) {
    return created;
  }
  return devices->CreateClassEnumerator(kVideoInputDeviceCategory, monikers, 0);
}

}  // namespace

DriverFile OpenDriverFile(const char* path, bool shared) noexcept {
  const DWORD share = shared ? FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE : 0;
  const HANDLE file = CreateFileA(path, GENERIC_READ | GENERIC_WRITE, share, nullptr, OPEN_EXISTING,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
  return file == INVALID_HANDLE_VALUE ? nullptr : file;
}

bool ControlDriverFile(DriverFile file, std::uint32_t code, const void* in, std::uint32_t in_bytes,
                       void* out, std::uint32_t out_bytes, std::uint32_t* returned) noexcept {
  DWORD bytes = 0;
  const BOOL done =
      DeviceIoControl(file, code, const_cast<void*>(in), in_bytes, out, out_bytes, &bytes, nullptr);
  *returned = done ? bytes : 0;
  return done != FALSE;
}

bool CloseDriverFile(DriverFile file) noexcept { return CloseHandle(file) != FALSE; }

void EnterComApartment() noexcept { static_cast<void>(CoInitialize(nullptr)); }
void LeaveComApartment() noexcept { CoUninitialize(); }

bool ReadVideoDeviceProperty(void* context, VideoDeviceProperty property,
                             char (&text)[kVideoDeviceTextBytes]) noexcept {
  text[0] = '\0';
  VARIANT value = {};
  value.vt = VT_BSTR;
  const wchar_t* name =
      property == VideoDeviceProperty::kFriendlyName ? L"FriendlyName" : L"DevicePath";
  if (FAILED(static_cast<IPropertyBag*>(context)->Read(name, &value, nullptr))) {
    return false;
  }
  WideCharToMultiByte(CP_ACP, 0, value.bstrVal, -1, text, static_cast<int>(kVideoDeviceTextBytes),
                      nullptr, nullptr);
  // A text that is too long is cut without its zero.
  text[kVideoDeviceTextBytes - 1] = '\0';
  SysFreeString(value.bstrVal);
  return true;
}

VideoDeviceWalk WalkVideoDevices(bool (*visit)(void* user, void* context), void* user) noexcept {
  ComReference<IEnumMoniker> monikers;
  const HRESULT enumerated = EnumerateCategory(monikers.Receive());
  if (enumerated == S_FALSE) {
    return VideoDeviceWalk::kEmptyCategory;
  }
  if (enumerated != S_OK) {
    return VideoDeviceWalk::kUnavailable;
  }
  monikers->Reset();
  for (bool wanted = true; wanted;) {
    ComReference<IMoniker> moniker;
    if (monikers->Next(1, moniker.Receive(), nullptr) != S_OK) {
      break;
    }
    ComReference<IPropertyBag> properties;
    if (SUCCEEDED(moniker->BindToStorage(nullptr, nullptr, kPropertyBagInterface,
                                         properties.ReceiveUntyped()))) {
      wanted = visit(user, properties.Get());
    }
  }
  return VideoDeviceWalk::kListed;
}

}  // namespace ormidex::platform
