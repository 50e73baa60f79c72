// A client of the installed library: a leaf filter with its configuration and
// answer, and its name through the installed German catalogue.

#include <veskbuddy.h>
#include <veskdisplayfilter.h>
#include <veskfield.h>

#include <QCoreApplication>
#include <QTranslator>

#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    VeskDisplayFilter filter;
    std::printf("%s: %d fields, passes an empty entry: %s\n", qPrintable(filter.id()),
        int(filter.getConfiguration().size()), filter.filter(VeskBuddy()) ? "yes" : "no");
    QTranslator german;
    if (argc < 2 || !german.load(QString::fromLocal8Bit(argv[1])))
        return 1;
    QCoreApplication::installTranslator(&german);
    std::printf("%s\n", filter.name().toUtf8().constData());
    return 0;
}
