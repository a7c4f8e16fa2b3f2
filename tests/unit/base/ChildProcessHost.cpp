// Runs the program in its arguments as its child, until somebody ends it.

#include "base/ChildProcess.h"

#include <QCoro/QCoroTask>
#include <QCoreApplication>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    QCoro::waitFor(runChildProcess({arguments.at(1), arguments.mid(2), std::chrono::seconds(30)}));
    return 0;
}
