#include "platform/CodePages.h"

namespace kiv::platform {
namespace {

const CodePages kSystem;
const CodePages* in_use = &kSystem;

}  // namespace

const CodePages& CurrentCodePages() noexcept {
  return *in_use;
}

CodePagesInUse::CodePagesInUse(const CodePages& replacement) noexcept : before_(in_use) {
  in_use = &replacement;
}

CodePagesInUse::~CodePagesInUse() {
  in_use = before_;
}

}  // namespace kiv::platform
