#include "core/QVZ2XML.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <exception>
#include <new>
#include <span>
#include <string_view>

#include <QFileInfo>

#include "core/MetricDefinitions.h"
#include "core/MetricRead.h"
#include "core/RowNameSink.h"
#include "core/XmlText.h"
#include "stats/CStats.h"
#include "support/FileIO.h"
#include "support/Filename.h"
#include "support/FormatNum.h"
#include "support/Text.h"
#include "support/UiServices.h"

namespace ombrelle {

namespace {

const QString kTitle = QStringLiteral("Save metrics as XML");
const QString kWriteErrorTitle = QStringLiteral("Error saving XML metrics");

void Exclamation(const QString& text, const QString& title = kTitle) {
  Ui().MsgBox(text, MsgStyle::Exclamation, title);
}

QString SystemError(int number, const QString& text) {
  return QStringLiteral("Error #") + QString::number(number) + QStringLiteral(": ") + text;
}

// Writes each row name it is given as a line of the rows list, opening the
// list before the first.
class RowLines final : public RowNameSink {
 public:
  explicit RowLines(XmlOutputFile& out) : m_out(out) {}
  bool Any() const { return m_any; }
  void AsciiName(std::string_view bytes) override {
    Open();
    m_out.WriteEscaped(bytes);
    m_out.Write("</row>\r\n");
  }
  void TextName(QStringView text) override {
    Open();
    m_out.WriteEscaped(text);
    m_out.Write("</row>\r\n");
  }

 private:
  void Open() {
    if (!m_any) m_out.Write("  <rows>\r\n");
    m_any = true;
    m_out.Write("   <row>");
  }
  XmlOutputFile& m_out;
  bool m_any = false;
};

}  // namespace

QVZ2XML::QVZ2XML() = default;
QVZ2XML::~QVZ2XML() = default;

QString QVZ2XML::ShowFileSaveDialog(const QString& title) {
  return SaveFileDialog(QStringLiteral("xml"), QStringLiteral("XML file (*.xml)"), QString(),
                        QString(), title);
}

namespace {
// An export over its own input would destroy the database (and a DEL switch
// would then delete the XML as well): refuse it with a message.
bool NamesInput(const QString& output, const QString& input) {
  const QString target = QFileInfo(output).canonicalFilePath();
  if (target.isEmpty() || target != QFileInfo(input).canonicalFilePath()) return false;
  Ui().MsgBox(QStringLiteral("Cannot save metrics over the database itself:\r\n") + output,
              MsgStyle::Exclamation, QStringLiteral("Save metrics as XML"));
  return true;
}
}  // namespace

bool QVZ2XML::SaveQVZ2XML(const QString& input, QString& output, bool interactive) {
  BusyCursor busy;
  if (!FileExists(input)) {
    Exclamation(QStringLiteral("File not found:") + kCrLf + input);
    return false;
  }
  bool madeName = false;
  if (output.isEmpty()) {
    output = ReplaceExtension(input, QStringLiteral("xml"));
    madeName = true;
  }
  if (NamesInput(output, input)) return false;
  if (interactive && FileExists(output)) {
    const int answer = Ui().MsgBox(output + kCrLf + QStringLiteral("File exists. Overwrite?"),
                                   MsgStyle::YesNoQuestion, kTitle);
    if (answer != MsgResult::Yes) return false;
  }

  bool ok = false;
  if (LoadDatabaseForExport(input)) {
    bool open = false;
    bool cancelled = false;
    if (madeName) {
      // A name made here may lie in a folder the user cannot write: let the
      // user pick another place.
      open = CreateOutputFile(output);
      if (!open) {
        const QString other = ShowFileSaveDialog(kTitle);
        if (other.isEmpty())
          cancelled = true;
        else if (NamesInput(other, input))
          cancelled = true;
        else
          output = other;
      }
    }
    if (!cancelled) {
      if (!open) open = CreateOutputFile(output);
      if (open) ok = WriteXml();
    }
  }
  Release();
  return ok;
}

bool QVZ2XML::LoadDatabaseForExport(const QString& input) {
  m_reader = std::make_unique<MetricRead>();
  m_databaseIndex = m_reader->LocateAndOpenDatabase(input, false);
  if (m_databaseIndex == 0) {
    Exclamation(QStringLiteral("Cannot locate or open ") + input);
    return false;
  }
  if (!m_reader->OpenDatabase2(m_databaseIndex)) {
    Exclamation(QStringLiteral("Failed to read ") + input);
    return false;
  }
  return true;
}

bool QVZ2XML::CreateOutputFile(const QString& name) {
  if (m_file.Create(name)) return true;
  Exclamation(QStringLiteral("Failed to create file ") + name + kCrLf + kCrLf +
              SystemError(m_file.ErrorNumber(), m_file.ErrorText()));
  return false;
}

void QVZ2XML::Release() {
  m_file.Discard();  // nothing once the export is committed
  m_reader.reset();
  m_databaseIndex = 0;
}

bool QVZ2XML::WriteXml() {
  try {
    XmlOutputFile& out = m_file;
    out.Write("<?xml version=\"1.0\"?>\r\n");
    out.Write("<qvz>\r\n");
    out.Write(" <!-- Ombrelle export file -->\r\n");
    out.Write(" <version>1</version>\r\n");
    out.Write(" <generator>\r\n");
    out.Write("  <name>");
    out.WriteEscaped(UiServices::AppTitle());
    out.Write("</name>\r\n");
    out.Write("  <version>");
    out.Write(VersionText(true).toLatin1().toStdString());
    out.Write("</version>\r\n");
    out.Write(" </generator>\r\n");
    out.Write(" <system>");
    out.WriteEscaped(m_reader->GetDatabaseName(m_databaseIndex));
    out.Write("</system>\r\n");

    // The blocks follow the catalogue, whose numbers run class by class, so
    // every class has its block even when the file has no rows for it.
    const MetricDefinitions& definitions = m_reader->Definitions();
    int currentClass = -1;
    for (MetricId id = kFirstMetricId; id <= kLastMetricId && !out.Failed(); ++id) {
      if (!definitions.MetricSupported(id)) continue;
      const int metricClass = MetricDefinitions::GetMetricClass(id);
      if (metricClass != currentClass) {
        if (currentClass >= 0) out.Write(" </class>\r\n");
        currentClass = metricClass;
        WriteClassStart(metricClass);
      }
      if (m_reader->MetricAvailable(id)) WriteMetric(id);
    }
    if (currentClass >= 0) out.Write(" </class>\r\n");
    out.Write("</qvz>\r\n");
    if (out.Commit()) return true;
    Exclamation(SystemError(out.ErrorNumber(), out.ErrorText()), kWriteErrorTitle);
  } catch (const std::bad_alloc&) {
    Exclamation(SystemError(ENOMEM, QString::fromLocal8Bit(std::strerror(ENOMEM))),
                kWriteErrorTitle);
  } catch (const std::exception& error) {
    Exclamation(SystemError(EIO, QString::fromLocal8Bit(error.what())), kWriteErrorTitle);
  }
  m_file.Discard();
  return false;
}

void QVZ2XML::WriteClassStart(int metricClass) {
  XmlOutputFile& out = m_file;
  const QString longName = MetricDefinitions::GetMetricClassName(metricClass, false);
  out.Write(" <class cls='");
  out.Write(std::to_string(metricClass));
  out.Write("' name='");
  out.WriteEscaped(longName);
  out.Write("'>\r\n");
  out.Write("  <!-- ");
  out.WriteEscaped(longName);
  out.Write(" metrics -->\r\n");

  // File order, not display order; the list opens with the first name.
  RowLines rows(out);
  m_reader->ForEachRowName(metricClass, rows);
  if (rows.Any()) out.Write("  </rows>\r\n");
}

void QVZ2XML::WriteMetric(int metric) {
  XmlOutputFile& out = m_file;
  const MetricDefinitions& definitions = m_reader->Definitions();
  // The export writes the values alone: no statistics are computed.
  const CStats column = m_reader->GetValuesUnsummarised(metric);
  const int format = definitions.GetMetricFormat(metric);

  out.Write("  <metric id='");
  out.Write(std::to_string(metric));
  out.Write("' abbr='");
  out.WriteEscaped(definitions.GetMetricName(metric, NameAbbreviation));
  out.Write("' name='");
  out.WriteEscaped(definitions.GetMetricName(metric, NameLong));
  out.Write("' descr='");
  out.WriteEscaped(definitions.GetMetricName(metric, NameDescription));
  out.Write("'>\r\n");
  const int32_t count = column.count();
  const std::span<const double> stored = column.StoredOrderValues();
  const auto writeLine = [&out, format](double value) {
    // The whole line goes straight into the output buffer.
    char* const line = out.Claim(kXmlValueLineMax);
    const int length = line ? XmlValueLine(format, value, line) : -1;
    if (length >= 0) {
      out.Advance(length);
      return;
    }
    // A date in a locale pattern of more than digits and separators: its
    // text comes from the locale and may need escaping.
    out.Write("   <value display='");
    out.WriteEscaped(FormatMetric(format, value));
    out.Write("'>");
    out.WriteNumber(value);
    out.Write("</value>\r\n");
  };
  // While the values are at hand in an array, their lines go in blocks
  // straight into the output buffer; a line the block road leaves, one by one.
  constexpr qsizetype kBlock = 64 * 1024;
  const int32_t inArray = std::min<int32_t>(count, static_cast<int32_t>(stored.size()));
  int32_t i = 0;
  while (i < inArray && !out.Failed()) {
    qsizetype done = 0;
    if (char* const block = out.Claim(kBlock)) {
      out.Advance(XmlValueLines(format, stored.data() + i, inArray - i, block, kBlock, done));
      i += static_cast<int32_t>(done);
    }
    if (done == 0) writeLine(stored[i++]);
  }
  for (; i < count && !out.Failed(); ++i) writeLine(column.ValueAtIndex(i + 1));
  out.Write("  </metric>\r\n");
}

bool SaveQVZ2XML(const QString& input, QString& output, bool interactive) {
  QVZ2XML exporter;
  return exporter.SaveQVZ2XML(input, output, interactive);
}

}  // namespace ombrelle
