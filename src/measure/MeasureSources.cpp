#include "measure/MeasuredProject.h"

#include "measure/ModuleCounter.h"
#include "measure/SourceText.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <unordered_map>
#include <unordered_set>

namespace ombrelle {

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
// Up to this many names a procedure declares are searched without sorting.
constexpr size_t kLinearLocals = 16;

// The metrics stored for each class, ascending; the help page "measuring.html"
// gives the counting rule of each.
const std::vector<MetricId> kProjectMetrics = {1002, 1009, 1010, 1011, 1015, 1019, 1200, 1201,
                                               1202, 1203, 1204, 1205, 1206, 1207, 1210, 1211,
                                               1240, 1241, 1242, 1243, 1244, 1301, 1400};
const std::vector<MetricId> kFileMetrics = {2001, 2012, 2013, 2014, 2020, 2030,
                                            2034, 2035, 2036, 2100, 2101, 2103};
const std::vector<MetricId> kClassMetrics = {3001, 3101, 3112, 3113, 3114, 3150, 3151,
                                             3153, 3200, 3210, 3212, 3213, 3215, 3320};
const std::vector<MetricId> kProcedureMetrics = {4001, 4012, 4013, 4014, 4020, 4030,
                                                 4035, 4050, 4051, 4053, 4080, 4120,
                                                 4121, 4122, 4140, 4141, 4180};
const std::vector<MetricId> kVariableMetrics = {5001, 5002, 5020, 5100};

struct FileResult {
  QString name;
  QString extension;  // lower case, without the dot
  double bytes = 0;
  double date = kNaN;
  ModuleCount count;
  int decisions = 0;           // over the file's procedures
  int procedureVariables = 0;  // parameters and local variables
};

struct VariableResult {
  int file = 0;
  int index = 0;  // within the file's variables
  int reads = 0;
  int writes = 0;
  int users = 0;
  int lastUser = -1;
  int lastProcedure = -1;
};

bool IsClassFile(const QString& extension) {
  return extension == QLatin1String("cls") || extension == QLatin1String("frm") ||
         extension == QLatin1String("ctl") || extension == QLatin1String("dsr");
}

// Names compared as their lower-case forms (QString::toLower), without
// making those forms when the names are ASCII, as nearly all are.
bool IsAsciiText(QStringView s) {
  for (const QChar c : s)
    if (c.unicode() >= 0x80) return false;
  return true;
}

char16_t LowerAscii(char16_t c) {
  return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c;
}

struct LowerCaseHash {
  size_t operator()(const QString& s) const {
    if (!IsAsciiText(s)) return Hash(s.toLower());
    return Hash(s);
  }
  // FNV-1a over the characters in lower case (ASCII ones folded here).
  static size_t Hash(QStringView s) {
    std::uint64_t h = 14695981039346656037ull;
    for (const QChar c : s) h = (h ^ LowerAscii(c.unicode())) * 1099511628211ull;
    return static_cast<size_t>(h);
  }
};

struct LowerCaseEqual {
  bool operator()(const QString& a, const QString& b) const {
    if (!IsAsciiText(a) || !IsAsciiText(b)) return a.toLower() == b.toLower();
    if (a.size() != b.size()) return false;
    for (qsizetype i = 0; i < a.size(); ++i)
      if (LowerAscii(a[i].unicode()) != LowerAscii(b[i].unicode())) return false;
    return true;
  }
};

// Row names made unique: a name already given (ignoring case) gets the first
// free number from 2 on. Each name remembers where its numbers went on, so
// that many equal names take linear time.
class UniqueNames {
 public:
  explicit UniqueNames(size_t expected = 0) { m_used.reserve(expected); }
  QString Make(const QString& name) {
    if (m_used.insert(name).second) return name;
    int& next = m_next[name];
    for (next = std::max(next, 2);; ++next) {
      const QString candidate = name + QString::number(next);
      if (m_used.insert(candidate).second) {
        ++next;
        return candidate;
      }
    }
  }

 private:
  std::unordered_set<QString, LowerCaseHash, LowerCaseEqual> m_used;
  std::unordered_map<QString, int, LowerCaseHash, LowerCaseEqual> m_next;
};

QString ProcedureRowName(const QString& module, const ProcedureCount& p) {
  QLatin1StringView kind;
  switch (p.kind) {
    case ProcedureKind::PropertyGet:
      kind = QLatin1StringView(" (Get)");
      break;
    case ProcedureKind::PropertyLet:
      kind = QLatin1StringView(" (Let)");
      break;
    case ProcedureKind::PropertySet:
      kind = QLatin1StringView(" (Set)");
      break;
    default:
      break;
  }
  // Made in one piece: one allocation for the whole name.
  QString name;
  name.reserve(module.size() + 1 + p.name.size() + kind.size());
  name.append(module).append(QLatin1Char('.')).append(p.name).append(kind);
  return name;
}

MeasuredClass MakeClass(MetricClass classNr, const std::vector<MetricId>& ids, int rows) {
  MeasuredClass c;
  c.classNr = classNr;
  c.metrics = ids;
  c.values.resize(ids.size());
  for (std::vector<double>& v : c.values) v.assign(static_cast<size_t>(rows), kNaN);
  return c;
}

double LineValue(const LineCounts& l, int which) {
  switch (which) {
    case 0:
      return l.physical;
    case 1:
      return l.code;
    case 2:
      return l.comment;
    case 3:
      return l.blank;
    case 4:
      return l.meaningful;
    case 5:
      return l.statements;
    case 6:
      return l.declarative;
    default:
      return l.control;
  }
}

// Numbers by a name's hash within a scope (a file, or 0 for one scope only),
// in an open-addressing table at most half full; the first number added for
// a name stays. Names never hash to 0, which marks an empty slot.
class NameIndex {
 public:
  explicit NameIndex(size_t expected) {
    const size_t slots = std::bit_ceil(std::max<size_t>(16, expected * 2));
    m_shift = 64 - std::countr_zero(slots);
    m_entries.resize(slots);
  }
  void Add(NameHash name, int scope, int value) {
    Entry& e = Slot(name, scope);
    if (e.name == 0) e = {name, scope, value};
  }
  // The number added for the name in the scope, or -1.
  int Find(NameHash name, int scope) const {
    return const_cast<NameIndex*>(this)->Slot(name, scope).value;
  }

 private:
  struct Entry {
    NameHash name = 0;
    int scope = 0;
    int value = -1;
  };
  // The entry of the name in the scope, or the empty one where it would go.
  Entry& Slot(NameHash name, int scope) {
    const size_t mask = m_entries.size() - 1;
    const std::uint64_t mixed =
        (name + static_cast<std::uint64_t>(scope) * 0x9E3779B97F4A7C15ull) * 0xBF58476D1CE4E5B9ull;
    for (size_t slot = static_cast<size_t>(mixed >> m_shift);; slot = (slot + 1) & mask) {
      Entry& e = m_entries[slot];
      if (e.name == 0 || (e.name == name && e.scope == scope)) return e;
    }
  }
  std::vector<Entry> m_entries;
  int m_shift = 0;
};

// Finds each procedure's uses of module-level variables. A name qualified by
// a module's name is that module's variable (public, or of the same module);
// an unqualified name not declared in the procedure is a variable of its own
// module, else a public variable of a standard module. `accessed` receives
// the number of distinct module-level variables each procedure uses.
void Resolve(std::vector<FileResult>& files, std::vector<VariableResult>& variables,
             std::vector<int>& accessed) {
  NameIndex modules(files.size());
  NameIndex own(variables.size());  // scope: the file
  NameIndex global(variables.size());
  for (size_t v = 0; v < variables.size(); ++v) {
    const VariableResult& var = variables[v];
    const FileResult& f = files[static_cast<size_t>(var.file)];
    const ModuleVariable& mv = f.count.variables[static_cast<size_t>(var.index)];
    const NameHash h = HashName(mv.name);
    own.Add(h, var.file, static_cast<int>(v));
    if (mv.isPublic && f.extension == QLatin1String("bas")) global.Add(h, 0, static_cast<int>(v));
  }
  for (size_t f = 0; f < files.size(); ++f)
    modules.Add(HashName(files[f].count.moduleName), 0, static_cast<int>(f));

  int procIndex = 0;
  // The names each procedure declares, sorted to be searched; one buffer serves every procedure.
  std::vector<NameHash> locals;
  for (size_t f = 0; f < files.size(); ++f) {
    for (ProcedureCount& p : files[f].count.procedures) {
      int& seen = accessed[static_cast<size_t>(procIndex)];
      // A few names are looked through one by one; many are sorted first.
      const bool sorted = p.localNames.size() > kLinearLocals;
      if (sorted) {
        locals.assign(p.localNames.begin(), p.localNames.end());
        std::sort(locals.begin(), locals.end());
      }
      auto isLocal = [&](NameHash name) {
        if (sorted) return std::binary_search(locals.begin(), locals.end(), name);
        return std::find(p.localNames.begin(), p.localNames.end(), name) != p.localNames.end();
      };
      for (size_t u = p.firstUse; u < p.endUse; ++u) {
        const NameUse& use = files[f].count.uses[u];
        int v = -1;
        if (use.qualifier != 0) {
          const int module = modules.Find(use.qualifier, 0);
          if (module < 0) continue;
          const int found = own.Find(use.name, module);
          if (found < 0) continue;
          const VariableResult& var = variables[static_cast<size_t>(found)];
          const bool visible = static_cast<size_t>(module) == f ||
                               files[static_cast<size_t>(var.file)]
                                   .count.variables[static_cast<size_t>(var.index)]
                                   .isPublic;
          if (!visible) continue;
          v = found;
        } else {
          if (isLocal(use.name)) continue;
          v = own.Find(use.name, static_cast<int>(f));
          if (v < 0) v = global.Find(use.name, 0);
          if (v < 0) continue;
        }
        VariableResult& var = variables[static_cast<size_t>(v)];
        (use.write ? var.writes : var.reads) += 1;
        if (var.lastUser != static_cast<int>(f)) {
          var.lastUser = static_cast<int>(f);
          ++var.users;
        }
        if (var.lastProcedure != procIndex) {
          var.lastProcedure = procIndex;
          ++seen;
        }
      }
      ++procIndex;
    }
    std::vector<NameUse>().swap(files[f].count.uses);
  }
}

// Adds a metric in its place among the ascending metrics of `c`.
void InsertMetric(MeasuredClass& c, MetricId id, std::vector<double> values) {
  const auto at = std::lower_bound(c.metrics.begin(), c.metrics.end(), id);
  c.values.insert(c.values.begin() + (at - c.metrics.begin()), std::move(values));
  c.metrics.insert(at, id);
}

// The date metrics, when the caller gave any file a date: the newest and the
// average date of the dated files (1000, 1021) and each file's date (2031).
void AddDates(const std::vector<FileResult>& files, MeasuredProject& out) {
  double newest = kNaN, sum = 0, dated = 0;
  std::vector<double> dates;
  for (const FileResult& f : files) {
    dates.push_back(f.date);
    if (std::isnan(f.date)) continue;
    newest = std::isnan(newest) ? f.date : std::max(newest, f.date);
    sum += f.date;
    ++dated;
  }
  if (dated == 0) return;
  for (MeasuredClass& c : out.classes) {
    if (c.classNr == ClassProject) {
      InsertMetric(c, 1000, {newest});
      InsertMetric(c, 1021, {sum / dated});
    } else if (c.classNr == ClassFile) {
      InsertMetric(c, 2031, dates);
    }
  }
}

// The number of distinct values among `hashes`, by an open-addressing table
// at most half full (names never hash to 0, which marks an empty slot).
size_t CountDistinct(const std::vector<NameHash>& hashes) {
  const size_t slots = std::bit_ceil(std::max<size_t>(16, hashes.size() * 2));
  const int shift = 64 - std::countr_zero(slots);
  std::vector<NameHash> table(slots, 0);
  size_t distinct = 0;
  for (const NameHash h : hashes) {
    for (size_t slot = static_cast<size_t>((h * 0x9E3779B97F4A7C15ull) >> shift);;
         slot = (slot + 1) & (slots - 1)) {
      if (table[slot] == h) break;
      if (table[slot] == 0) {
        table[slot] = h;
        ++distinct;
        break;
      }
    }
  }
  return distinct;
}

// Lengths of one set of names.
struct NameLengths {
  double characters = 0;
  double count = 0;
  void Add(int length) {
    characters += length;
    ++count;
  }
  void Add(const NameLengths& other) {
    characters += other.characters;
    count += other.count;
  }
  double Average() const { return count > 0 ? characters / count : kNaN; }
};

// The name metrics of the project: all names (1240), variables and parameters
// (1241), constants (1242), procedures (1243) and the share of distinct names
// (1244). Event handlers and implementing procedures keep neither their names
// in 1243 nor their parameters in 1241; each property name counts once. Names
// differing only in letter case are the same name: the hashes of all names
// are gathered, and the distinct ones counted once at the end.
std::vector<double> NameMetrics(const std::vector<FileResult>& files) {
  NameLengths variables, constants, procedures, all;
  std::vector<NameHash> hashes;
  auto add = [&hashes](NameLengths& to, NameHash hash, int length) {
    to.Add(length);
    hashes.push_back(hash);
  };
  auto addName = [&add](NameLengths& to, const QString& name) {
    add(to, HashName(name), static_cast<int>(name.size()));
  };
  std::unordered_set<NameHash> seen;  // the file's procedure names counted so far
  for (const FileResult& f : files) {
    const ModuleCount& m = f.count;
    for (const ModuleVariable& v : m.variables) addName(variables, v.name);
    for (const QString& c : m.constants) addName(constants, c);
    seen.clear();
    for (const ProcedureCount& p : m.procedures) {
      const bool handler = IsHandlerName(p.name, m.handlerPrefixes);
      for (size_t k = 0; k < p.localNames.size(); ++k)
        if (!handler || k >= static_cast<size_t>(p.parameters))
          add(variables, p.localNames[k], p.localLengths[k]);
      if (handler) continue;
      // A property's Get, Let and Set share one name, counted once.
      const NameHash h = HashName(p.name);
      if (seen.insert(h).second) add(procedures, h, static_cast<int>(p.name.size()));
    }
    for (const QString& n : m.otherNames) addName(all, n);
    if (IsClassFile(f.extension) || f.extension == QLatin1String("bas")) addName(all, m.moduleName);
  }
  all.Add(variables);
  all.Add(constants);
  all.Add(procedures);
  const auto distinct = static_cast<double>(CountDistinct(hashes));
  return {all.Average(), variables.Average(), constants.Average(), procedures.Average(),
          all.count > 0 ? distinct / all.count : kNaN};
}

}  // namespace

MeasuredProject MeasureSources(const QString& projectName, const std::vector<SourceFile>& files) {
  MeasuredProject out;
  std::vector<FileResult> results;
  // One text serves every file in turn.
  QString text;
  for (const SourceFile& file : files) {
    if (LooksBinary(file.bytes)) {
      out.warnings << QStringLiteral("%1: binary content, not measured").arg(file.name);
      continue;
    }
    FileResult r;
    r.name = file.name;
    const QString leaf = file.name.mid(file.name.lastIndexOf(QLatin1Char('/')) + 1);
    const qsizetype dot = leaf.lastIndexOf(QLatin1Char('.'));
    r.extension = dot < 0 ? QString() : leaf.mid(dot + 1).toLower();
    r.bytes = static_cast<double>(file.bytes.size());
    r.date = file.date;
    DecodeSource(file.bytes, text);
    r.count = CountModule(text, dot < 0 ? leaf : leaf.left(dot));
    if (!r.count.problems.isEmpty())
      out.warnings << QStringLiteral("%1: %2").arg(file.name,
                                                   r.count.problems.join(QStringLiteral("; ")));
    for (const ProcedureCount& p : r.count.procedures) {
      r.decisions += p.decisions;
      r.procedureVariables += p.parameters + p.locals;
    }
    results.push_back(std::move(r));
  }

  std::vector<VariableResult> variables;
  int procedureCount = 0;
  for (size_t f = 0; f < results.size(); ++f) {
    for (size_t v = 0; v < results[f].count.variables.size(); ++v)
      variables.push_back({static_cast<int>(f), static_cast<int>(v)});
    procedureCount += static_cast<int>(results[f].count.procedures.size());
  }
  std::vector<int> accessed(static_cast<size_t>(procedureCount), 0);
  Resolve(results, variables, accessed);

  // Project.
  {
    MeasuredClass c = MakeClass(ClassProject, kProjectMetrics, 1);
    c.names << projectName;
    LineCounts sum;
    double bytes = 0, procs = 0, vars = 0, moduleVars = 0, consts = 0, types = 0, enums = 0,
           enumConsts = 0, forms = 0, modules = 0, classes = 0, decisions = 0;
    for (const FileResult& r : results) {
      const ModuleCount& m = r.count;
      for (int k = 0; k < 8; ++k) {
        const int add = static_cast<int>(LineValue(m.lines, k));
        int* fields[] = {&sum.physical,   &sum.code,       &sum.comment,     &sum.blank,
                         &sum.meaningful, &sum.statements, &sum.declarative, &sum.control};
        *fields[k] += add;
      }
      bytes += r.bytes;
      procs += static_cast<double>(m.procedures.size());
      moduleVars += static_cast<double>(m.variables.size());
      vars += static_cast<double>(m.variables.size()) + r.procedureVariables;
      consts += static_cast<double>(m.constants.size());
      types += m.types;
      enums += m.enums;
      enumConsts += m.enumConstants;
      forms += r.extension == QLatin1String("frm");
      modules += r.extension == QLatin1String("bas");
      classes += IsClassFile(r.extension);
      decisions += r.decisions;
    }
    const double values[] = {LineValue(sum, 0),
                             LineValue(sum, 1),
                             LineValue(sum, 2),
                             LineValue(sum, 3),
                             LineValue(sum, 4),
                             bytes / 1024.0,
                             static_cast<double>(results.size()),
                             procs,
                             vars,
                             consts,
                             types,
                             enums,
                             enumConsts,
                             moduleVars,
                             forms,
                             modules};
    size_t k = 0;
    for (double v : values) c.values[k++][0] = v;
    for (double v : NameMetrics(results)) c.values[k++][0] = v;
    c.values[k++][0] = decisions + 1;
    c.values[k++][0] = classes;
    out.classes.push_back(std::move(c));
  }

  // Files and classes.
  {
    MeasuredClass fc = MakeClass(ClassFile, kFileMetrics, static_cast<int>(results.size()));
    int classRows = 0;
    for (const FileResult& r : results) classRows += IsClassFile(r.extension);
    MeasuredClass cc = MakeClass(ClassClass, kClassMetrics, classRows);
    UniqueNames classNames;
    int row = 0, classRow = 0;
    for (const FileResult& r : results) {
      const ModuleCount& m = r.count;
      const LineCounts& l = m.lines;
      fc.names << r.name;
      const double fileValues[] = {LineValue(l, 0),
                                   LineValue(l, 1),
                                   LineValue(l, 2),
                                   LineValue(l, 3),
                                   LineValue(l, 4),
                                   r.bytes / 1024.0,
                                   static_cast<double>(m.procedures.size()),
                                   static_cast<double>(m.variables.size()) + r.procedureVariables,
                                   static_cast<double>(m.constants.size()),
                                   LineValue(l, 5),
                                   LineValue(l, 6),
                                   LineValue(l, 7)};
      for (size_t k = 0; k < kFileMetrics.size(); ++k) fc.values[k][row] = fileValues[k];
      ++row;
      if (!IsClassFile(r.extension)) continue;
      cc.names << classNames.Make(m.moduleName);
      int methods = 0, publicMethods = 0, publicVars = 0;
      for (const ProcedureCount& p : m.procedures) {
        if (p.kind == ProcedureKind::Declare) continue;
        ++methods;
        publicMethods += !p.isPrivate;
      }
      for (const ModuleVariable& v : m.variables) publicVars += v.isPublic;
      const double classValues[] = {static_cast<double>(methods),
                                    LineValue(l, 0),
                                    LineValue(l, 1),
                                    LineValue(l, 2),
                                    LineValue(l, 3),
                                    LineValue(l, 5),
                                    LineValue(l, 6),
                                    LineValue(l, 7),
                                    static_cast<double>(m.implements),
                                    static_cast<double>(publicMethods),
                                    static_cast<double>(m.variables.size()),
                                    static_cast<double>(publicVars),
                                    static_cast<double>(m.events),
                                    static_cast<double>(r.decisions + 1)};
      for (size_t k = 0; k < kClassMetrics.size(); ++k) cc.values[k][classRow] = classValues[k];
      ++classRow;
    }
    if (!results.empty()) out.classes.push_back(std::move(fc));
    if (classRows > 0) out.classes.push_back(std::move(cc));
  }

  // Procedures.
  if (procedureCount > 0) {
    MeasuredClass pc = MakeClass(ClassProcedure, kProcedureMetrics, procedureCount);
    UniqueNames names(static_cast<size_t>(procedureCount));
    int row = 0;
    for (const FileResult& r : results) {
      for (const ProcedureCount& p : r.count.procedures) {
        pc.names << names.Make(ProcedureRowName(r.count.moduleName, p));
        const bool code = p.kind != ProcedureKind::Declare;
        const double cc = 1 + p.decisions;
        const LineCounts& l = p.lines;
        const double values[] = {
            static_cast<double>(p.lastLine - p.firstLine + 1),
            LineValue(l, 1),
            LineValue(l, 2),
            LineValue(l, 3),
            LineValue(l, 4),
            static_cast<double>(p.parameters),
            code ? p.locals : kNaN,
            LineValue(l, 5),
            LineValue(l, 6),
            LineValue(l, 7),
            code ? static_cast<double>(accessed[static_cast<size_t>(row)]) : kNaN,
            code ? cc : kNaN,
            code ? cc + p.booleanOperators : kNaN,
            code ? cc - p.cases + p.selects : kNaN,
            code ? p.maxConditionDepth : kNaN,
            code ? p.maxLoopDepth : kNaN,
            static_cast<double>(p.name.size())};
        for (size_t k = 0; k < kProcedureMetrics.size(); ++k) pc.values[k][row] = values[k];
        ++row;
      }
    }
    out.classes.push_back(std::move(pc));
  }

  // Variables.
  if (!variables.empty()) {
    MeasuredClass vc =
        MakeClass(ClassVariable, kVariableMetrics, static_cast<int>(variables.size()));
    UniqueNames names(variables.size());
    for (size_t v = 0; v < variables.size(); ++v) {
      const VariableResult& var = variables[v];
      const FileResult& f = results[static_cast<size_t>(var.file)];
      const QString& name = f.count.variables[static_cast<size_t>(var.index)].name;
      vc.names << names.Make(f.count.moduleName + QLatin1Char('.') + name);
      vc.values[0][v] = var.reads;
      vc.values[1][v] = var.writes;
      vc.values[2][v] = var.users;
      vc.values[3][v] = static_cast<double>(name.size());
    }
    out.classes.push_back(std::move(vc));
  }
  AddDates(results, out);
  return out;
}

}  // namespace ombrelle
