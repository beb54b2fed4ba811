// SPDX-License-Identifier: MIT
#include "ui_main.h"

int main(int argc, char** argv) {
  return qk::test::RunWindowTests(argc, argv);
}
