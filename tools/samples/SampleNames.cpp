#include "SampleNames.h"

#include <array>
#include <functional>

namespace ombrelle::samples {

namespace {

template <size_t N>
QString Pick(SampleRandom& random, const std::array<const char*, N>& words) {
  return QString::fromUtf8(words[static_cast<size_t>(random.Range(0, static_cast<int>(N) - 1))]);
}

constexpr std::array<const char*, 48> kNouns = {
    "Customer", "Invoice",  "Order",     "Payment", "Tariff",   "Account", "Ledger",   "Report",
    "Vessel",   "Berth",    "Container", "Cargo",   "Manifest", "Crane",   "Schedule", "Shipment",
    "Stock",    "Item",     "Supplier",  "Pallet",  "Delivery", "Address", "Contract", "User",
    "Session",  "Settings", "Printer",   "Export",  "Import",   "Audit",   "Currency", "Tax",
    "Discount", "Price",    "Journal",   "Receipt", "Reminder", "Voyage",  "Pilot",    "Tide",
    "Dock",     "Gate",     "Truck",     "Permit",  "Fee",      "Batch",   "Location", "Quote"};
constexpr std::array<const char*, 20> kClassSuffixes = {
    "Service",  "Repository", "Manager",    "Validator", "Builder", "Factory", "Controller",
    "View",     "Model",      "Calculator", "Provider",  "Handler", "Mapper",  "Parser",
    "Exporter", "Cache",      "Queue",      "Entity",    "Rules",   "Store"};
constexpr std::array<const char*, 28> kVerbs = {
    "Get",     "Set",    "Load",   "Save",   "Calculate", "Validate", "Print",
    "Refresh", "Update", "Delete", "Create", "Find",      "Add",      "Remove",
    "Format",  "Parse",  "Export", "Import", "Check",     "Build",    "Apply",
    "Post",    "Cancel", "Open",   "Close",  "Reset",     "Fill",     "Show"};
constexpr std::array<const char*, 22> kControls = {
    "cmdOK",     "cmdCancel",  "cmdSave",  "cmdPrint",  "cmdFind",   "cmdDelete",
    "txtName",   "txtAmount",  "txtDate",  "txtNote",   "txtSearch", "cboCustomer",
    "cboStatus", "lstItems",   "grdLines", "chkActive", "optMode",   "mnuFile",
    "mnuEdit",   "tmrRefresh", "picLogo",  "tabPages"};
constexpr std::array<const char*, 7> kRuntimeMethods = {
    "New", "Finalize", "Dispose", "OnPropertyChanged", "ToString", "Equals", "GetHashCode"};
constexpr std::array<const char*, 6> kFormSuffixes = {"Form",   "Dialog", "View",
                                                      "Window", "Editor", "Wizard"};
constexpr std::array<const char*, 12> kNested = {"Item", "Options",  "EventArgs", "Result",
                                                 "Row",  "Comparer", "Info",      "Exception",
                                                 "Key",  "Summary",  "Filter",    "Snapshot"};
constexpr std::array<const char*, 8> kEvents = {"Click",    "Change",   "KeyPress", "LostFocus",
                                                "GotFocus", "Validate", "DblClick", "MouseUp"};
constexpr std::array<const char*, 5> kFormEvents = {"Load", "Unload", "Resize", "Activate",
                                                    "QueryUnload"};
constexpr std::array<const char*, 12> kVariableWords = {"Count",   "Total", "Index",  "Name",
                                                        "Path",    "Dirty", "Cache",  "Items",
                                                        "Current", "Limit", "Buffer", "State"};
constexpr std::array<const char*, 6> kVb6TypePrefixes = {"", "str", "lng", "bln", "dbl", "col"};
constexpr std::array<const char*, 6> kVb6Folders = {"Forms",   "Classes", "Modules",
                                                    "Reports", "Import",  "Common"};
constexpr std::array<const char*, 10> kNetAreas = {
    "Billing", "Berths",  "Cargo",    "Customs",    "Gates",
    "Pilots",  "Reports", "Security", "Scheduling", "Infrastructure"};
constexpr std::array<const char*, 4> kNetLayers = {"Harbour.Core", "Harbour.Data", "Harbour.UI",
                                                   "Harbour.Services"};

// Names with letters beyond ASCII; all of them have a form in Windows-1252,
// the code page in which row names travel.
constexpr std::array<const char*, 4> kAccentedNouns = {"Übersicht", "Réception", "Gebühr", "Señal"};
constexpr std::array<const char*, 4> kAccentedMethods = {"Prüfen", "VérifierQuantité",
                                                         "BerechneGebühr", "Größe"};
constexpr std::array<const char*, 4> kAccentedVariables = {"mGröße", "mDépôt", "mZähler",
                                                           "mAñoFiscal"};

}  // namespace

QString SampleNames::Fresh(const QString& owner, const std::function<QString()>& draw) {
  // A few more draws before a number has to tell two names apart.
  QString name = draw();
  for (int attempt = 0; attempt < 12 && m_used.count(owner + QLatin1Char('.') + name.toLower());
       ++attempt)
    name = draw();
  return Unique(owner, name);
}

QString SampleNames::Unique(const QString& owner, const QString& name) {
  QString candidate = name;
  for (int n = 2; !m_used.insert(owner + QLatin1Char('.') + candidate.toLower()).second; ++n)
    candidate = name + QString::number(n);
  return candidate;
}

QString SampleNames::FileName(SampleRandom& random, SampleFileKind kind, bool accented,
                              QString& base) {
  const auto noun = [&] { return accented ? Pick(random, kAccentedNouns) : Pick(random, kNouns); };
  QString folder;
  QString extension;
  if (m_dotNet) {
    base = Fresh(QString(), [&] {
      if (kind == FileForm) return noun() + Pick(random, kFormSuffixes);
      if (kind == FileModule) return noun() + QStringLiteral("Module");
      return noun() + Pick(random, kClassSuffixes);
    });
    const QString layer =
        kind == FileForm ? QStringLiteral("Harbour.UI") : Pick(random, kNetLayers);
    folder = layer + QLatin1Char('/') + Pick(random, kNetAreas);
    extension = QStringLiteral(".vb");
  } else {
    static const char* const kPrefixes[] = {"frm", "cls", "mod"};
    static const char* const kExtensions[] = {".frm", ".cls", ".bas"};
    base = Fresh(QString(), [&] { return QString::fromLatin1(kPrefixes[kind]) + noun(); });
    folder = random.Chance(0.7) ? QString::fromLatin1(kVb6Folders[static_cast<size_t>(kind)])
                                : Pick(random, kVb6Folders);
    extension = QString::fromLatin1(kExtensions[kind]);
  }
  return folder + QLatin1Char('/') + base + extension;
}

QString SampleNames::ExtraClassName(SampleRandom& random, const QString& fileBase) {
  return Fresh(QString(), [&] {
    return random.Chance(0.5) ? fileBase + Pick(random, kNested)
                              : Pick(random, kNouns) + Pick(random, kNested);
  });
}

QString SampleNames::MethodName(SampleRandom& random, const QString& owner, SampleFileKind kind,
                                bool event, bool accented) {
  if (event && kind != FileForm && !accented) {
    // A class has few methods that the runtime calls; once they are taken it
    // gets ordinary ones.
    for (int attempt = 0; attempt < 8; ++attempt) {
      const QString name = DrawMethod(random, owner, kind, true, false);
      if (m_used.insert(owner + QLatin1Char('.') + name.toLower()).second) return name;
    }
    event = false;
  }
  return Fresh(owner, [&] { return DrawMethod(random, owner, kind, event, accented); });
}

QString SampleNames::DrawMethod(SampleRandom& random, const QString& owner, SampleFileKind kind,
                                bool event, bool accented) const {
  QString name;
  if (accented) {
    name = Pick(random, kAccentedMethods);
  } else if (event && kind == FileForm) {
    name = random.Chance(0.15) ? (m_dotNet ? owner : QStringLiteral("Form")) + QLatin1Char('_') +
                                     Pick(random, kFormEvents)
                               : Pick(random, kControls) + QLatin1Char('_') + Pick(random, kEvents);
    if (m_dotNet && name.startsWith(QStringLiteral("cmd")))
      name.replace(0, 3, QStringLiteral("btn"));
  } else if (event) {
    name = m_dotNet ? Pick(random, kRuntimeMethods)
                    : (random.Chance(0.5) ? QStringLiteral("Class_Initialize")
                                          : QStringLiteral("Class_Terminate"));
  } else {
    name = Pick(random, kVerbs) + Pick(random, kNouns);
    if (random.Chance(0.2)) name += Pick(random, kVariableWords);
  }
  return name;
}

QString SampleNames::VariableName(SampleRandom& random, const QString& owner, SampleFileKind kind,
                                  bool accented) {
  return Fresh(owner, [&] {
    QString name;
    if (accented) {
      name = Pick(random, kAccentedVariables);
    } else {
      const QString word = Pick(random, kNouns) +
                           (random.Chance(0.35) ? Pick(random, kNouns) : QString()) +
                           Pick(random, kVariableWords);
      if (m_dotNet) {
        name = QLatin1Char('_') + word.left(1).toLower() + word.mid(1);
      } else {
        const QString prefix = kind == FileModule ? QStringLiteral("g") : QStringLiteral("m");
        name = prefix + Pick(random, kVb6TypePrefixes) + word;
      }
    }
    return name;
  });
}

}  // namespace ombrelle::samples
