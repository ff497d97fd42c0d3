#include "platform/Accounts.h"

namespace kiv::platform {
namespace {

const Accounts& SystemAccounts() noexcept {
  static const Accounts system;
  return system;
}

}  // namespace

constinit Service<const Accounts> accounts_service(&SystemAccounts);

}  // namespace kiv::platform
