#include "kivtools/c/Paths.h"

#include "kivtools/WinUtil/Paths.h"
#include "package/c/Abi.h"

using namespace kiv::c;

extern "C" {

KivLength KivGetMyDocumentsFolder(char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [] { return kiv::GetMyDocumentsFolder(); });
}

KivLength KivGetDesktopPath(char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [] { return kiv::GetDesktopPath(); });
}

KivLength KivGetAppDataFolder(char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [] { return kiv::GetAppDataFolder(); });
}

KivLength KivRemoveDoubleSlash(const char* path, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::RemoveDoubleSlash(KIV_TEXT(path, length)); });
}

KivLength KivReadWindowsTempPath(char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [] { return kiv::ReadWindowsTempPath(); });
}

KivLength KivTempFilePath(char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [] { return kiv::TextView(kiv::TempFilePath); });
}

KivStatus KivSetTempFilePath(const char* path, size_t length) {
  return Run([=] { kiv::TempFilePath = KIV_TEXT(path, length); });
}

KivLength KivGetNewTempFileName(const char* prefix, size_t prefixLength, const char* extension, size_t extensionLength,
                                char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] {
    return kiv::GetNewTempFileName(KIV_TEXT(prefix, prefixLength), KIV_TEXT(extension, extensionLength));
  });
}

KivLength KivDeviceInfo(uintptr_t deviceContext, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::DeviceInfo(deviceContext); });
}

KivLength KivConnectionStringForMdb(const char* file, size_t length, char* buffer, size_t capacity) {
  return GiveText(buffer, capacity, [=] { return kiv::ConnectionStringForMdb(KIV_TEXT(file, length)); });
}

}  // extern "C"
