#include "platform/CodePages.h"

namespace kiv::platform {
namespace {

const CodePages kSystem;
const CodePages* in_use = &kSystem;

}  // namespace

const CodePages& CurrentCodePages() noexcept {
  return *in_use;
}

ReplaceCodePages::ReplaceCodePages(const CodePages& replacement) noexcept : before_(in_use) {
  in_use = &replacement;
}

ReplaceCodePages::~ReplaceCodePages() {
  in_use = before_;
}

}  // namespace kiv::platform
