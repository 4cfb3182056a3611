#include "SampleProjects.h"

namespace ombrelle::samples {

namespace {

SampleProject Billing() {
  SampleProject p;
  p.Name = QStringLiteral("Billing");
  p.ProjectFile = QStringLiteral("Billing.vbp");
  p.Seed = 0x42696C6C696E6701ull;
  p.Files = 11;
  p.Classes = 8;
  p.Procedures = 190;
  p.Variables = 95;
  // A small program whose team learnt to comment.
  p.Saves = {
      {QStringLiteral("2.0"), 2024, 1, 16, 9, 42, 17, 0.0, 0.05, 0},
      {QStringLiteral("2.1"), 2024, 6, 3, 14, 5, 51, 0.35, 0.09, 0},
      {QStringLiteral("2.2"), 2024, 11, 19, 16, 48, 9, 0.6, 0.14, 0},
      {QStringLiteral("2.3"), 2025, 5, 7, 11, 21, 36, 0.85, 0.19, 0},
      {QStringLiteral("2.4"), 2025, 11, 25, 17, 3, 44, 1.0, 0.24, 0},
  };
  return p;
}

SampleProject Warehouse() {
  SampleProject p;
  // The name is not plain ASCII, so that titles and project names travel in UTF-8.
  p.Name = QStringLiteral("Entrepôt");
  p.ProjectFile = QStringLiteral("Entrepôt.vbp");
  p.Seed = 0x456E747265706F02ull;
  p.Files = 60;
  p.Classes = 38;
  p.Procedures = 1500;
  p.Variables = 1100;
  // Steady growth, then a release that splits the long procedures.
  p.RefactoringSave = 4;
  p.Saves = {
      {QStringLiteral("5.0"), 2024, 2, 5, 10, 15, 2, 0.0, 0.09, 0},
      {QStringLiteral("5.1"), 2024, 5, 22, 15, 37, 45, 0.25, 0.10, 0},
      {QStringLiteral("5.2"), 2024, 9, 10, 8, 55, 30, 0.45, 0.10, 0},
      {QStringLiteral("5.3"), 2025, 1, 28, 13, 12, 8, 0.6, 0.11, 0},
      {QStringLiteral("6.0"), 2025, 6, 16, 18, 40, 59, 0.75, 0.12, 0},
      {QStringLiteral("6.1"), 2025, 10, 2, 9, 3, 27, 0.88, 0.13, 0},
      {QStringLiteral("6.2"), 2026, 1, 20, 16, 26, 13, 1.0, 0.14, 0},
  };
  return p;
}

SampleProject Harbour() {
  SampleProject p;
  p.Name = QStringLiteral("Harbour");
  p.ProjectFile = QStringLiteral("Harbour.vbproj");
  p.DotNet = true;
  p.Seed = 0x486172626F757203ull;
  p.Files = 250;
  p.Classes = 300;
  p.Procedures = 6000;
  p.Variables = 25000;
  // A large system that doubles, comments more and grows a deeper hierarchy.
  p.Saves = {
      {QStringLiteral("1.0"), 2023, 12, 4, 11, 8, 40, 0.0, 0.05, 2},
      {QStringLiteral("1.1"), 2024, 3, 11, 16, 22, 5, 0.15, 0.07, 2},
      {QStringLiteral("1.2"), 2024, 6, 24, 9, 47, 19, 0.3, 0.09, 3},
      {QStringLiteral("1.3"), 2024, 9, 30, 14, 31, 52, 0.45, 0.11, 3},
      {QStringLiteral("2.0"), 2025, 1, 13, 10, 2, 33, 0.6, 0.13, 4},
      {QStringLiteral("2.1"), 2025, 4, 7, 17, 55, 1, 0.7, 0.15, 4},
      {QStringLiteral("2.2"), 2025, 7, 21, 12, 14, 46, 0.8, 0.17, 5},
      {QStringLiteral("3.0"), 2025, 10, 6, 15, 39, 24, 0.9, 0.19, 5},
      {QStringLiteral("3.1"), 2025, 12, 15, 8, 27, 58, 1.0, 0.21, 6},
  };
  return p;
}

}  // namespace

const std::vector<SampleProject>& SampleProjects() {
  static const std::vector<SampleProject> projects = {Billing(), Warehouse(), Harbour()};
  return projects;
}

}  // namespace ombrelle::samples
