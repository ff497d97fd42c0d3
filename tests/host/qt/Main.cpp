// The application that the tests of the Qt host are part of.
#include <gtest/gtest.h>

#include <QApplication>
#include <iostream>

#include "kivtools/Errors.h"
#include "kivtools/Host/Qt.h"

int main(int argc, char** argv) {
  try {
    const kiv::host::qt::Host tooEarly;
    std::cerr << "a host without an application\n";
    return 1;
  } catch (const kiv::Error&) {
    // Nothing can be lent yet.
  }
  const QApplication application(argc, argv);
  kiv::host::qt::Host host;
  kiv::host::Install(host);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
