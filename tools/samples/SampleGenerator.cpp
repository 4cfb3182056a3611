#include "SampleGenerator.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "SampleRandom.h"
#include "SampleUniverse.h"
#include "core/MetricDefinitions.h"

namespace ombrelle::samples {

namespace {

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

// One save being generated: where the story stands.
struct SaveContext {
  const SampleProject& Project;
  const SampleUniverse& Universe;
  const SampleSave& Save;
  int SaveIndex = 0;
  double Growth = 0;  // with a little room, so that an entity born exactly now is in
  double Comments = 0;
  bool Refactored = false;
};

// What the procedures and variables of a save add up to, for the levels above.
struct CodeTotals {
  std::vector<Totals> ClassTotals, FileTotals;
  std::vector<double> ClassFields, FileVars;
  Totals All;
  double ProcCount = 0, Sysc = 0, Events = 0, Reused = 0, DeadProcs = 0, DeadLines = 0;
  double NamedLength = 0, VarCount = 0, DeadVars = 0, VarNameLength = 0;
};

// The figures of the class table that the project's figures need.
struct ClassSummary {
  double Count = 0, Roots = 0, Leafs = 0, Abstracts = 0, MaxDit = 0;
  double SumWmc = 0, SumWmci = 0, SumWmcnp = 0, SumVars = 0, SumVarsi = 0, SumVarsnp = 0,
         SumCbo = 0;
};

// The figures of the file table that the project's figures need.
struct FileSummary {
  Totals Files;
  double Present = 0, Forms = 0, Modules = 0, Consts = 0, Kb = 0, Vars = 0, Newest = 0, DateSum = 0;
};

// Procedures: one row each, with the sums per class and per file.
SampleTable ProcedureTable(const SaveContext& x, CodeTotals& totals) {
  const SampleProject& p = x.Project;
  const SampleUniverse& u = x.Universe;
  const SampleSave& s = x.Save;
  const double growth = x.Growth;
  const double comments = x.Comments;
  const bool refactored = x.Refactored;
  std::vector<int> procs;
  std::vector<Totals> classTotals(u.Classes.size()), fileTotals(u.Files.size());
  Columns procColumns;
  QStringList procNames;
  Totals all;
  double sysc = 0, events = 0, reused = 0, deadProcs = 0, deadLines = 0, namedLength = 0;
  for (size_t j = 0; j < u.Procs.size(); ++j) {
    const ProcEntity& e = u.Procs[j];
    if (e.Birth > growth || (e.Dead && refactored)) continue;
    const ProcValues v = ProcAt(p, static_cast<int>(j), e, s.Growth, comments, refactored);
    procs.push_back(static_cast<int>(j));
    if (e.Class >= 0) classTotals[static_cast<size_t>(e.Class)].Add(v);
    fileTotals[static_cast<size_t>(e.File)].Add(v);
    all.Add(v);
    sysc += v.SfOut * v.SfOut + v.Dc;
    if (e.Event)
      events += 1;
    else
      namedLength += e.NameLength;
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

  totals.ClassTotals = std::move(classTotals);
  totals.FileTotals = std::move(fileTotals);
  totals.All = all;
  totals.ProcCount = static_cast<double>(procs.size());
  totals.Sysc = sysc;
  totals.Events = events;
  totals.Reused = reused;
  totals.DeadProcs = deadProcs;
  totals.DeadLines = deadLines;
  totals.NamedLength = namedLength;
  return procColumns.Table(ClassProcedure, procNames);
}

// Module-level variables: one row each, with the counts per class and per file.
SampleTable VariableTable(const SaveContext& x, CodeTotals& totals) {
  const SampleUniverse& u = x.Universe;
  const double growth = x.Growth;
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

  totals.ClassFields = std::move(classFields);
  totals.FileVars = std::move(fileVars);
  totals.VarCount = static_cast<double>(varNames.size());
  totals.DeadVars = deadVars;
  totals.VarNameLength = varNameLength;
  return varColumns.Table(ClassVariable, varNames);
}

// Classes, parents before children so that inherited counts add up. The
// hierarchy is cut at the depth the story has reached: a deeper class hangs
// from its ancestor at that depth.
SampleTable ClassTable(const SaveContext& x, const CodeTotals& totals, ClassSummary& summary) {
  const SampleProject& p = x.Project;
  const SampleUniverse& u = x.Universe;
  const SampleSave& s = x.Save;
  const double growth = x.Growth;
  const double comments = x.Comments;
  const std::vector<Totals>& classTotals = totals.ClassTotals;
  const std::vector<double>& classFields = totals.ClassFields;
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
  std::vector<double> inheritableMethods(u.Classes.size(), 0),
      inheritableFields(u.Classes.size(), 0);
  Columns classColumns;
  QStringList classNames;
  double sumWmc = 0, sumWmci = 0, sumWmcnp = 0, sumVars = 0, sumVarsi = 0, sumVarsnp = 0,
         sumCbo = 0;
  double roots = 0, leafs = 0, abstracts = 0, maxDit = 0;
  for (int k : present) {
    const ClassEntity& c = u.Classes[static_cast<size_t>(k)];
    const Totals& t = classTotals[static_cast<size_t>(k)];
    SampleRandom r =
        SampleRandom::For(p.Seed, {TagClassShape + 100, static_cast<std::uint64_t>(k)});
    const double m = t.Count, fields = classFields[static_cast<size_t>(k)];
    const int up = parent[static_cast<size_t>(k)];
    const double wmcnp = Whole(m * c.PublicMethods), varsnp = Whole(fields * c.PublicFields);
    inheritableMethods[static_cast<size_t>(k)] =
        wmcnp + (up >= 0 ? inheritableMethods[static_cast<size_t>(up)] : 0);
    inheritableFields[static_cast<size_t>(k)] =
        varsnp + (up >= 0 ? inheritableFields[static_cast<size_t>(up)] : 0);
    const double wmci = m + (up >= 0 ? inheritableMethods[static_cast<size_t>(up)] : 0);
    const double varsi = fields + (up >= 0 ? inheritableFields[static_cast<size_t>(up)] : 0);
    const double lcom2 =
        m <= 1 ? 0 : Round4(std::clamp((1 - c.Cohesion) * 0.85 + 0.05 + m / 400, 0.0, 0.98));
    const double tccl = m <= 1 ? 0 : Round4(c.Cohesion * 0.7 * r.Uniform(0.6, 1.0));
    const double lccl = m <= 1 ? 0 : Round4(tccl + (1 - tccl) * c.Cohesion * 0.5);
    const double tcci = Round4(std::min(1.0, tccl * 1.1));
    const double cbo =
        std::min(static_cast<double>(present.size()) - 1, Whole(std::sqrt(t.SfOut) * c.Coupling));
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

  summary = {static_cast<double>(present.size()),
             roots,
             leafs,
             abstracts,
             maxDit,
             sumWmc,
             sumWmci,
             sumWmcnp,
             sumVars,
             sumVarsi,
             sumVarsnp,
             sumCbo};
  return classColumns.Table(ClassClass, classNames);
}

// Files: the sums of their procedures, declarations and comments.
SampleTable FileTable(const SaveContext& x, const CodeTotals& totals, FileSummary& summary) {
  const SampleProject& p = x.Project;
  const SampleUniverse& u = x.Universe;
  const SampleSave& s = x.Save;
  const double growth = x.Growth;
  const double comments = x.Comments;
  const int save = x.SaveIndex;
  const std::vector<Totals>& fileTotals = totals.FileTotals;
  const std::vector<double>& fileVars = totals.FileVars;
  const std::vector<double> dates = FileDates(p, u, save);
  Columns fileColumns;
  QStringList fileNames;
  Totals files;
  double presentFiles = 0, forms = 0, modules = 0, consts = 0, kb = 0, vars = 0, newest = 0,
         dateSum = 0;
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
    const double classes =
        static_cast<double>(std::count_if(f.Classes.begin(), f.Classes.end(), [&](int k) {
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
    fileColumns.Add(2041,
                    std::min(presentFiles - 1, Whole(std::sqrt(t.SfOut) * r.Uniform(0.6, 1.3))));
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

  summary = {files, presentFiles, forms, modules, consts, kb, vars, newest, dateSum};
  return fileColumns.Table(ClassFile, fileNames);
}

// The project: totals of the tables below and the figures of the whole.
SampleTable ProjectTable(const SaveContext& x, const CodeTotals& totals, const ClassSummary& c,
                         const FileSummary& f) {
  const SampleProject& p = x.Project;
  const bool refactored = x.Refactored;
  const int save = x.SaveIndex;
  const Totals& all = totals.All;
  const Totals& files = f.Files;
  const double presentFiles = f.Present, forms = f.Forms, modules = f.Modules, consts = f.Consts;
  const double kb = f.Kb, vars = f.Vars, newest = f.Newest, dateSum = f.DateSum;
  const double sysc = totals.Sysc, events = totals.Events, reused = totals.Reused;
  const double deadProcs = totals.DeadProcs, deadLines = totals.DeadLines,
               deadVars = totals.DeadVars;
  const double namedLength = totals.NamedLength, varNameLength = totals.VarNameLength;
  const double roots = c.Roots, leafs = c.Leafs, abstracts = c.Abstracts, maxDit = c.MaxDit;
  const double sumWmc = c.SumWmc, sumWmci = c.SumWmci, sumWmcnp = c.SumWmcnp;
  const double sumVars = c.SumVars, sumVarsi = c.SumVarsi, sumVarsnp = c.SumVarsnp,
               sumCbo = c.SumCbo;
  SampleRandom r = SampleRandom::For(p.Seed, {TagProject, static_cast<std::uint64_t>(save)});
  const double procCount = totals.ProcCount, classCount = c.Count;
  const double udts = Whole(presentFiles * 0.08 + 1), enums = Whole(presentFiles * 0.12 + 1);
  const double enumConsts = Whole(enums * r.Uniform(4.5, 7));
  const double lenv = Round4((varNameLength + all.ParamsAndLocals * 7.5) /
                             std::max(1.0, totals.VarCount + all.ParamsAndLocals));
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
  projectColumns.Add(1240, Round4((lenv * vars + lenc * consts + lenp * procCount) /
                                  std::max(1.0, vars + consts + procCount)));
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

  return projectColumns.Table(ClassProject, {p.ProjectFile});
}

}  // namespace

SampleGenerator::SampleGenerator(const SampleProject& project)
    : m_project(project), m_universe(std::make_unique<SampleUniverse>(BuildUniverse(project))) {}

SampleGenerator::~SampleGenerator() = default;

SampleDatabase GenerateSample(const SampleProject& project, int save) {
  return SampleGenerator(project).Generate(save);
}

SampleDatabase SampleGenerator::Generate(int save) const {
  const SampleSave& s = m_project.Saves.at(static_cast<size_t>(save));
  const SaveContext x{m_project,
                      *m_universe,
                      s,
                      save,
                      s.Growth + 1e-9,
                      s.CommentLevel,
                      m_project.RefactoringSave >= 0 && save >= m_project.RefactoringSave};
  SampleDatabase db;
  db.FileName = SampleFileName(m_project, save);
  db.Title = m_project.Title(save);
  db.Project = m_project.ProjectFile;
  db.AnalysisDate = AnalysisDateOf(s);

  // Each level sums the one below: procedures and variables, classes, files,
  // the project. The tables go out in class order.
  CodeTotals totals;
  SampleTable procedures = ProcedureTable(x, totals);
  SampleTable variables = VariableTable(x, totals);
  ClassSummary classes;
  SampleTable classTable = ClassTable(x, totals, classes);
  FileSummary files;
  SampleTable fileTable = FileTable(x, totals, files);
  db.Tables.push_back(ProjectTable(x, totals, classes, files));
  db.Tables.push_back(std::move(fileTable));
  db.Tables.push_back(std::move(classTable));
  db.Tables.push_back(std::move(procedures));
  db.Tables.push_back(std::move(variables));
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
