// Entry point of every test executable. Before Qt starts, HOME, the XDG
// folders and the temporary folder point into a fresh temporary directory, so
// no test can read or write the user's settings or files.
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#include <QStandardPaths>
#include <QTemporaryDir>

#ifdef OMBRELLE_TEST_WIDGETS
#include <QApplication>
using TestApplication = QApplication;
#else
#include <QGuiApplication>
using TestApplication = QGuiApplication;
#endif

#include <gtest/gtest.h>

#include "common/TestEnvironment.h"

namespace {
std::string g_root;
}

namespace ombrelle::test {
QString SandboxRoot() { return QString::fromStdString(g_root); }
}  // namespace ombrelle::test

int main(int argc, char** argv) {
  char pattern[] = "/tmp/ombrelle-test-XXXXXX";
  const char* root = mkdtemp(pattern);
  if (!root) return 2;
  g_root = root;
  const std::string home = g_root + "/home";
  const std::string tmp = g_root + "/tmp";
  const std::string runtime = g_root + "/runtime";
  // Made in process: each test starts its own program run, so a shell per
  // folder would cost more than many of the tests themselves.
  std::error_code error;
  for (const std::string& dir :
       {home + "/.config", home + "/.local", home + "/.cache", tmp, runtime})
    std::filesystem::create_directories(dir, error);
  std::filesystem::permissions(runtime, std::filesystem::perms::owner_all, error);
  setenv("HOME", home.c_str(), 1);
  setenv("XDG_CONFIG_HOME", (home + "/.config").c_str(), 1);
  setenv("XDG_DATA_HOME", (home + "/.local").c_str(), 1);
  setenv("XDG_CACHE_HOME", (home + "/.cache").c_str(), 1);
  setenv("TMPDIR", tmp.c_str(), 1);
  setenv("XDG_RUNTIME_DIR", runtime.c_str(), 1);
  // Window tests that need a real display run under xvfb-run with
  // OMBRELLE_TEST_XVFB or OMBRELLE_UNDER_XVFB set; every other run draws
  // offscreen.
  const char* xvfb = getenv("OMBRELLE_TEST_XVFB");
  const bool underXvfb = (xvfb && *xvfb) || getenv("OMBRELLE_UNDER_XVFB");
  if (underXvfb && getenv("DISPLAY")) {
    setenv("QT_QPA_PLATFORM", "xcb", 1);
  } else {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    unsetenv("DISPLAY");
  }
  unsetenv("WAYLAND_DISPLAY");

  TestApplication app(argc, argv);
  QStandardPaths::setTestModeEnabled(true);
  ::testing::InitGoogleTest(&argc, argv);
  const int result = RUN_ALL_TESTS();
  std::filesystem::remove_all(g_root, error);
  return result;
}
