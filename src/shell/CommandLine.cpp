#include "shell/CommandLine.h"

#include "shell/StartupState.h"
#include "support/Filename.h"

namespace ombrelle {

namespace {
constexpr QChar kQuote = QLatin1Char('"');

bool IsBlank(QChar c) { return c == QLatin1Char(' ') || c == QLatin1Char('\t'); }

// Index of the quote that closes a quoted parameter whose opening quote is at
// `open`, or -1. Two quotes in a row are an escaped quote and do not close.
qsizetype ClosingQuote(const QString& text, qsizetype open) {
  qsizetype j = open + 1;
  while (j < text.size()) {
    if (text[j] == kQuote) {
      if (j + 1 < text.size() && text[j + 1] == kQuote) {
        j += 2;
        continue;
      }
      return j;
    }
    ++j;
  }
  return -1;
}
}  // namespace

QStringList SplitCommandLine(const QString& text, int maxParts, std::vector<int>& positions) {
  QStringList result{QString()};
  positions.assign(1, 0);
  int count = 0;
  bool inWord = false;
  qsizetype tail = -1;  // 0-based start of the unsplit rest

  // Starts a new parameter at `at`; false when the limit is reached and the
  // rest of the line is kept as it stands.
  auto beginParam = [&](qsizetype at) {
    if (count == maxParts) {
      tail = at;
      return false;
    }
    ++count;
    result.append(QString());
    positions.push_back(static_cast<int>(at + 1));
    return true;
  };

  qsizetype i = 0;
  while (i < text.size()) {
    const QChar c = text[i];
    if (c == kQuote && !inWord) {
      if (!beginParam(i)) break;
      const qsizetype close = ClosingQuote(text, i);
      if (close < 0) {
        // Never closed: the parameter stays empty and what follows the quote
        // is read as ordinary parameters.
        ++i;
        continue;
      }
      QString inner = text.mid(i + 1, close - i - 1);
      inner.replace(QStringLiteral("\"\""), QStringLiteral("\""));
      result.back() = inner;
      i = close + 1;  // text glued to the closing quote starts a new parameter
      continue;
    }
    if (IsBlank(c)) {
      inWord = false;
    } else {
      if (!inWord) {
        if (!beginParam(i)) break;
        inWord = true;
      }
      result.back().append(c);  // a quote inside a word is an ordinary character
    }
    ++i;
  }
  if (tail >= 0) {
    result.append(text.mid(tail));
    positions.push_back(static_cast<int>(tail + 1));
  }
  return result;
}

QString JoinCommandLine(const QStringList& arguments) {
  QStringList parts;
  parts.reserve(arguments.size());
  for (const QString& argument : arguments) {
    const bool quote = argument.isEmpty() || argument.startsWith(kQuote) ||
                       argument.contains(QLatin1Char(' ')) || argument.contains(QLatin1Char('\t'));
    if (!quote) {
      parts.append(argument);
      continue;
    }
    QString inner = argument;
    inner.replace(QStringLiteral("\""), QStringLiteral("\"\""));
    parts.append(kQuote + inner + kQuote);
  }
  return parts.join(QLatin1Char(' '));
}

QStringList GetCommandLineParams(int maxParts, const QString& rawCommandLine,
                                 const QString& programPath) {
  std::vector<int> positions;
  QStringList params = SplitCommandLine(rawCommandLine, maxParts, positions);
  params[0] = programPath;
  return params;
}

bool IsSwitch(const QString& param) {
  return param.startsWith(QLatin1Char('/')) && param.indexOf(QLatin1Char('/'), 1) < 0;
}

CommandLineRequest ParseCommandLine(const QStringList& params, StartupState& state,
                                    const QString& currentDir) {
  for (qsizetype i = 1; i < params.size(); ++i) {
    const QString& param = params[i];
    if (param == QLatin1String("-h") || param == QLatin1String("--help"))
      return CommandLineRequest::ShowUsage;
    if (param == QLatin1String("--version")) return CommandLineRequest::ShowVersion;

    if (IsSwitch(param)) {
      const QString name = param.toUpper();
      if (name == QLatin1String("/EDIT")) {
        state.EditMode = true;
      } else if (name == QLatin1String("/SAVEXML")) {
        state.SaveMode = true;
      } else if (name == QLatin1String("/SAVEXMLDEL")) {
        state.SaveMode = true;
        state.DeleteInput = true;
      } else if (name == QLatin1String("/SAVEXMLDELS")) {
        state.SaveMode = true;
        state.DeleteInput = true;
        state.SilentMode = true;
      } else if (name == QLatin1String("/?")) {
        return CommandLineRequest::ShowUsage;
      } else {
        ParseBatchSwitch(param, state.Batch);
      }
      continue;  // unknown switches do nothing
    }

    // An empty name (a quote never closed) leaves its slot empty, so the next
    // name fills it.
    const QString file = param.isEmpty() ? QString() : ResolvePath(currentDir, param);
    if (state.InputFile.isEmpty())
      state.InputFile = file;
    else if (state.OutputFile.isEmpty())
      state.OutputFile = file;
    else if (state.CompareFile.isEmpty())
      state.CompareFile = file;
  }
  return CommandLineRequest::Run;
}

}  // namespace ombrelle
