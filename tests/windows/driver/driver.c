/*
 * A WDM driver whose cameras are simulated: what the library meets on a machine
 * with real ones, device objects, buffered and direct requests, share modes,
 * pending reads, failing requests and a driver that is taken away.
 *
 * Device N is \\.\ormcamN. Requests are answered by backend.cpp.
 */
#include <ntddk.h>

#include "backend.h"

enum { kMaxCameras = 8 };

struct CameraDevice {
  unsigned index;
};

static PDEVICE_OBJECT devices[kMaxCameras];
static unsigned device_count;

#define CALLBACK_CODE __attribute__((force_align_arg_pointer))

/* --- Names ----------------------------------------------------------------- */

/* Appends the camera's number to a prefix that ends with a place for it. */
static UNICODE_STRING NumberedName(WCHAR* text, unsigned index) {
  UNICODE_STRING name;
  unsigned length = 0;
  while (text[length] != 0) ++length;
  text[length - 1] = (WCHAR)('0' + index);
  name.Buffer = text;
  name.Length = (USHORT)(length * sizeof(WCHAR));
  name.MaximumLength = name.Length;
  return name;
}

#define DEVICE_NAME(variable, index)              \
  WCHAR variable##_text[] = L"\\Device\\ormcam#"; \
  UNICODE_STRING variable = NumberedName(variable##_text, index)
#define LINK_NAME(variable, index)                    \
  WCHAR variable##_text[] = L"\\DosDevices\\ormcam#"; \
  UNICODE_STRING variable = NumberedName(variable##_text, index)

/* --- Requests -------------------------------------------------------------- */

static NTSTATUS Complete(PIRP irp, NTSTATUS status, ULONG_PTR bytes) {
  irp->IoStatus.Status = status;
  irp->IoStatus.Information = bytes;
  IoCompleteRequest(irp, IO_NO_INCREMENT);
  return status;
}

static CALLBACK_CODE NTSTATUS NTAPI OnCreate(PDEVICE_OBJECT device, PIRP irp) {
  const struct CameraDevice* camera = device->DeviceExtension;
  PIO_STACK_LOCATION stack = IoGetCurrentIrpStackLocation(irp);
  void* opened = CameraBackendOpen(camera->index, stack->Parameters.Create.ShareAccess != 0);
  stack->FileObject->FsContext = opened;
  return Complete(irp, opened != NULL ? STATUS_SUCCESS : STATUS_SHARING_VIOLATION, 0);
}

static CALLBACK_CODE NTSTATUS NTAPI OnClose(PDEVICE_OBJECT device, PIRP irp) {
  PIO_STACK_LOCATION stack = IoGetCurrentIrpStackLocation(irp);
  (void)device;
  if (stack->FileObject->FsContext != NULL) CameraBackendClose(stack->FileObject->FsContext);
  return Complete(irp, STATUS_SUCCESS, 0);
}

/* Output memory: the system's copy, or for direct requests the caller's own. */
static void* OutputOf(PIRP irp, ULONG code) {
  if ((code & 3) == METHOD_BUFFERED) return irp->AssociatedIrp.SystemBuffer;
  if (irp->MdlAddress == NULL) return NULL;
  return MmGetSystemAddressForMdlSafe(irp->MdlAddress, NormalPagePriority);
}

static NTSTATUS Answer(PIRP irp) {
  PIO_STACK_LOCATION stack = IoGetCurrentIrpStackLocation(irp);
  const ULONG code = stack->Parameters.DeviceIoControl.IoControlCode;
  unsigned long returned = 0;
  const int done =
      CameraBackendControl(stack->FileObject->FsContext, code, irp->AssociatedIrp.SystemBuffer,
                           stack->Parameters.DeviceIoControl.InputBufferLength, OutputOf(irp, code),
                           stack->Parameters.DeviceIoControl.OutputBufferLength, &returned);
  return Complete(irp, done ? STATUS_SUCCESS : STATUS_UNSUCCESSFUL, done ? returned : 0);
}

static CALLBACK_CODE void NTAPI AnswerLater(PVOID irp) {
  Answer(irp);
  PsTerminateSystemThread(STATUS_SUCCESS);
}

/*
 * Each request is answered on a thread of its own: a frame read waits for the
 * camera, and must hold up neither other requests nor other cameras.
 */
static CALLBACK_CODE NTSTATUS NTAPI OnControl(PDEVICE_OBJECT device, PIRP irp) {
  HANDLE thread;
  (void)device;
  IoMarkIrpPending(irp);
  if (PsCreateSystemThread(&thread, THREAD_ALL_ACCESS, NULL, NULL, NULL, AnswerLater, irp) !=
      STATUS_SUCCESS) {
    Complete(irp, STATUS_INSUFFICIENT_RESOURCES, 0);
    return STATUS_PENDING;
  }
  ZwClose(thread);
  return STATUS_PENDING;
}

/* --- Coming and going ------------------------------------------------------ */

static NTSTATUS AddCamera(PDRIVER_OBJECT driver, unsigned index) {
  DEVICE_NAME(name, index);
  LINK_NAME(link, index);
  NTSTATUS status = IoCreateDevice(driver, sizeof(struct CameraDevice), &name, FILE_DEVICE_UNKNOWN,
                                   0, FALSE, &devices[index]);
  if (status != STATUS_SUCCESS) return status;
  ((struct CameraDevice*)devices[index]->DeviceExtension)->index = index;
  devices[index]->Flags &= ~(ULONG)DO_DEVICE_INITIALIZING;
  return IoCreateSymbolicLink(&link, &name);
}

static CALLBACK_CODE void NTAPI OnUnload(PDRIVER_OBJECT driver) {
  unsigned index;
  (void)driver;
  CameraBackendStop();
  for (index = 0; index < device_count; ++index) {
    LINK_NAME(link, index);
    IoDeleteSymbolicLink(&link);
    IoDeleteDevice(devices[index]);
  }
}

CALLBACK_CODE NTSTATUS NTAPI DriverEntry(PDRIVER_OBJECT driver, PUNICODE_STRING registry_path) {
  unsigned wanted = CameraBackendStart();
  (void)registry_path;
  if (wanted == 0) return STATUS_NO_SUCH_DEVICE;
  if (wanted > kMaxCameras) wanted = kMaxCameras;
  driver->MajorFunction[IRP_MJ_CREATE] = OnCreate;
  driver->MajorFunction[IRP_MJ_CLOSE] = OnClose;
  driver->MajorFunction[IRP_MJ_DEVICE_CONTROL] = OnControl;
  driver->DriverUnload = OnUnload;
  for (device_count = 0; device_count < wanted; ++device_count) {
    const NTSTATUS status = AddCamera(driver, device_count);
    if (status != STATUS_SUCCESS) return status;
  }
  return STATUS_SUCCESS;
}
