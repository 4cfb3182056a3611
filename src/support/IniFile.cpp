#include "support/IniFile.h"

#include <algorithm>
#include <limits>

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>
#include <QSet>
#include <QStringDecoder>

#include "support/Codepage.h"

namespace ombrelle {

namespace {

constexpr qint64 kMaxIniBytes = 16 * 1024 * 1024;

bool SameName(const QString& a, const QString& b) { return a.compare(b, Qt::CaseInsensitive) == 0; }

// The name of a "[Section]" line; a missing "]" takes the rest of the line.
bool ParseSectionLine(const QString& line, QString& name) {
  const QString text = line.trimmed();
  if (!text.startsWith(QLatin1Char('['))) return false;
  const qsizetype close = text.indexOf(QLatin1Char(']'));
  name = (close < 0 ? text.mid(1) : text.mid(1, close - 1)).trimmed();
  return true;
}

// A "key=value" line. Comments, section lines, blank lines and lines without
// "=" or without a key are not entries.
bool ParseEntryLine(const QString& line, QString& key, QString& value) {
  const QString text = line.trimmed();
  if (text.isEmpty() || text.startsWith(QLatin1Char(';')) || text.startsWith(QLatin1Char('[')))
    return false;
  const qsizetype equals = text.indexOf(QLatin1Char('='));
  if (equals <= 0) return false;
  key = text.left(equals).trimmed();
  if (key.isEmpty()) return false;
  value = text.mid(equals + 1).trimmed();
  if (value.size() >= 2 &&
      (value.front() == QLatin1Char('"') || value.front() == QLatin1Char('\'')) &&
      value.back() == value.front())
    value = value.mid(1, value.size() - 2);
  return true;
}

// Windows-1252 bytes, or nothing when a character has no byte there.
std::optional<QByteArray> TextToAnsi(const QString& text) {
  QByteArray bytes = TextToMultiByte(text, kCodepageAnsi);
  if (MultiByteToText(bytes, kCodepageAnsi) != text) return std::nullopt;
  return bytes;
}

QString ResolveIniPath(const QString& file) {
  if (file.contains(QLatin1Char('/'))) return file;
  return QCoreApplication::applicationDirPath() + QLatin1Char('/') + file;
}

// The integer read of a profile value: sign and leading digits, clamped.
int LeadingInteger(const QString& value) {
  const QString text = value.trimmed();
  qsizetype i = 0;
  bool negative = false;
  if (i < text.size() && (text[i] == QLatin1Char('-') || text[i] == QLatin1Char('+')))
    negative = text[i++] == QLatin1Char('-');
  long long number = 0;
  for (; i < text.size() && text[i].isDigit() && text[i].unicode() < 128; ++i) {
    number = number * 10 + (text[i].unicode() - '0');
    if (number > std::numeric_limits<int>::max()) number = std::numeric_limits<int>::max() + 1LL;
  }
  if (negative) number = -number;
  if (number > std::numeric_limits<int>::max()) return std::numeric_limits<int>::max();
  return static_cast<int>(std::max<long long>(number, std::numeric_limits<int>::min()));
}

}  // namespace

bool IniFile::Load(const QString& path) {
  SetText(QString());
  QFile file(path);
  if (QFileInfo(path).size() > kMaxIniBytes || !file.open(QIODevice::ReadOnly)) return false;
  const QByteArray bytes = file.read(kMaxIniBytes + 1);
  if (bytes.size() > kMaxIniBytes) return false;
  QString text;
  Encoding encoding = Encoding::Ansi;
  if (bytes.startsWith("\xFF\xFE")) {
    encoding = Encoding::Utf16;
    text = QString::fromUtf16(reinterpret_cast<const char16_t*>(bytes.constData() + 2),
                              (bytes.size() - 2) / 2);
  } else if (bytes.startsWith("\xEF\xBB\xBF")) {
    encoding = Encoding::Utf8Bom;
    text = QString::fromUtf8(bytes.mid(3));
  } else {
    QStringDecoder utf8(QStringDecoder::Utf8);
    text = utf8.decode(bytes);
    if (utf8.hasError()) {
      text = MultiByteToText(bytes, kCodepageAnsi);
    } else {
      const bool ascii =
          std::all_of(bytes.begin(), bytes.end(), [](char b) { return (b & 0x80) == 0; });
      if (!ascii) encoding = Encoding::Utf8;
    }
  }
  SetText(text);
  m_encoding = encoding;
  return true;
}

void IniFile::SetText(const QString& text) {
  m_crlf = text.isEmpty() || text.contains(QLatin1String("\r\n"));
  m_encoding = Encoding::Ansi;
  m_lines = text.split(QLatin1Char('\n'));
  if (!m_lines.isEmpty() && m_lines.last().isEmpty()) m_lines.removeLast();
  for (QString& line : m_lines)
    if (line.endsWith(QLatin1Char('\r'))) line.chop(1);
}

QString IniFile::Text() const {
  const QString end = m_crlf ? QStringLiteral("\r\n") : QStringLiteral("\n");
  return m_lines.isEmpty() ? QString() : m_lines.join(end) + end;
}

bool IniFile::Save(const QString& path) const {
  const QString text = Text();
  QByteArray bytes;
  Encoding encoding = m_encoding;
  if (encoding == Encoding::Ansi) {
    if (const auto ansi = TextToAnsi(text))
      bytes = *ansi;
    else
      encoding = Encoding::Utf8Bom;  // keep every character rather than lose some
  }
  switch (encoding) {
    case Encoding::Ansi:
      break;
    case Encoding::Utf8:
      bytes = text.toUtf8();
      break;
    case Encoding::Utf8Bom:
      bytes = "\xEF\xBB\xBF" + text.toUtf8();
      break;
    case Encoding::Utf16:
      bytes = "\xFF\xFE";
      for (const QChar c : text)
        bytes.append(static_cast<char>(c.unicode() & 0xFF))
            .append(static_cast<char>(c.unicode() >> 8));
      break;
  }
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly)) return false;
  if (file.write(bytes) != bytes.size()) {
    file.cancelWriting();
    file.commit();
    return false;
  }
  return file.commit();
}

qsizetype IniFile::FindSection(const QString& section) const {
  QString name;
  for (qsizetype i = 0; i < m_lines.size(); ++i)
    if (ParseSectionLine(m_lines[i], name) && SameName(name, section)) return i;
  return -1;
}

qsizetype IniFile::SectionEnd(qsizetype header) const {
  QString name;
  qsizetype i = header + 1;
  while (i < m_lines.size() && !ParseSectionLine(m_lines[i], name)) ++i;
  return i;
}

std::optional<QString> IniFile::Value(const QString& section, const QString& key) const {
  const qsizetype header = FindSection(section);
  if (header < 0) return std::nullopt;
  QString name, value;
  for (qsizetype i = header + 1, end = SectionEnd(header); i < end; ++i)
    if (ParseEntryLine(m_lines[i], name, value) && SameName(name, key)) return value;
  return std::nullopt;
}

std::vector<std::pair<QString, QString>> IniFile::Section(const QString& section) const {
  std::vector<std::pair<QString, QString>> entries;
  const qsizetype header = FindSection(section);
  if (header < 0) return entries;
  QString name, value;
  for (qsizetype i = header + 1, end = SectionEnd(header); i < end; ++i)
    if (ParseEntryLine(m_lines[i], name, value)) entries.emplace_back(name, value);
  return entries;
}

QStringList IniFile::SectionNames() const {
  QStringList names;
  QString name;
  for (const QString& line : m_lines) {
    if (!ParseSectionLine(line, name)) continue;
    const bool seen = std::any_of(names.begin(), names.end(),
                                  [&](const QString& n) { return SameName(n, name); });
    if (!seen) names << name;
  }
  return names;
}

std::vector<std::pair<QString, std::vector<std::pair<QString, QString>>>> IniFile::Sections() const {
  std::vector<std::pair<QString, std::vector<std::pair<QString, QString>>>> sections;
  QSet<QString> seen;
  bool collecting = false;  // inside the first appearance of a section
  QString name, value;
  for (const QString& line : m_lines) {
    if (ParseSectionLine(line, name)) {
      collecting = !seen.contains(name.toCaseFolded());
      if (collecting) {
        seen.insert(name.toCaseFolded());
        sections.emplace_back(name, std::vector<std::pair<QString, QString>>());
      }
    } else if (collecting) {
      QString key;
      if (ParseEntryLine(line, key, value)) sections.back().second.emplace_back(key, value);
    }
  }
  return sections;
}

void IniFile::SetValue(const QString& section, const QString& key, const QString& value) {
  const QString line = key + QLatin1Char('=') + value;
  const qsizetype header = FindSection(section);
  if (header < 0) {
    if (!m_lines.isEmpty() && !m_lines.last().trimmed().isEmpty()) m_lines << QString();
    m_lines << QLatin1Char('[') + section + QLatin1Char(']') << line;
    return;
  }
  const qsizetype end = SectionEnd(header);
  qsizetype lastEntry = header;
  QString name, oldValue;
  for (qsizetype i = header + 1; i < end; ++i) {
    if (ParseEntryLine(m_lines[i], name, oldValue) && SameName(name, key)) {
      m_lines[i] = line;
      return;
    }
    if (!m_lines[i].trimmed().isEmpty()) lastEntry = i;
  }
  m_lines.insert(lastEntry + 1, line);
}

QString ReadIniValue(const QString& file, const QString& section, const QString& key,
                     const QString& defaultValue) {
  IniFile ini;
  ini.Load(ResolveIniPath(file));
  return ini.Value(section, key).value_or(defaultValue);
}

int ReadIniValue(const QString& file, const QString& section, const QString& key,
                 int defaultValue) {
  IniFile ini;
  ini.Load(ResolveIniPath(file));
  const auto value = ini.Value(section, key);
  return value ? LeadingInteger(*value) : defaultValue;
}

int ReadIniValue(const QString& file, const QString& section, const QString& key, int defaultValue,
                 const QString& typeText) {
  const int value = ReadIniValue(file, section, key, defaultValue);
  const auto ranges = ParseIniEnumType(typeText);
  if (!ranges) return value;
  for (const auto& [first, last] : *ranges)
    if (value >= first && value <= last) return value;
  return defaultValue;
}

bool WriteIniValue(const QString& file, const QString& section, const QString& key,
                   const QString& value) {
  const QString path = ResolveIniPath(file);
  IniFile ini;
  if (!ini.Load(path) && QFileInfo::exists(path))
    return false;  // never replace a file we could not read
  ini.SetValue(section, key, value);
  return ini.Save(path);
}

std::vector<std::pair<QString, QString>> ReadIniSection(const QString& file,
                                                        const QString& section) {
  IniFile ini;
  ini.Load(ResolveIniPath(file));
  return ini.Section(section);
}

QStringList ReadIniSectionNames(const QString& file) {
  IniFile ini;
  ini.Load(ResolveIniPath(file));
  return ini.SectionNames();
}

std::optional<std::vector<std::pair<int, int>>> ParseIniEnumType(const QString& typeText) {
  const QString text = typeText.trimmed();
  if (!text.startsWith(QLatin1String("ENUM"), Qt::CaseInsensitive)) return std::nullopt;
  static const QRegularExpression to(QStringLiteral("\\s*\\bTO\\b\\s*"),
                                     QRegularExpression::CaseInsensitiveOption);
  std::vector<std::pair<int, int>> ranges;
  for (const QString& item : text.mid(4).split(QLatin1Char(','))) {
    const QStringList bounds = item.trimmed().split(to);
    if (bounds.size() > 2) return std::nullopt;
    bool okFirst = false, okLast = false;
    const int first = bounds.front().trimmed().toInt(&okFirst);
    const int last = bounds.back().trimmed().toInt(&okLast);
    if (!okFirst || !okLast) return std::nullopt;
    ranges.emplace_back(std::min(first, last), std::max(first, last));
  }
  return ranges;
}

}  // namespace ombrelle
