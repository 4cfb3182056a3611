// Entry point of qvzview. The start-up roads live in the shell; this file only
// hands over the process arguments.
#include <QCoreApplication>

int main(int argc, char** argv) {
  QCoreApplication app(argc, argv);
  return 0;
}
