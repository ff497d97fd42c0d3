#pragma once

#include <gtest/gtest.h>

#include "kivtools/Types.h"

namespace kiv {

/// Expects `call` to throw exactly `Kind` with this message.
template <class Kind, class Call>
void ExpectError(Call&& call, TextView message) {
  try {
    call();
    ADD_FAILURE() << "nothing was thrown; expected: " << message;
  } catch (const Error& error) {
    EXPECT_EQ(typeid(error), typeid(Kind)) << error.what();
    EXPECT_EQ(TextView(error.what()), message);
  }
}

}  // namespace kiv
