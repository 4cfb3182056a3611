#include "SampleUniverse.h"

#include <algorithm>

#include "SampleRandom.h"
#include "support/DateValue.h"

namespace ombrelle::samples {

namespace {

// Entities are born at a point of the story (0 first save, 1 last save) and
// exist in every save from then on. Sixty per cent of a code base is there at
// the start; the rest arrives evenly.
double BirthOf(double u) { return u < 0.6 ? 0.0 : (u - 0.6) / 0.4; }

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
int PickClass(SampleRandom& random, const FileEntity& file) {
  if (file.Classes.empty()) return -1;
  if (file.Classes.size() == 1 || random.Chance(0.75)) return file.Classes.front();
  return file
      .Classes[static_cast<size_t>(random.Range(0, static_cast<int>(file.Classes.size()) - 1))];
}

void BuildFiles(const SampleProject& p, SampleNames& names, SampleUniverse& u) {
  // Kinds: the class-bearing files and the modules, shuffled by the seed.
  std::vector<SampleFileKind> kinds;
  const int modules = p.DotNet ? std::max(1, p.Files * 8 / 100) : std::max(1, p.Files - p.Classes);
  for (int i = 0; i < p.Files; ++i) kinds.push_back(i < modules ? FileModule : FileClass);
  SampleRandom shuffle = SampleRandom::For(p.Seed, {TagKinds});
  for (int i = p.Files - 1; i > 0; --i)
    std::swap(kinds[static_cast<size_t>(i)], kinds[static_cast<size_t>(shuffle.Range(0, i))]);
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
  std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
    return u.Classes[static_cast<size_t>(a)].Birth < u.Classes[static_cast<size_t>(b)].Birth;
  });
  int deepest = -1;
  for (size_t n = 0; n < order.size(); ++n) {
    ClassEntity& c = u.Classes[static_cast<size_t>(order[n])];
    SampleRandom r =
        SampleRandom::For(p.Seed, {TagClassShape, static_cast<std::uint64_t>(order[n])});
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
        if (deepest < 0 || c.Depth > u.Classes[static_cast<size_t>(deepest)].Depth)
          deepest = order[n];
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
    e.Class = PickClass(r, f);
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
  for (const FileEntity& f : u.Files)
    prefix.push_back(sum += f.Weight * (f.Kind == FileModule ? 2.5 : 1));
  std::vector<bool> accentUsed(u.Files.size(), false);
  for (int j = 0; j < p.Variables; ++j) {
    SampleRandom r = SampleRandom::For(p.Seed, {TagVar, static_cast<std::uint64_t>(j)});
    VarEntity v;
    v.File = WeightedPick(prefix, r.Uniform());
    const FileEntity& f = u.Files[static_cast<size_t>(v.File)];
    v.Class = PickClass(r, f);
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
    v.Users = f.Kind == FileModule ? 1 + Whole(r.LogNormal(1.2, 0.9))
                                   : (r.Chance(0.15) ? r.Range(2, 4) : 1);
    u.Vars.push_back(v);
  }
}

}  // namespace

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

// A procedure grows a little after its birth; the refactoring halves the
// long ones and takes a third of their decisions out. The shape draws come
// from the same stream at every save, so a procedure changes only as the
// story moves it.
ProcValues ProcAt(const SampleProject& p, int j, const ProcEntity& e, double growth,
                  double commentLevel, bool refactored) {
  SampleRandom r = SampleRandom::For(p.Seed, {TagProcShape, static_cast<std::uint64_t>(j)});
  const bool split = refactored && e.Size > kSplitSize && !e.Helper;
  ProcValues v;
  v.Lloc = std::max(
      1.0, Whole(e.Size * (1 + 0.35 * std::max(0.0, growth - e.Birth)) * (split ? 0.5 : 1)));
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
  v.DCond = decisions == 0
                ? 0
                : std::clamp(Whole(std::log2(1 + decisions) * r.Uniform(0.7, 1.7)), 1.0, decisions);
  const double loops = Whole(decisions * r.Uniform(0.05, 0.35));
  v.DLoop =
      loops == 0 ? 0 : std::min(loops, 1 + std::floor(std::log2(1 + loops) * r.Uniform(0.6, 1.8)));
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

std::vector<double> FileDates(const SampleProject& p, const SampleUniverse& u, int save) {
  std::vector<double> dates(u.Files.size(), 0);
  for (int t = 0; t <= save; ++t) {
    const SampleSave& s = p.Saves[static_cast<size_t>(t)];
    const double today = std::floor(AnalysisDateOf(s));
    const double gap =
        t == 0 ? 200 : today - std::floor(AnalysisDateOf(p.Saves[static_cast<size_t>(t - 1)]));
    for (size_t f = 0; f < u.Files.size(); ++f) {
      if (u.Files[f].Birth > s.Growth + 1e-9) continue;
      SampleRandom r = SampleRandom::For(p.Seed, {TagFileDate, f, static_cast<std::uint64_t>(t)});
      const bool touched = r.Chance(0.4);
      if (dates[f] == 0)
        dates[f] = today - std::floor(r.Uniform(0, gap));
      else if (touched)
        dates[f] = today - std::floor(r.Uniform(0, std::min(45.0, gap)));
    }
  }
  return dates;
}

}  // namespace ombrelle::samples
