/*
 * The cameras behind the virtual kernel driver: the simulator in a DLL of its own,
 * because the kernel's headers are C only.
 *
 * Which cameras there are is the text of the value Cameras (REG_SZ) under
 * HKLM\SYSTEM\CurrentControlSet\Services\ormcam\Parameters.
 */
#ifndef ORMIDEX_TESTS_WINDOWS_DRIVER_BACKEND_H_
#define ORMIDEX_TESTS_WINDOWS_DRIVER_BACKEND_H_

#ifdef __cplusplus
extern "C" {
#endif

/* Returns the number of cameras; 0 also when the text cannot be read. */
unsigned CameraBackendStart(void);
/* Pulls all cameras: waiting requests end, later ones fail. */
void CameraBackendStop(void);

/* Null when the camera cannot be opened like this. */
void* CameraBackendOpen(unsigned index, int shared);
int CameraBackendControl(void* camera, unsigned long code, const void* in, unsigned long in_bytes,
                         void* out, unsigned long out_bytes, unsigned long* returned);
void CameraBackendClose(void* camera);

#ifdef __cplusplus
}
#endif

#endif /* ORMIDEX_TESTS_WINDOWS_DRIVER_BACKEND_H_ */
