#include "support/Filename.h"

#include <algorithm>

#include <QDir>
#include <QStringList>

#include "support/Text.h"

namespace ombrelle {

namespace {

const QChar kSlash = QLatin1Char('/');

// Folds "." and ".." of a POSIX path; repeated slashes count as one. An
// absolute path keeps its root and ".." never climbs above it; a relative path
// keeps the ".." that have nothing to fold. A trailing "/" stays.
QString FoldPath(const QString& path) {
  const bool absolute = path.startsWith(kSlash);
  const bool trailing = path.size() > 1 && path.endsWith(kSlash);
  QStringList parts;
  for (const QString& part : path.split(kSlash, Qt::SkipEmptyParts)) {
    if (part == QLatin1String(".")) continue;
    if (part == QLatin1String("..")) {
      if (!parts.isEmpty() && parts.last() != QLatin1String("..")) {
        parts.removeLast();
        continue;
      }
      if (absolute) continue;
    }
    parts << part;
  }
  QString result = parts.join(kSlash);
  if (absolute) result.prepend(kSlash);
  if (trailing && !result.isEmpty() && !result.endsWith(kSlash)) result += kSlash;
  return result;
}

qsizetype NameStart(const QString& path) { return path.lastIndexOf(kSlash) + 1; }

bool IsDeviceName(const QString& upper) {
  static const QStringList devices = {QStringLiteral("CON"), QStringLiteral("PRN"),
                                      QStringLiteral("AUX"), QStringLiteral("NUL"),
                                      QStringLiteral("CLOCK$")};
  if (devices.contains(upper)) return true;
  if (upper.size() == 4 &&
      (upper.startsWith(QLatin1String("COM")) || upper.startsWith(QLatin1String("LPT"))))
    return upper[3] >= QLatin1Char('1') && upper[3] <= QLatin1Char('9');
  return false;
}

}  // namespace

QString ResolvePath(const QString& base, const QString& path) {
  QString full = path;
  if (!path.startsWith(kSlash)) {
    QString folder = base.isEmpty() ? QDir::currentPath() : base;
    if (!folder.startsWith(kSlash)) folder = QDir::currentPath() + kSlash + folder;
    full = path.isEmpty() ? folder : folder + kSlash + path;
  }
  QString result = FoldPath(full);
  if (result.size() > 1 && result.endsWith(kSlash)) result.chop(1);
  return result;
}

QString JoinPath(const QString& folder, const QString& name) {
  if (name.startsWith(kSlash)) return FoldPath(name);
  QString joined = folder;
  if (!joined.endsWith(kSlash)) joined += kSlash;
  joined += name;
  return FoldPath(joined);
}

QString FileFolder(const QString& path) {
  return path.left(std::max<qsizetype>(0, NameStart(path) - 1));
}

QString FileNameOnly(const QString& path) { return path.mid(NameStart(path)); }

QString FileExtension(const QString& path) {
  const QString name = FileNameOnly(path);
  const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
  return dot < 0 ? QString() : name.mid(dot + 1);
}

QString RemoveExtension(const QString& path) {
  const qsizetype start = NameStart(path);
  const qsizetype dot = path.lastIndexOf(QLatin1Char('.'));
  return dot < start ? path : path.left(dot);
}

QString ReplaceExtension(const QString& path, const QString& extension) {
  return RemoveExtension(path) + QLatin1Char('.') + extension;
}

bool IsAbsolutePath(const QString& path) { return path.startsWith(kSlash); }

bool PathHasWildcards(const QString& path) {
  return path.contains(QLatin1Char('*')) || path.contains(QLatin1Char('?'));
}

QString NumberToLetters(long long n) {
  QString letters;
  while (n > 0) {
    --n;
    letters.prepend(QLatin1Char(static_cast<char>('a' + n % 26)));
    n /= 26;
  }
  return letters;
}

QString MakeValidFilename(const QString& name) {
  // 1. Seven-bit text.
  const QString ascii = ToAscii7(name);
  // 2. and 3. Control characters go, reserved characters get a stand-in.
  QString result;
  result.reserve(ascii.size());
  for (const QChar c : ascii) {
    const ushort u = c.unicode();
    if (u < 32 || u == 127) continue;
    switch (u) {
      case ' ':
        result += QLatin1Char('_');
        break;
      case '<':
        result += QLatin1Char('{');
        break;
      case '>':
        result += QLatin1Char('}');
        break;
      case ':':
        result += QLatin1Char('=');
        break;
      case '"':
        result += QLatin1Char('\'');
        break;
      case '/':
      case '\\':
        result += QLatin1Char('-');
        break;
      case '|':
        result += QLatin1Char('!');
        break;
      case '*':
      case '?':
        result += QLatin1Char('+');
        break;
      default:
        result += c;
    }
  }
  // 4. A device name before the first "." gets a "#" behind it.
  const qsizetype dot = result.indexOf(QLatin1Char('.'));
  const qsizetype stemLength = dot < 0 ? result.size() : dot;
  if (IsDeviceName(result.left(stemLength).toUpper())) result.insert(stemLength, QLatin1Char('#'));
  // 5. The two names that mean folders.
  if (result == QLatin1String("..")) return QStringLiteral("--");
  if (result == QLatin1String(".")) return QStringLiteral("-");
  // 6. Long names are cut before the last word break within 63 characters.
  constexpr qsizetype kLimit = 63;
  constexpr qsizetype kShortest = 32;
  if (result.size() > kLimit) {
    qsizetype cut = -1;
    for (qsizetype i = kLimit; i > 0; --i) {
      if (!result[i].isLetterOrNumber()) {
        cut = i;
        break;
      }
    }
    result = cut >= kShortest ? result.left(cut) : result.left(kLimit);
  }
  return result;
}

}  // namespace ombrelle
