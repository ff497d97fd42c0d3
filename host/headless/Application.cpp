#include "host/BuiltIn.h"
#include "kivtools/Host/Headless.h"

namespace kiv::host::headless {

bool Application::OnMainThread() const {
  return OnLoadingThread();
}

void Application::ProcessMessages() {
  if (work_) {
    work_();
  }
}

}  // namespace kiv::host::headless
