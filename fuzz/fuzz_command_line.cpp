// Fuzz target: the command-line splitter, the parser behind it, and the
// joiner whose lines the splitter must take apart into the same arguments.
// Input: one byte for the most parameters to split, then UTF-8 text; the text
// also read as arguments separated by NUL bytes.
#include <cstdint>
#include <cstdlib>
#include <vector>

#include <QDir>

#include "shell/CommandLine.h"
#include "shell/StartupState.h"

using namespace ombrelle;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0 || size > 4096) return -1;
  const int maxParts = data[0] % 40;
  const QByteArray bytes(reinterpret_cast<const char*>(data + 1), static_cast<qsizetype>(size - 1));
  const QString text = QString::fromUtf8(bytes);

  std::vector<int> positions;
  const QStringList parts = SplitCommandLine(text, maxParts, positions);
  // Element 0 is empty; then at most maxParts parameters and the rest.
  if (parts.isEmpty() || !parts[0].isEmpty()) abort();
  if (parts.size() > maxParts + 2) abort();
  if (positions.size() != static_cast<size_t>(parts.size()) || positions[0] != 0) abort();
  for (size_t i = 1; i < positions.size(); ++i)
    if (positions[i] < 1 || positions[i] > text.size() + 1) abort();

  StartupState state;
  const QStringList params = GetCommandLineParams(maxParts, text, QStringLiteral("/opt/qvzview"));
  if (params.size() != parts.size()) abort();
  ParseCommandLine(params, state, QStringLiteral("/home/user/work"));
  if (!state.InputFile.isEmpty() && QDir::isRelativePath(state.InputFile)) abort();
  if (!state.OutputFile.isEmpty() && QDir::isRelativePath(state.OutputFile)) abort();

  // Joined arguments come apart into the same arguments.
  QStringList arguments = text.split(QChar(0));
  const QString line = JoinCommandLine(arguments);
  std::vector<int> linePositions;
  QStringList back = SplitCommandLine(line, static_cast<int>(arguments.size()) + 1, linePositions);
  back.removeFirst();
  if (back != arguments) abort();
  return 0;
}
