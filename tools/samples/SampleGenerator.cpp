#include "SampleGenerator.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "SampleNames.h"
#include "SampleRandom.h"
#include "support/DateValue.h"

namespace ombrelle::samples {

namespace {

// Keys that separate the random streams of the kinds of entity.
enum StreamTag : std::uint64_t {
  TagFile = 1,
  TagClass = 2,
  TagProc = 3,
  TagVar = 4,
  TagFileDate = 5,
  TagKinds = 6,
  TagFileShape = 11,
  TagClassShape = 12,
  TagProcShape = 13,
  TagProject = 20,
};

double Round4(double v) { return std::nearbyint(v * 10000.0) / 10000.0; }
double Whole(double v) { return std::max(0.0, std::nearbyint(v)); }

// Entities are born at a point of the story (0 first save, 1 last save) and
// exist in every save from then on. Sixty per cent of a code base is there at
// the start; the rest arrives evenly.
double BirthOf(double u) { return u < 0.6 ? 0.0 : (u - 0.6) / 0.4; }

struct FileEntity {
  QString Path;
  QString Base;
  SampleFileKind Kind = FileModule;
  double Birth = 0;
  double Weight = 1;  // share of the procedures and variables it attracts
  double ConstTrait = 0;
  double FaninTrait = 0;
  double LineLength = 32;  // bytes per physical line
  double DesignerLines = 0;
  double CommentTrait = 1;
  std::vector<int> Classes;
  bool Accented = false;
  bool AccentUsed = false;
};

struct ClassEntity {
  QString Name;
  int File = 0;
  double Birth = 0;
  int Parent = -1;
  int Depth = 0;
  bool Abstract = false;
  int Impl = 0;
  int Events = 0;
  int Ctors = 0;
  double PublicFields = 0;
  double PublicMethods = 0.6;
  double Cohesion = 0.5;
  double Coupling = 1;
};

struct ProcEntity {
  QString Name;
  int File = 0;
  int Class = -1;
  double Birth = 0;
  bool Event = false;
  bool Dead = false;
  bool Function = false;
  double Size = 9;
  double Decision = 0.12;
  double Comment = 1;
  double Fanin = 0;
  int Params = 0;
  int NameLength = 1;
  bool Helper = false;  // split off a long procedure by the refactoring
};

struct VarEntity {
  QString Name;
  int File = 0;
  int Class = -1;
  double Birth = 0;
  int NameLength = 1;
  double Reads = 0;
  double Writes = 0;
  double Users = 1;
};

}  // namespace

// Every entity a sample project will ever have, with its traits.
struct SampleUniverse {
  std::vector<FileEntity> Files;
  std::vector<ClassEntity> Classes;
  std::vector<ProcEntity> Procs;
  std::vector<VarEntity> Vars;
};

namespace {

// Procedures longer than this are split by a refactoring.
constexpr double kSplitSize = 30;

// Index into `prefix` (running sums of weights) for a uniform draw.
int WeightedPick(const std::vector<double>& prefix, double u) {
  const double target = u * prefix.back();
  const auto it = std::upper_bound(prefix.begin(), prefix.end(), target);
  return std::min(static_cast<int>(it - prefix.begin()), static_cast<int>(prefix.size()) - 1);
}

int ParameterCount(SampleRandom& random) {
  static const double kCumulative[] = {0.3, 0.6, 0.8, 0.9, 0.95, 0.98};
  const double u = random.Uniform();
  for (int n = 0; n < 6; ++n)
    if (u < kCumulative[n]) return n;
  return random.Range(6, 9);  // a few long parameter lists
}

// Owner of a procedure or variable placed in `file`: mostly its first class.
int PickClass(SampleRandom& random, const SampleUniverse& u, const FileEntity& file) {
  if (file.Classes.empty()) return -1;
  if (file.Classes.size() == 1 || random.Chance(0.75)) return file.Classes.front();
  return file.Classes[static_cast<size_t>(random.Range(0, static_cast<int>(file.Classes.size()) - 1))];
  (void)u;
}

void BuildFiles(const SampleProject& p, SampleNames& names, SampleUniverse& u) {
  // Kinds: the class-bearing files and the modules, shuffled by the seed.
  std::vector<SampleFileKind> kinds;
  const int modules = p.DotNet ? std::max(1, p.Files * 8 / 100) : std::max(1, p.Files - p.Classes);
  for (int i = 0; i < p.Files; ++i) kinds.push_back(i < modules ? FileModule : FileClass);
  SampleRandom shuffle = SampleRandom::For(p.Seed, {TagKinds});
  for (int i = p.Files - 1; i > 0; --i) std::swap(kinds[static_cast<size_t>(i)], kinds[static_cast<size_t>(shuffle.Range(0, i))]);
  const int accented = p.Files / 3;
  for (int i = 0; i < p.Files; ++i) {
    SampleRandom r = SampleRandom::For(p.Seed, {TagFile, static_cast<std::uint64_t>(i)});
    FileEntity f;
    f.Kind = kinds[static_cast<size_t>(i)];
    if (f.Kind == FileClass && r.Chance(0.4)) f.Kind = FileForm;
    f.Accented = i == accented;
    f.Path = names.FileName(r, f.Kind, f.Accented, f.Base);
    f.Birth = BirthOf((i + 0.5) / p.Files);
    f.Weight = r.LogNormal(1.0, 0.9) * (f.Kind == FileForm ? 1.3 : 1.0);
    f.ConstTrait = r.LogNormal(f.Kind == FileModule ? 12 : 3, 0.9);
    f.FaninTrait = r.LogNormal(f.Kind == FileModule ? 6 : 2, 0.8);
    f.LineLength = r.Uniform(26, 42);
    f.DesignerLines = f.Kind == FileForm && !p.DotNet ? r.Uniform(40, 320) : 0;
    f.CommentTrait = r.LogNormal(1.0, 0.4);
    u.Files.push_back(f);
  }
}

void BuildClasses(const SampleProject& p, SampleNames& names, SampleUniverse& u) {
  std::vector<double> prefix;
  double sum = 0;
  for (size_t i = 0; i < u.Files.size(); ++i) {
    FileEntity& f = u.Files[i];
    if (f.Kind != FileModule) {
      ClassEntity c;
      c.Name = f.Base;
      c.File = static_cast<int>(i);
      c.Birth = f.Birth;
      f.Classes.push_back(static_cast<int>(u.Classes.size()));
      u.Classes.push_back(c);
      sum += f.Weight;
    }
    prefix.push_back(sum);
  }
  // .NET files hold further classes: options, results, nested helpers.
  for (int k = static_cast<int>(u.Classes.size()); p.DotNet && k < p.Classes; ++k) {
    SampleRandom r = SampleRandom::For(p.Seed, {TagClass, static_cast<std::uint64_t>(k)});
    const int file = WeightedPick(prefix, r.Uniform());
    FileEntity& f = u.Files[static_cast<size_t>(file)];
    ClassEntity c;
    c.Name = names.ExtraClassName(r, f.Base);
    c.File = file;
    c.Birth = std::max(f.Birth, BirthOf(r.Uniform()));
    f.Classes.push_back(k);
    u.Classes.push_back(c);
  }
  // Traits and, in .NET, the inheritance: a parent is born no later than its
  // child, and later classes tend to extend the recent, deeper ones.
  std::vector<int> order(u.Classes.size());
  for (size_t k = 0; k < order.size(); ++k) order[k] = static_cast<int>(k);
  std::stable_sort(order.begin(), order.end(),
                   [&](int a, int b) { return u.Classes[static_cast<size_t>(a)].Birth < u.Classes[static_cast<size_t>(b)].Birth; });
  int deepest = -1;
  for (size_t n = 0; n < order.size(); ++n) {
    ClassEntity& c = u.Classes[static_cast<size_t>(order[n])];
    SampleRandom r = SampleRandom::For(p.Seed, {TagClassShape, static_cast<std::uint64_t>(order[n])});
    const bool form = u.Files[static_cast<size_t>(c.File)].Kind == FileForm;
    c.Abstract = r.Chance(0.06) && !form;
    c.Impl = r.Chance(p.DotNet ? 0.25 : 0.1) ? r.Range(1, 3) : 0;
    c.Events = r.Chance(0.12) ? r.Range(1, 4) : 0;
    c.Ctors = p.DotNet ? (r.Chance(0.6) ? 1 : (r.Chance(0.4) ? 2 : 0)) : 0;
    c.PublicFields = r.Chance(0.55) ? 0 : r.Uniform(0.05, 0.5);
    c.PublicMethods = r.Uniform(0.35, 0.9);
    c.Cohesion = r.Uniform(0, 1);
    c.Coupling = r.Uniform(0.5, 1.6);
    if (p.DotNet && n > 0 && !form && r.Chance(0.6)) {
      const double pick = std::max(r.Uniform(), r.Uniform());
      int parent = order[std::min(n - 1, static_cast<size_t>(pick * static_cast<double>(n)))];
      if (deepest >= 0 && r.Chance(0.1)) parent = deepest;
      const ClassEntity& pc = u.Classes[static_cast<size_t>(parent)];
      if (pc.Depth < 7) {
        c.Parent = parent;
        c.Depth = pc.Depth + 1;
        if (deepest < 0 || c.Depth > u.Classes[static_cast<size_t>(deepest)].Depth) deepest = order[n];
      }
    }
  }
}

void BuildProcs(const SampleProject& p, SampleNames& names, SampleUniverse& u) {
  std::vector<double> prefix;
  double sum = 0;
  for (const FileEntity& f : u.Files) prefix.push_back(sum += f.Weight);
  for (int j = 0; j < p.Procedures; ++j) {
    SampleRandom r = SampleRandom::For(p.Seed, {TagProc, static_cast<std::uint64_t>(j)});
    ProcEntity e;
    e.File = WeightedPick(prefix, r.Uniform());
    FileEntity& f = u.Files[static_cast<size_t>(e.File)];
    e.Class = PickClass(r, u, f);
    const ClassEntity* owner = e.Class >= 0 ? &u.Classes[static_cast<size_t>(e.Class)] : nullptr;
    e.Birth = std::max(owner ? owner->Birth : f.Birth, BirthOf(r.Uniform()));
    e.Event = f.Kind == FileForm ? r.Chance(0.5) : (f.Kind == FileClass && r.Chance(0.03));
    e.Dead = !e.Event && r.Chance(0.06);
    e.Function = !e.Event && r.Chance(0.45);
    e.Size = r.LogNormal(e.Event ? 7 : 9, 0.85);
    if (r.Chance(0.005)) e.Size *= 8;  // the odd monster procedure
    e.Decision = std::clamp(0.12 + 0.05 * r.Normal(), 0.03, 0.3);
    e.Comment = r.LogNormal(1.0, 0.45);
    e.Fanin = e.Event || e.Dead ? 0 : r.LogNormal(1.5, 1.0) * (r.Chance(0.1) ? 4 : 1);
    e.Params = e.Event ? r.Range(0, 1) : ParameterCount(r);
    const QString ownerName = owner ? owner->Name : f.Base;
    const bool accented = f.Accented && !f.AccentUsed;
    f.AccentUsed = f.AccentUsed || accented;
    const QString method = names.MethodName(r, ownerName, f.Kind, e.Event, accented);
    e.Name = ownerName + QLatin1Char('.') + method;
    e.NameLength = static_cast<int>(method.size());
    u.Procs.push_back(e);
  }
  // The refactoring moves half of each long procedure into a new helper.
  if (p.RefactoringSave < 0) return;
  const double born = p.Saves.at(static_cast<size_t>(p.RefactoringSave)).Growth;
  for (int j = 0; j < p.Procedures; ++j) {
    const ProcEntity& e = u.Procs[static_cast<size_t>(j)];
    if (e.Size <= kSplitSize || e.Dead) continue;
    ProcEntity h = e;
    h.Helper = true;
    h.Birth = std::max(e.Birth, born);
    h.Event = false;
    h.Function = true;
    h.Size = e.Size * 0.45;
    h.Decision = e.Decision * 0.8;
    h.Fanin = 1;
    const qsizetype dot = e.Name.indexOf(QLatin1Char('.'));
    const QString method = names.HelperName(e.Name.left(dot), e.Name.mid(dot + 1));
    h.Name = e.Name.left(dot + 1) + method;
    h.NameLength = static_cast<int>(method.size());
    u.Procs.push_back(h);
  }
}

void BuildVars(const SampleProject& p, SampleNames& names, SampleUniverse& u) {
  std::vector<double> prefix;
  double sum = 0;
  for (const FileEntity& f : u.Files) prefix.push_back(sum += f.Weight * (f.Kind == FileModule ? 2.5 : 1));
  std::vector<bool> accentUsed(u.Files.size(), false);
  for (int j = 0; j < p.Variables; ++j) {
    SampleRandom r = SampleRandom::For(p.Seed, {TagVar, static_cast<std::uint64_t>(j)});
    VarEntity v;
    v.File = WeightedPick(prefix, r.Uniform());
    const FileEntity& f = u.Files[static_cast<size_t>(v.File)];
    v.Class = PickClass(r, u, f);
    const ClassEntity* owner = v.Class >= 0 ? &u.Classes[static_cast<size_t>(v.Class)] : nullptr;
    v.Birth = std::max(owner ? owner->Birth : f.Birth, BirthOf(r.Uniform()));
    const QString ownerName = owner ? owner->Name : f.Base;
    const bool accented = f.Accented && !accentUsed[static_cast<size_t>(v.File)];
    accentUsed[static_cast<size_t>(v.File)] = accentUsed[static_cast<size_t>(v.File)] || accented;
    const QString name = names.VariableName(r, ownerName, f.Kind, accented);
    v.Name = ownerName + QLatin1Char('.') + name;
    v.NameLength = static_cast<int>(name.size());
    v.Reads = r.Chance(0.07) ? 0 : Whole(r.LogNormal(3, 1.0));
    v.Writes = r.Chance(0.05) ? 0 : 1 + Whole(r.LogNormal(1, 0.9));
    v.Users = f.Kind == FileModule ? 1 + Whole(r.LogNormal(1.2, 0.9)) : (r.Chance(0.15) ? r.Range(2, 4) : 1);
    u.Vars.push_back(v);
  }
}

SampleUniverse BuildUniverse(const SampleProject& p) {
  SampleUniverse u;
  SampleNames names(p.DotNet);
  BuildFiles(p, names, u);
  BuildClasses(p, names, u);
  BuildProcs(p, names, u);
  BuildVars(p, names, u);
  return u;
}

double AnalysisDateOf(const SampleSave& s) {
  return DateSerial(s.Year, s.Month, s.Day) + TimeSerial(s.Hour, s.Minute, s.Second);
}

// The values of one procedure at one save.
struct ProcValues {
  double Lines = 0, Lloc = 0, Comments = 0, Blank = 0, Continued = 0, Mcomm = 0, LlocTree = 0;
  double Params = 0, Locals = 0, Stmt = 0, StmtD = 0, StmtC = 0, IoG = 0, IoP = 0;
  double IfIn = 0, IfOut = 0, Cc = 0, Cc2 = 0, Cc3 = 0, DCond = 0, DLoop = 0;
  double DCallT = 0, SCallT = 0, Dc = 0, SfIn = 0, SfOut = 0;
};

// A procedure grows a little after its birth; the refactoring halves the
// long ones and takes a third of their decisions out. The shape draws come
// from the same stream at every save, so a procedure changes only as the
// story moves it.
ProcValues ProcAt(const SampleProject& p, int j, const ProcEntity& e, double growth,
                  double commentLevel, bool refactored) {
  SampleRandom r = SampleRandom::For(p.Seed, {TagProcShape, static_cast<std::uint64_t>(j)});
  const bool split = refactored && e.Size > kSplitSize && !e.Helper;
  ProcValues v;
  v.Lloc = std::max(1.0, Whole(e.Size * (1 + 0.35 * std::max(0.0, growth - e.Birth)) * (split ? 0.5 : 1)));
  const double decision = e.Decision * (split ? 0.65 : 1);
  v.Blank = Whole(v.Lloc * r.Uniform(0.04, 0.22));
  v.Comments = Whole(v.Lloc * commentLevel * e.Comment * r.Uniform(0.6, 1.4));
  v.Continued = Whole(v.Lloc * r.Uniform(0, 0.08));
  v.Lines = v.Lloc + v.Comments + v.Blank + v.Continued;
  v.Mcomm = Whole(v.Comments * r.Uniform(0.5, 0.95) + v.Lloc * commentLevel * r.Uniform(0, 0.3));
  v.Locals = std::min(std::max(0.0, v.Lloc - 2), Whole(v.Lloc / 9 * r.Uniform(0.2, 1.8)));
  v.StmtD = 2 + v.Locals;
  const double executable = Whole(std::max(0.0, v.Lloc - 2 - v.Locals) * r.Uniform(1.0, 1.12));
  v.Stmt = v.StmtD + executable;
  v.StmtC = std::min(executable, Whole(executable * decision * r.Uniform(1.5, 2.1)));
  const double decisions = Whole(v.StmtC * r.Uniform(0.45, 0.65));
  v.Cc = 1 + decisions;
  v.Cc2 = v.Cc + Whole(decisions * r.Uniform(0, 0.45));
  v.Cc3 = std::max(1.0, v.Cc - Whole(decisions * r.Uniform(0, 0.3)));
  v.DCond = decisions == 0 ? 0 : std::clamp(Whole(std::log2(1 + decisions) * r.Uniform(0.7, 1.7)), 1.0, decisions);
  const double loops = Whole(decisions * r.Uniform(0.05, 0.35));
  v.DLoop = loops == 0 ? 0 : std::min(loops, 1 + std::floor(std::log2(1 + loops) * r.Uniform(0.6, 1.8)));
  v.Params = e.Params;
  const double io = e.Params + (e.Function ? 1 : 0);
  v.IoP = std::min(io, Whole(io * r.Uniform(0.5, 1.0)));
  v.IoG = Whole(r.LogNormal(0.8, 0.9) - 0.5);
  v.SfOut = Whole(v.Lloc * r.Uniform(0.02, 0.14));
  v.SfIn = Whole(e.Fanin);
  v.IfIn = v.SfOut + Whole(e.Params * r.Uniform(0.4, 1.0)) + Whole(v.IoG * r.Uniform(0, 1));
  v.IfOut = v.SfIn + Whole(v.IoP * r.Uniform(0, 0.5)) + Whole(v.IoG * r.Uniform(0, 1));
  v.DCallT = v.SfOut == 0 ? 0 : std::min(12.0, 1 + Whole(r.Uniform(0, 4) + std::log2(v.SfOut)));
  v.SCallT = v.SfOut == 0 ? 0 : v.SfOut + Whole(v.SfOut * v.DCallT * r.Uniform(0.3, 1.8));
  v.LlocTree = v.Lloc + Whole(v.SCallT * r.Uniform(6, 18));
  v.Dc = Round4((v.IoG + v.IoP) / (v.SfOut + 1));
  return v;
}

// Collects the columns of one table row by row.
class Columns {
 public:
  void Add(MetricId id, double value) { m_columns[id].push_back(value); }
  SampleTable Table(int classNr, QStringList names) {
    SampleTable table;
    table.ClassNr = classNr;
    table.Names = std::move(names);
    for (auto& [id, values] : m_columns) table.Series.push_back({id, std::move(values)});
    return table;
  }

 private:
  std::map<MetricId, std::vector<double>> m_columns;
};

// Whole-day file dates at save `save`: a new file was last touched a while
// before the analysis; an existing one often again since the save before.
std::vector<double> FileDates(const SampleProject& p, const SampleUniverse& u, int save) {
  std::vector<double> dates(u.Files.size(), 0);
  for (int t = 0; t <= save; ++t) {
    const SampleSave& s = p.Saves[static_cast<size_t>(t)];
    const double today = std::floor(AnalysisDateOf(s));
    const double gap = t == 0 ? 200 : today - std::floor(AnalysisDateOf(p.Saves[static_cast<size_t>(t - 1)]));
    for (size_t f = 0; f < u.Files.size(); ++f) {
      if (u.Files[f].Birth > s.Growth + 1e-9) continue;
      SampleRandom r = SampleRandom::For(p.Seed, {TagFileDate, f, static_cast<std::uint64_t>(t)});
      const bool touched = r.Chance(0.4);
      if (dates[f] == 0) dates[f] = today - std::floor(r.Uniform(0, gap));
      else if (touched) dates[f] = today - std::floor(r.Uniform(0, std::min(45.0, gap)));
    }
  }
  return dates;
}

// Sums of the procedure values of one owner (a class or a file).
struct Totals {
  double Count = 0, Lines = 0, Lloc = 0, Comments = 0, Blank = 0, Continued = 0, Mcomm = 0;
  double Stmt = 0, StmtD = 0, StmtC = 0, Cc = 0, SfOut = 0, SCallT = 0, ParamsAndLocals = 0;
  void Add(const ProcValues& v) {
    Count += 1;
    Lines += v.Lines;
    Lloc += v.Lloc;
    Comments += v.Comments;
    Blank += v.Blank;
    Continued += v.Continued;
    Mcomm += v.Mcomm;
    Stmt += v.Stmt;
    StmtD += v.StmtD;
    StmtC += v.StmtC;
    Cc += v.Cc;
    SfOut += v.SfOut;
    SCallT += v.SCallT;
    ParamsAndLocals += v.Params + v.Locals;
  }
};

}  // namespace

SampleGenerator::SampleGenerator(const SampleProject& project)
    : m_project(project), m_universe(std::make_unique<SampleUniverse>(BuildUniverse(project))) {}

SampleGenerator::~SampleGenerator() = default;

SampleDatabase GenerateSample(const SampleProject& project, int save) {
  return SampleGenerator(project).Generate(save);
}

SampleDatabase SampleGenerator::Generate(int save) const {
  const SampleProject& p = m_project;
  const SampleUniverse& u = *m_universe;
  const SampleSave& s = p.Saves.at(static_cast<size_t>(save));
  const double growth = s.Growth + 1e-9;
  const double comments = s.CommentLevel;
  const bool refactored = p.RefactoringSave >= 0 && save >= p.RefactoringSave;

  SampleDatabase db;
  db.FileName = SampleFileName(p, save);
  db.Title = p.Title(save);
  db.Project = p.ProjectFile;
  db.AnalysisDate = AnalysisDateOf(s);

  // Procedures.
  std::vector<int> procs;
  std::vector<ProcValues> values(u.Procs.size());
  std::vector<Totals> classTotals(u.Classes.size()), fileTotals(u.Files.size());
  Columns procColumns;
  QStringList procNames;
  Totals all;
  double sysc = 0, events = 0, reused = 0, deadProcs = 0, deadLines = 0, namedLength = 0;
  for (size_t j = 0; j < u.Procs.size(); ++j) {
    const ProcEntity& e = u.Procs[j];
    if (e.Birth > growth || (e.Dead && refactored)) continue;
    const ProcValues v = ProcAt(p, static_cast<int>(j), e, s.Growth, comments, refactored);
    values[j] = v;
    procs.push_back(static_cast<int>(j));
    if (e.Class >= 0) classTotals[static_cast<size_t>(e.Class)].Add(v);
    fileTotals[static_cast<size_t>(e.File)].Add(v);
    all.Add(v);
    sysc += v.SfOut * v.SfOut + v.Dc;
    if (e.Event) events += 1;
    else namedLength += e.NameLength;
    if (v.SfIn >= 2) reused += 1;
    if (v.SfIn == 0 && !e.Event) {
      deadProcs += 1;
      deadLines += v.Lines;
    }
    procNames << e.Name;
    procColumns.Add(4001, v.Lines);
    procColumns.Add(4012, v.Lloc);
    procColumns.Add(4013, v.Comments);
    procColumns.Add(4014, v.Blank);
    procColumns.Add(4020, v.Mcomm);
    procColumns.Add(4025, v.LlocTree);
    procColumns.Add(4030, v.Params);
    procColumns.Add(4035, v.Locals);
    procColumns.Add(4050, v.Stmt);
    procColumns.Add(4051, v.StmtD);
    procColumns.Add(4053, v.StmtC);
    procColumns.Add(4080, v.IoG);
    procColumns.Add(4081, v.IoP);
    procColumns.Add(4100, v.IfIn);
    procColumns.Add(4101, v.IfOut);
    procColumns.Add(4120, v.Cc);
    procColumns.Add(4121, v.Cc2);
    procColumns.Add(4122, v.Cc3);
    procColumns.Add(4140, v.DCond);
    procColumns.Add(4141, v.DLoop);
    procColumns.Add(4142, v.DCallT);
    procColumns.Add(4143, v.SCallT);
    procColumns.Add(4161, v.Dc);
    procColumns.Add(4180, e.NameLength);
    procColumns.Add(4200, v.SfIn);
    procColumns.Add(4201, v.SfOut);
  }

  // Module-level variables.
  Columns varColumns;
  QStringList varNames;
  std::vector<double> classFields(u.Classes.size(), 0), fileVars(u.Files.size(), 0);
  double deadVars = 0, varNameLength = 0;
  for (const VarEntity& v : u.Vars) {
    if (v.Birth > growth) continue;
    if (v.Class >= 0) classFields[static_cast<size_t>(v.Class)] += 1;
    fileVars[static_cast<size_t>(v.File)] += 1;
    if (v.Reads == 0) deadVars += 1;
    varNameLength += v.NameLength;
    varNames << v.Name;
    varColumns.Add(5001, v.Reads);
    varColumns.Add(5002, v.Writes);
    varColumns.Add(5020, v.Users);
    varColumns.Add(5100, v.NameLength);
  }

  // Classes, parents before children so that inherited counts add up. The
  // hierarchy is cut at the depth the story has reached: a deeper class hangs
  // from its ancestor at that depth.
  std::vector<int> present;
  for (size_t k = 0; k < u.Classes.size(); ++k)
    if (u.Classes[k].Birth <= growth) present.push_back(static_cast<int>(k));
  std::stable_sort(present.begin(), present.end(), [&](int a, int b) {
    return u.Classes[static_cast<size_t>(a)].Depth < u.Classes[static_cast<size_t>(b)].Depth;
  });
  std::vector<int> parent(u.Classes.size(), -1), dit(u.Classes.size(), 0), noc(u.Classes.size(), 0);
  for (int k : present) {
    int ancestor = u.Classes[static_cast<size_t>(k)].Parent;
    while (ancestor >= 0 && u.Classes[static_cast<size_t>(ancestor)].Depth >= s.MaxDepth)
      ancestor = u.Classes[static_cast<size_t>(ancestor)].Parent;
    parent[static_cast<size_t>(k)] = ancestor;
    dit[static_cast<size_t>(k)] = ancestor < 0 ? 0 : dit[static_cast<size_t>(ancestor)] + 1;
    if (ancestor >= 0) noc[static_cast<size_t>(ancestor)] += 1;
  }
  std::vector<double> inheritableMethods(u.Classes.size(), 0), inheritableFields(u.Classes.size(), 0);
  Columns classColumns;
  QStringList classNames;
  double sumWmc = 0, sumWmci = 0, sumWmcnp = 0, sumVars = 0, sumVarsi = 0, sumVarsnp = 0, sumCbo = 0;
  double roots = 0, leafs = 0, abstracts = 0, maxDit = 0;
  for (int k : present) {
    const ClassEntity& c = u.Classes[static_cast<size_t>(k)];
    const Totals& t = classTotals[static_cast<size_t>(k)];
    SampleRandom r = SampleRandom::For(p.Seed, {TagClassShape + 100, static_cast<std::uint64_t>(k)});
    const double m = t.Count, fields = classFields[static_cast<size_t>(k)];
    const int up = parent[static_cast<size_t>(k)];
    const double wmcnp = Whole(m * c.PublicMethods), varsnp = Whole(fields * c.PublicFields);
    inheritableMethods[static_cast<size_t>(k)] = wmcnp + (up >= 0 ? inheritableMethods[static_cast<size_t>(up)] : 0);
    inheritableFields[static_cast<size_t>(k)] = varsnp + (up >= 0 ? inheritableFields[static_cast<size_t>(up)] : 0);
    const double wmci = m + (up >= 0 ? inheritableMethods[static_cast<size_t>(up)] : 0);
    const double varsi = fields + (up >= 0 ? inheritableFields[static_cast<size_t>(up)] : 0);
    const double lcom2 = m <= 1 ? 0 : Round4(std::clamp((1 - c.Cohesion) * 0.85 + 0.05 + m / 400, 0.0, 0.98));
    const double tccl = m <= 1 ? 0 : Round4(c.Cohesion * 0.7 * r.Uniform(0.6, 1.0));
    const double lccl = m <= 1 ? 0 : Round4(tccl + (1 - tccl) * c.Cohesion * 0.5);
    const double tcci = Round4(std::min(1.0, tccl * 1.1));
    const double cbo = std::min(static_cast<double>(present.size()) - 1, Whole(std::sqrt(t.SfOut) * c.Coupling));
    const double headerComments = Whole(4 + 30 * comments * r.Uniform(0.5, 1.5));
    const double lloc = t.Lloc + fields + 3, blank = t.Blank + m + 2;
    classNames << c.Name;
    classColumns.Add(3001, m);
    classColumns.Add(3002, dit[static_cast<size_t>(k)]);
    classColumns.Add(3003, noc[static_cast<size_t>(k)]);
    classColumns.Add(3004, cbo);
    const double rfc = m + Whole(t.SfOut * r.Uniform(0.3, 0.6));
    classColumns.Add(3005, rfc);
    classColumns.Add(3006, rfc + Whole(t.SCallT * r.Uniform(0.1, 0.4)));
    classColumns.Add(3010, Whole(m * (m - 1) / 2 * lcom2 * 0.6));
    classColumns.Add(3011, lcom2);
    classColumns.Add(3012, m <= 1 ? 0 : Round4(std::min(2.0, lcom2 * m / (m - 1))));
    classColumns.Add(3013, m == 0 ? 0 : 1 + std::floor((1 - c.Cohesion) * m / 10));
    classColumns.Add(3015, tcci);
    classColumns.Add(3016, Round4(std::max(tcci, std::min(1.0, lccl * 1.1))));
    classColumns.Add(3017, tccl);
    classColumns.Add(3018, lccl);
    classColumns.Add(3020, Whole(t.SfOut * r.Uniform(0.5, 0.9)));
    classColumns.Add(3101, lloc + t.Comments + headerComments + blank + t.Continued);
    classColumns.Add(3112, lloc);
    classColumns.Add(3113, t.Comments + headerComments);
    classColumns.Add(3114, blank);
    classColumns.Add(3150, t.Stmt + fields + 2);
    classColumns.Add(3151, t.StmtD + fields + 2);
    classColumns.Add(3153, t.StmtC);
    classColumns.Add(3200, c.Impl);
    classColumns.Add(3210, wmcnp);
    classColumns.Add(3211, wmci);
    classColumns.Add(3212, fields);
    classColumns.Add(3213, varsnp);
    classColumns.Add(3214, varsi);
    classColumns.Add(3215, c.Events);
    classColumns.Add(3216, c.Ctors);
    classColumns.Add(3320, t.Cc - t.Count + 1);
    sumWmc += m;
    sumWmci += wmci;
    sumWmcnp += wmcnp;
    sumVars += fields;
    sumVarsi += varsi;
    sumVarsnp += varsnp;
    sumCbo += cbo;
    if (up < 0) roots += 1;
    if (noc[static_cast<size_t>(k)] == 0) leafs += 1;
    if (c.Abstract) abstracts += 1;
    maxDit = std::max(maxDit, static_cast<double>(dit[static_cast<size_t>(k)]));
  }

  // Files.
  const std::vector<double> dates = FileDates(p, u, save);
  Columns fileColumns;
  QStringList fileNames;
  Totals files;
  double presentFiles = 0, forms = 0, modules = 0, consts = 0, kb = 0, vars = 0, newest = 0, dateSum = 0;
  for (const FileEntity& f : u.Files)
    if (f.Birth <= growth) presentFiles += 1;
  for (size_t i = 0; i < u.Files.size(); ++i) {
    const FileEntity& f = u.Files[i];
    if (f.Birth > growth) continue;
    SampleRandom r = SampleRandom::For(p.Seed, {TagFileShape, i});
    const Totals& t = fileTotals[i];
    const double nVars = fileVars[i];
    const double nConsts = Whole(f.ConstTrait * (0.6 + 0.4 * s.Growth));
    const double headerComments = Whole(3 + 25 * comments * f.CommentTrait);
    const double classes = static_cast<double>(std::count_if(f.Classes.begin(), f.Classes.end(), [&](int k) {
      return u.Classes[static_cast<size_t>(k)].Birth <= growth;
    }));
    const double lloc = t.Lloc + nVars + nConsts + 2 + 2 * classes;
    const double comment = t.Comments + headerComments, blank = t.Blank + t.Count + 2;
    const double lines = lloc + comment + blank + t.Continued + Whole(f.DesignerLines);
    const double fileKb = std::max(1.0, Whole(lines * f.LineLength / 1024));
    const double allVars = nVars + t.ParamsAndLocals;
    fileNames << f.Path;
    fileColumns.Add(2001, lines);
    fileColumns.Add(2012, lloc);
    fileColumns.Add(2013, comment);
    fileColumns.Add(2014, blank);
    fileColumns.Add(2020, t.Mcomm + Whole(headerComments * 0.6));
    fileColumns.Add(2030, fileKb);
    fileColumns.Add(2031, dates[i]);
    fileColumns.Add(2034, t.Count);
    fileColumns.Add(2035, allVars);
    fileColumns.Add(2036, nConsts);
    fileColumns.Add(2040, std::min(presentFiles - 1, Whole(f.FaninTrait * (0.5 + 0.5 * s.Growth))));
    fileColumns.Add(2041, std::min(presentFiles - 1, Whole(std::sqrt(t.SfOut) * r.Uniform(0.6, 1.3))));
    fileColumns.Add(2100, t.Stmt + nVars + nConsts + 1);
    fileColumns.Add(2101, t.StmtD + nVars + nConsts + 1);
    fileColumns.Add(2103, t.StmtC);
    files.Lines += lines;
    files.Lloc += lloc;
    files.Comments += comment;
    files.Blank += blank;
    files.Mcomm += t.Mcomm + Whole(headerComments * 0.6);
    if (f.Kind == FileForm) forms += 1;
    if (f.Kind == FileModule) modules += 1;
    consts += nConsts;
    kb += fileKb;
    vars += allVars;
    newest = std::max(newest, dates[i]);
    dateSum += dates[i];
  }

  // The project: totals of the tables below and the figures of the whole.
  SampleRandom r = SampleRandom::For(p.Seed, {TagProject, static_cast<std::uint64_t>(save)});
  const double procCount = static_cast<double>(procs.size());
  const double classCount = static_cast<double>(present.size());
  const double udts = Whole(presentFiles * 0.08 + 1), enums = Whole(presentFiles * 0.12 + 1);
  const double enumConsts = Whole(enums * r.Uniform(4.5, 7));
  const double lenv = Round4((varNameLength + all.ParamsAndLocals * 7.5) / std::max(1.0, varNames.size() + all.ParamsAndLocals));
  const double lenc = Round4(r.Uniform(12, 17));
  const double lenp = Round4(namedLength / std::max(1.0, procCount - events));
  Columns projectColumns;
  projectColumns.Add(1000, newest);
  projectColumns.Add(1002, files.Lines);
  projectColumns.Add(1009, files.Lloc);
  projectColumns.Add(1010, files.Comments);
  projectColumns.Add(1011, files.Blank);
  projectColumns.Add(1015, files.Mcomm);
  projectColumns.Add(1019, kb);
  projectColumns.Add(1021, Round4(dateSum / std::max(1.0, presentFiles)));
  projectColumns.Add(1200, presentFiles);
  projectColumns.Add(1201, procCount);
  projectColumns.Add(1202, vars);
  projectColumns.Add(1203, consts);
  projectColumns.Add(1204, udts);
  projectColumns.Add(1205, enums);
  projectColumns.Add(1206, enumConsts);
  projectColumns.Add(1210, forms);
  projectColumns.Add(1211, modules);
  projectColumns.Add(1221, deadProcs);
  projectColumns.Add(1222, deadVars);
  projectColumns.Add(1223, Whole(consts * (refactored ? 0.03 : 0.08)));
  projectColumns.Add(1226, deadLines);
  projectColumns.Add(1227, Whole(udts * 0.1));
  projectColumns.Add(1228, Whole(enums * 0.1));
  projectColumns.Add(1229, Whole(enumConsts * 0.08));
  projectColumns.Add(1240, Round4((lenv * vars + lenc * consts + lenp * procCount) / std::max(1.0, vars + consts + procCount)));
  projectColumns.Add(1241, lenv);
  projectColumns.Add(1242, lenc);
  projectColumns.Add(1243, lenp);
  projectColumns.Add(1244, Round4(r.Uniform(0.55, 0.72)));
  projectColumns.Add(1300, Round4(all.Cc / std::max(1.0, files.Lloc)));
  projectColumns.Add(1301, all.Cc - procCount + 1);
  projectColumns.Add(1302, Round4(sysc));
  projectColumns.Add(1303, Round4(sysc / std::max(1.0, procCount)));
  projectColumns.Add(1320, Whole(all.SfOut * r.Uniform(1.2, 1.5)));
  projectColumns.Add(1330, Round4(reused / std::max(1.0, procCount) * 0.9));
  projectColumns.Add(1340, Round4(r.Uniform(1.5, 4)));
  projectColumns.Add(1400, classCount);
  projectColumns.Add(1401, roots);
  projectColumns.Add(1402, leafs);
  projectColumns.Add(1403, p.DotNet ? Whole(classCount * 0.06) : abstracts);
  projectColumns.Add(1404, maxDit);
  projectColumns.Add(1405, abstracts);
  projectColumns.Add(1490, sumWmci > 0 ? Round4((sumWmci - sumWmc) / sumWmci) : 0);
  projectColumns.Add(1491, sumVarsi > 0 ? Round4((sumVarsi - sumVars) / sumVarsi) : 0);
  projectColumns.Add(1500, sumWmc > 0 ? Round4(1 - sumWmcnp / sumWmc) : 0);
  projectColumns.Add(1501, sumVars > 0 ? Round4(1 - sumVarsnp / sumVars) : 1);
  projectColumns.Add(1504, Round4(p.DotNet ? r.Uniform(0.08, 0.3) : r.Uniform(0.02, 0.1)));
  projectColumns.Add(1505, classCount > 1 ? Round4(sumCbo / (classCount * (classCount - 1))) : 0);
  projectColumns.Add(1510, Round4(r.Uniform(0.4, 0.8)));
  projectColumns.Add(1511, Round4(r.Uniform(0.5, 0.9)));
  projectColumns.Add(1512, p.DotNet ? Round4(r.Uniform(0.85, 1)) : 0);
  projectColumns.Add(1513, p.DotNet ? Round4(r.Uniform(0.01, 0.05)) : 0);

  db.Tables.push_back(projectColumns.Table(ClassProject, {p.ProjectFile}));
  db.Tables.push_back(fileColumns.Table(ClassFile, fileNames));
  db.Tables.push_back(classColumns.Table(ClassClass, classNames));
  db.Tables.push_back(procColumns.Table(ClassProcedure, procNames));
  db.Tables.push_back(varColumns.Table(ClassVariable, varNames));
  return db;
}

std::vector<MetricId> StoredSampleMetrics(int classNr) {
  const MetricDefinitions definitions;
  std::vector<MetricId> ids;
  for (MetricId id = kFirstMetricId; id <= kLastMetricId; ++id) {
    MetricFormula formula;
    if (MetricDefinitions::GetMetricClass(id) != classNr || !definitions.MetricSupported(id) ||
        definitions.GetMetricFormula(id, formula) || id == 1001 || id == 1207)
      continue;
    ids.push_back(id);
  }
  return ids;
}

QString SampleFileName(const SampleProject& project, int save) {
  const SampleSave& s = project.Saves.at(static_cast<size_t>(save));
  return QStringLiteral("%1-%2-%3 %4.qvz")
      .arg(s.Year, 4, 10, QLatin1Char('0'))
      .arg(s.Month, 2, 10, QLatin1Char('0'))
      .arg(s.Day, 2, 10, QLatin1Char('0'))
      .arg(project.Name);
}

}  // namespace ombrelle::samples
