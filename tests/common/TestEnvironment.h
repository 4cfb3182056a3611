#pragma once

#include <QString>

namespace ombrelle::test {

// The temporary directory that stands in for the user's home and folders
// during a test run.
QString SandboxRoot();

}  // namespace ombrelle::test
