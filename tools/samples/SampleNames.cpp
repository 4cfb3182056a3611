#include "SampleNames.h"

#include <array>

namespace ombrelle::samples {

namespace {

template <size_t N>
QString Pick(SampleRandom& random, const std::array<const char*, N>& words) {
  return QString::fromUtf8(words[static_cast<size_t>(random.Range(0, static_cast<int>(N) - 1))]);
}

constexpr std::array<const char*, 48> kNouns = {
    "Customer", "Invoice",  "Order",    "Payment",  "Tariff",   "Account",  "Ledger",
    "Report",   "Vessel",   "Berth",    "Container", "Cargo",   "Manifest", "Crane",
    "Schedule", "Shipment", "Stock",    "Item",     "Supplier", "Pallet",   "Delivery",
    "Address",  "Contract", "User",     "Session",  "Settings", "Printer",  "Export",
    "Import",   "Audit",    "Currency", "Tax",      "Discount", "Price",    "Journal",
    "Receipt",  "Reminder", "Voyage",   "Pilot",    "Tide",     "Dock",     "Gate",
    "Truck",    "Permit",   "Fee",      "Batch",    "Location", "Quote"};
constexpr std::array<const char*, 20> kClassSuffixes = {
    "Service", "Repository", "Manager", "Validator", "Builder", "Factory",  "Controller",
    "View",    "Model",      "Calculator", "Provider", "Handler", "Mapper", "Parser",
    "Exporter", "Cache",     "Queue",   "Entity",    "Rules",   "Store"};
constexpr std::array<const char*, 28> kVerbs = {
    "Get",   "Set",   "Load",  "Save",   "Calculate", "Validate", "Print", "Refresh", "Update",
    "Delete", "Create", "Find", "Add",    "Remove",    "Format",   "Parse", "Export",  "Import",
    "Check", "Build", "Apply", "Post",   "Cancel",    "Open",     "Close", "Reset",   "Fill",
    "Show"};
constexpr std::array<const char*, 12> kControls = {
    "cmdOK", "cmdCancel", "cmdSave", "cmdPrint", "txtName", "txtAmount",
    "cboCustomer", "lstItems", "grdLines", "chkActive", "optMode", "mnuFile"};
constexpr std::array<const char*, 8> kEvents = {"Click",    "Change",  "KeyPress", "LostFocus",
                                                "GotFocus", "Validate", "DblClick", "MouseUp"};
constexpr std::array<const char*, 5> kFormEvents = {"Load", "Unload", "Resize", "Activate",
                                                    "QueryUnload"};
constexpr std::array<const char*, 12> kVariableWords = {
    "Count", "Total", "Index", "Name", "Path", "Dirty", "Cache", "Items",
    "Current", "Limit", "Buffer", "State"};
constexpr std::array<const char*, 6> kVb6TypePrefixes = {"", "str", "lng", "bln", "dbl", "col"};
constexpr std::array<const char*, 6> kVb6Folders = {"Forms", "Classes", "Modules",
                                                    "Reports", "Import", "Common"};
constexpr std::array<const char*, 10> kNetAreas = {
    "Billing", "Berths", "Cargo", "Customs", "Gates", "Pilots", "Reports", "Security",
    "Scheduling", "Infrastructure"};
constexpr std::array<const char*, 4> kNetLayers = {"Harbour.Core", "Harbour.Data",
                                                   "Harbour.UI", "Harbour.Services"};

// Names with letters beyond ASCII; all of them have a form in Windows-1252,
// the code page in which row names travel.
constexpr std::array<const char*, 4> kAccentedNouns = {"Übersicht", "Réception", "Gebühr",
                                                       "Señal"};
constexpr std::array<const char*, 4> kAccentedMethods = {"Prüfen", "VérifierQuantité",
                                                         "BerechneGebühr", "Größe"};
constexpr std::array<const char*, 4> kAccentedVariables = {"mGröße", "mDépôt", "mZähler",
                                                           "mAñoFiscal"};

}  // namespace

QString SampleNames::Unique(const QString& owner, const QString& name) {
  QString candidate = name;
  for (int n = 2; !m_used.insert(owner + QLatin1Char('.') + candidate.toLower()).second; ++n)
    candidate = name + QString::number(n);
  return candidate;
}

QString SampleNames::FileName(SampleRandom& random, SampleFileKind kind, bool accented,
                              QString& base) {
  const QString noun = accented ? Pick(random, kAccentedNouns) : Pick(random, kNouns);
  QString folder;
  QString extension;
  if (m_dotNet) {
    QString name = noun;
    if (kind == FileForm) name += QStringLiteral("Form");
    else if (kind == FileModule) name += QStringLiteral("Module");
    else name += Pick(random, kClassSuffixes);
    base = Unique(QString(), name);
    const QString layer = kind == FileForm ? QStringLiteral("Harbour.UI") : Pick(random, kNetLayers);
    folder = layer + QLatin1Char('/') + Pick(random, kNetAreas);
    extension = QStringLiteral(".vb");
  } else {
    static const char* const kPrefixes[] = {"frm", "cls", "mod"};
    static const char* const kExtensions[] = {".frm", ".cls", ".bas"};
    base = Unique(QString(), QString::fromLatin1(kPrefixes[kind]) + noun);
    folder = random.Chance(0.7) ? QString::fromLatin1(kVb6Folders[static_cast<size_t>(kind)])
                                : Pick(random, kVb6Folders);
    extension = QString::fromLatin1(kExtensions[kind]);
  }
  return folder + QLatin1Char('/') + base + extension;
}

QString SampleNames::ExtraClassName(SampleRandom& random, const QString& fileBase) {
  static const char* const kNested[] = {"Item", "Options", "EventArgs", "Result", "Row",
                                        "Comparer", "Info", "Exception"};
  return Unique(QString(), fileBase + QString::fromLatin1(kNested[random.Range(0, 7)]));
}

QString SampleNames::MethodName(SampleRandom& random, const QString& owner, SampleFileKind kind,
                                bool event, bool accented) {
  QString name;
  if (accented) {
    name = Pick(random, kAccentedMethods);
  } else if (event && kind == FileForm) {
    name = random.Chance(0.15) ? (m_dotNet ? owner : QStringLiteral("Form")) + QLatin1Char('_') +
                                     Pick(random, kFormEvents)
                               : Pick(random, kControls) + QLatin1Char('_') + Pick(random, kEvents);
    if (m_dotNet && name.startsWith(QStringLiteral("cmd"))) name.replace(0, 3, QStringLiteral("btn"));
  } else if (event) {
    name = m_dotNet ? QStringLiteral("New")
                    : (random.Chance(0.5) ? QStringLiteral("Class_Initialize")
                                          : QStringLiteral("Class_Terminate"));
  } else {
    name = Pick(random, kVerbs) + Pick(random, kNouns);
    if (random.Chance(0.2)) name += Pick(random, kVariableWords);
  }
  return Unique(owner, name);
}

QString SampleNames::VariableName(SampleRandom& random, const QString& owner, SampleFileKind kind,
                                  bool accented) {
  QString name;
  if (accented) {
    name = Pick(random, kAccentedVariables);
  } else {
    const QString word = Pick(random, kNouns) + Pick(random, kVariableWords);
    if (m_dotNet) {
      name = QLatin1Char('_') + word.left(1).toLower() + word.mid(1);
    } else {
      const QString prefix = kind == FileModule ? QStringLiteral("g") : QStringLiteral("m");
      name = prefix + Pick(random, kVb6TypePrefixes) + word;
    }
  }
  return Unique(owner, name);
}

}  // namespace ombrelle::samples
