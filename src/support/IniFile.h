#pragma once

#include <optional>
#include <utility>
#include <vector>

#include <QString>
#include <QStringList>

namespace ombrelle {

// A Windows-style INI file in memory: "[Section]" lines, "key=value" lines,
// ";" comments. Section and key names match without regard to case and may
// hold blanks; the first of two equal sections or keys counts. Lines that are
// neither are kept when the file is written back but never read. The text is
// read from UTF-16 (with its byte-order mark), UTF-8 or Windows-1252 and
// written back in the same encoding; CR LF or LF line ends stay as found.
class IniFile {
 public:
  // Reads `path`. A missing, unreadable or oversized (above 16 MiB) file gives
  // an empty document and false.
  bool Load(const QString& path);
  // Parses text that is already decoded.
  void SetText(const QString& text);
  // Writes the document to `path` through a temporary file renamed into place.
  bool Save(const QString& path) const;

  std::optional<QString> Value(const QString& section, const QString& key) const;
  // The key and value lines of `section` in file order; empty when absent.
  std::vector<std::pair<QString, QString>> Section(const QString& section) const;
  QStringList SectionNames() const;
  // Replaces the first line of `key` in `section`, or adds it after the
  // section's last entry; a missing section is added at the end.
  void SetValue(const QString& section, const QString& key, const QString& value);

  QString Text() const;

  // Every section with its key and value lines, in file order, read in one
  // pass: a section that appears twice counts with its first appearance, as
  // in Section().
  std::vector<std::pair<QString, std::vector<std::pair<QString, QString>>>> Sections() const;

 private:
  enum class Encoding { Ansi, Utf8, Utf8Bom, Utf16 };

  // Index of the header line of `section`, -1 when absent.
  qsizetype FindSection(const QString& section) const;
  // One past the last line of the section whose header is at `header`.
  qsizetype SectionEnd(qsizetype header) const;

  QStringList m_lines;
  bool m_crlf = true;
  Encoding m_encoding = Encoding::Ansi;
};

// The front of the INI service: `file` without a folder is taken from the
// program's folder.

// The value of `key`; `defaultValue` when the file, section or key is absent.
// A value in matching double or single quotes loses them.
QString ReadIniValue(const QString& file, const QString& section, const QString& key,
                     const QString& defaultValue);
// The integer read: an optional sign and the leading digits of the value (0
// when it has none); `defaultValue` when the key is absent.
int ReadIniValue(const QString& file, const QString& section, const QString& key, int defaultValue);
// The integer read checked against a type text: a type that begins with
// "ENUM" lists the allowed numbers behind it, separated by "," and "TO"
// ("ENUM 1, 3, 5 TO 9"); a value outside them gives `defaultValue`. Other
// type texts allow any number.
int ReadIniValue(const QString& file, const QString& section, const QString& key, int defaultValue,
                 const QString& typeText);
// Writes one key, creating the file and section as needed. False when the
// file cannot be written.
bool WriteIniValue(const QString& file, const QString& section, const QString& key,
                   const QString& value);
// The key and value pairs of `section`, each entry split at its first "=".
std::vector<std::pair<QString, QString>> ReadIniSection(const QString& file,
                                                        const QString& section);
// The names of the sections of `file`, in file order.
QStringList ReadIniSectionNames(const QString& file);

// The allowed ranges of an "ENUM" type text (each a first and last number);
// nullopt for a type text that is not an enumeration or does not parse.
std::optional<std::vector<std::pair<int, int>>> ParseIniEnumType(const QString& typeText);

}  // namespace ombrelle
