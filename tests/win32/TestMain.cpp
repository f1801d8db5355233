#include <gtest/gtest.h>

#include "platform/win32/Windows.h"

int main(int count, char** arguments) {
  testing::InitGoogleTest(&count, arguments);
  OleInitialize(nullptr);
  const int result = RUN_ALL_TESTS();
  OleUninitialize();
  return result;
}
