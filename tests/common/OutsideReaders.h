#pragma once

#include <QString>

namespace ombrelle::test {

// Asserts that `path` is well-formed XML to an outside reader (xmllint);
// skips the test when xmllint is not installed.
void ExpectXmllintAccepts(const QString& path);

}  // namespace ombrelle::test
