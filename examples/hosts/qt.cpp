#include "examples/hosts/qt.h"

#include "examples/hosts/Counting.h"

#include <QCoreApplication>

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  const QtHost host;
  NSMake<Counting>([] { QCoreApplication::quit(); })->start();
  return QCoreApplication::exec();
}
