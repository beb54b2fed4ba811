// SPDX-License-Identifier: MIT
// What the main function of a program that tests windows does.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <iterator>
#include <system_error>
#include <thread>

#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>

namespace qk::test {

// The toolkit waits until its threads have done their work, not until they are gone. The search for
// leaks at the end of a program fails when it looks at one that is just ending.
inline void WaitUntilAlone() {
  for (int tries = 0; tries < 2000; ++tries) {
    std::error_code failed;
    const std::filesystem::directory_iterator threads("/proc/self/task", failed);
    if (failed || std::distance(begin(threads), end(threads)) == 1) return;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

// Runs the tests without a screen; `prepare` runs before them, once the application is there. The
// exit status.
inline int RunWindowTests(int argc, char** argv, const std::function<void()>& prepare = {},
                          const QByteArray& platform = "offscreen") {
  qputenv("QT_QPA_PLATFORM", platform);
  int status = 0;
  {
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    if (prepare) prepare();
    ::testing::InitGoogleTest(&argc, argv);
    status = RUN_ALL_TESTS();
  }
  WaitUntilAlone();
  return status;
}

// The same on a screen of so many pixels at 96 dpi.
inline int RunWindowTestsOnScreen(int argc, char** argv, const QByteArray& width,
                                  const QByteArray& height,
                                  const std::function<void()>& prepare = {}) {
  const QTemporaryDir folder;
  const QString path = folder.filePath("screen.json");
  QFile file(path);
  if (!file.open(QIODevice::WriteOnly)) return 2;
  file.write(R"({"screens": [{"name": "screen", "x": 0, "y": 0, "width": )" + width +
             R"(, "height": )" + height +
             R"(, "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})");
  file.close();
  return RunWindowTests(argc, argv, prepare, "offscreen:configfile=" + path.toUtf8());
}

}  // namespace qk::test
