#include "program.h"

#include <QCoreApplication>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("vesk-roster"));
    return VeskRosterProgram::run(QCoreApplication::arguments().mid(1));
}
