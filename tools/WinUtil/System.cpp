#include "kivtools/WinUtil/System.h"

#include "kivtools/Host.h"
#include "platform/System.h"

namespace kiv {

Text LogOnUserName() {
  return platform::UserName();
}

bool EsteWindowsVista() {
  return platform::MajorVersion() >= 6;
}

void CopiazaTextInClipboard(TextView text) {
  host::Current().GetClipboard().SetText(text);
}

}  // namespace kiv
