#include "platform/CodePages.h"

namespace kiv::platform {
namespace {

const CodePages& SystemCodePages() noexcept {
  static const CodePages system;
  return system;
}

}  // namespace

constinit Service<const CodePages> code_pages_service(&SystemCodePages);

}  // namespace kiv::platform
