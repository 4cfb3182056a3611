#pragma once

#include <vector>

#include <QString>
#include <QStringList>

namespace ombrelle {

struct StartupState;

// Splits a command line into parameters. Element 0 of the result is empty and
// elements 1 to n are the parameters. A parameter in double quotes may hold
// blanks, a doubled quote inside stands for one quote; a quote that is never
// closed gives an empty parameter and the text behind it is read as ordinary
// words. At most `maxParts` parameters are split; when more follow, one further
// element holds the rest of the line unchanged. `positions` receives, for each
// element, the 1-based character position where the parameter began (0 for
// element 0).
QStringList SplitCommandLine(const QString& text, int maxParts, std::vector<int>& positions);

// Joins process arguments into one command line that SplitCommandLine takes
// apart into the same arguments: arguments with blanks, tabs or a leading
// quote, and empty ones, are quoted with inner quotes doubled.
QString JoinCommandLine(const QStringList& arguments);

// The parameters of `rawCommandLine` (at most `maxParts`, see SplitCommandLine)
// with `programPath` in element 0.
QStringList GetCommandLineParams(int maxParts, const QString& rawCommandLine,
                                 const QString& programPath);

// True when `param` is a switch: it starts with "/" and holds no other "/", so
// an absolute path such as "/home/me/a.qvz" stays a file name.
bool IsSwitch(const QString& param);

// What the command line asks for beyond the start-up state.
enum class CommandLineRequest {
  Run,          // take one of the three roads
  ShowUsage,    // "/?", "-h" or "--help"
  ShowVersion,  // "--version"
};

// Fills `state` from `params` (element 0 is the program and is skipped). File
// names are made absolute against `currentDir` (empty: the process's current
// directory); the first goes to InputFile, the second to OutputFile, the third
// to CompareFile, further ones are skipped. Switches set flags or fill the
// batch request; unknown switches are ignored. Parsing
// stops at a request for usage or version, so parameters behind it have no
// effect.
CommandLineRequest ParseCommandLine(const QStringList& params, StartupState& state,
                                    const QString& currentDir = {});

}  // namespace ombrelle
