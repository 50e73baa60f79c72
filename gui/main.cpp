#include "accountstatus.h"
#include "filtersdialog.h"
#include "mainwindow.h"
#include "rosterlibrary.h"
#include "searchbar.h"
#include "sortingdialog.h"

#include <librarysession.h>
#include <rosterfile.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QIcon>
#include <QLibraryInfo>
#include <QLineEdit>
#include <QLocale>
#include <QMessageBox>
#include <QTranslator>
#include <QTreeWidget>

#include <cstdio>

namespace {

const char appId[] = "org.vesk.VeskRosterGui";

// Beside the program, in the build tree, or where an installation puts them
// relative to bin/, so that any prefix works.
void installTranslations(QCoreApplication &app)
{
    const QLocale locale;
    const QString here = QCoreApplication::applicationDirPath();
    const QStringList dirs = { here, here + QLatin1String("/../translations"),
        here + QLatin1String("/" VESK_TRANSLATIONS_FROM_BIN) };
    for (const char *catalogue :
        { "vesk_roster_gui", "vesk_gui_roster_widgets", "vesk_gui_roster_filter" }) {
        auto *translator = new QTranslator(&app);
        const QString name = QString::fromLatin1(catalogue);
        bool loaded = false;
        for (const QString &dir : dirs) {
            loaded = translator->load(locale, name, QStringLiteral("_"), dir);
            if (loaded)
                break;
        }
        if (loaded)
            app.installTranslator(translator);
        else
            delete translator;
    }
    auto *qt = new QTranslator(&app);
    if (qt->load(locale, QStringLiteral("qtbase"), QStringLiteral("_"),
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
            QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
#else
            QLibraryInfo::location(QLibraryInfo::TranslationsPath)))
#endif
        app.installTranslator(qt);
}

// Renders the window and both editors to PNG files, for the documentation.
int takeScreenshots(VeskRosterWindow &window, const QString &dir)
{
    QDir().mkpath(dir);
    window.show();
    QApplication::processEvents();
    bool saved = window.grab().save(dir + QLatin1String("/roster-window.png"));
    // The quick search, typed.
    window.searchBar()->field()->setText(QStringLiteral("an"));
    QApplication::processEvents();
    saved = window.grab().save(dir + QLatin1String("/roster-search.png")) && saved;
    window.searchBar()->field()->clear();
    QApplication::processEvents();
    const QList<std::pair<QDialog *, const char *>> editors
        = { { new VeskFilterEditor(window.library(), &window), "filter-editor.png" },
              { new VeskSorterEditor(window.library(), &window), "sorting-editor.png" } };
    for (const auto &editor : editors) {
        editor.first->show();
        // A condition selected, so that its generated editors show.
        if (auto *conditions
            = editor.first->findChild<QTreeWidget *>(QStringLiteral("conditions"))) {
            if (QTreeWidgetItem *root = conditions->topLevelItem(0))
                conditions->setCurrentItem(root->child(0));
        }
        QApplication::processEvents();
        saved = editor.first->grab().save(dir + QLatin1Char('/') + QLatin1String(editor.second))
            && saved;
        delete editor.first;
    }
    return saved ? 0 : 1;
}

} // namespace

// --help and --version answer without a display: they are read on terminals
// and by the manual pages' generator, where there may be none.
bool onlyAsksForText(int argc, char *argv[])
{
    for (int i = 1; i < argc; ++i) {
        const QByteArray arg(argv[i]);
        if (arg == "-h" || arg == "--help" || arg == "--help-all" || arg == "-v"
            || arg == "--version")
            return true;
    }
    return false;
}

struct Options
{
    QCommandLineOption settings { QStringLiteral("settings"),
        QCoreApplication::translate("main", "The settings directory (as vesk-roster's)."),
        QCoreApplication::translate("main", "DIR") };
    QCommandLineOption roster { QStringLiteral("roster"),
        QCoreApplication::translate(
            "main", "The roster file (JSON), - for standard input; the bundled sample without it."),
        QCoreApplication::translate("main", "FILE") };
    QCommandLineOption screenshots { QStringLiteral("screenshots"),
        QCoreApplication::translate(
            "main", "Save pictures of the window and the editors in DIR, then quit."),
        QCoreApplication::translate("main", "DIR") };
};

void describe(QCommandLineParser &parser, const Options &options)
{
    parser.setApplicationDescription(QCoreApplication::translate("main",
        "The roster window: the roster through the current filter and sorting method,\n"
        "with the editors of filters and sorting methods.\n"
        "\n"
        "Files:\n"
        "  $XDG_CONFIG_HOME/vesk-roster (or ~/.config/vesk-roster)\n"
        "      the settings directory, shared with vesk-roster\n"
        "\n"
        "Exit status:\n"
        "  0  the window was closed\n"
        "  1  the command line was wrong\n"
        "  2  the roster or the settings could not be read (a message says why)"));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOption(options.settings);
    parser.addOption(options.roster);
    parser.addOption(options.screenshots);
    VeskAccountStatus::addOptions(parser);
}

void nameApplication()
{
    QCoreApplication::setApplicationName(QStringLiteral("vesk-roster-gui"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VESK_VERSION));
}

int main(int argc, char *argv[])
{
    if (onlyAsksForText(argc, argv)) {
        QCoreApplication app(argc, argv);
        nameApplication();
        installTranslations(app);
        QCommandLineParser parser;
        const Options options;
        describe(parser, options);
        parser.process(app); // prints and exits, or says what is wrong
        return 0;
    }
    QApplication app(argc, argv);
    nameApplication();
    QApplication::setApplicationDisplayName(QStringLiteral("Vesk Roster"));
    QGuiApplication::setDesktopFileName(QLatin1String(appId));
    // The theme's icon where the package installed it, else the one built in.
    QApplication::setWindowIcon(QIcon::fromTheme(
        QLatin1String(appId), QIcon(QStringLiteral(":/icons/org.vesk.VeskRosterGui.svg"))));
    installTranslations(app);

    QCommandLineParser parser;
    const Options options;
    describe(parser, options);
    const QCommandLineOption &settings = options.settings;
    const QCommandLineOption &roster = options.roster;
    const QCommandLineOption &screenshots = options.screenshots;
    parser.process(app);
    VeskAccountStatus::Options live;

    QByteArray document = VeskRosterFile::sampleRoster();
    QString error;
    if (VeskAccountStatus::readOptions(parser, &live, &error) && !live.jids.isEmpty()) {
        // The accounts' roster, filled once the window is up, is the only one.
        if (parser.isSet(roster))
            error = QCoreApplication::translate("main", "--roster and --xmpp exclude each other");
    } else if (parser.isSet(roster)) {
        QFile file(parser.value(roster));
        const bool opened = parser.value(roster) == QLatin1String("-")
            ? file.open(stdin, QIODevice::ReadOnly)
            : file.open(QIODevice::ReadOnly);
        if (!opened) {
            error = QCoreApplication::translate("main", "cannot read the roster file \"%1\": %2")
                        .arg(file.fileName(), file.errorString());
        }
        document = file.readAll();
    }
    if (error.isEmpty() && live.jids.isEmpty() && !VeskRosterFile::load(document, &error))
        error = QCoreApplication::translate("main", "the roster: %1").arg(error);
    // The same place as vesk-roster's, so that both work on one profile.
    const QString settingsDir = parser.isSet(settings)
        ? parser.value(settings)
        : (error.isEmpty() ? VeskLibrarySession::defaultSettingsDir(&error) : QString());
    VeskRosterLibrary library(settingsDir);
    if (error.isEmpty())
        library.open(&error);
    if (!error.isEmpty()) {
        QMessageBox::critical(nullptr, QCoreApplication::translate("main", "Roster"), error);
        return 2;
    }
    VeskRosterWindow window(&library);
    if (!live.jids.isEmpty()) {
        auto *accounts = new VeskAccountStatus(&window, live);
        if (!accounts->start(&error)) {
            QMessageBox::critical(nullptr, QCoreApplication::translate("main", "Roster"), error);
            return 2;
        }
        if (parser.isSet(screenshots)) {
            QDir().mkpath(parser.value(screenshots));
            return accounts->screenshot(
                       parser.value(screenshots) + QLatin1String("/live-roster.png"))
                ? 0
                : 1;
        }
    }
    if (parser.isSet(screenshots))
        return takeScreenshots(window, parser.value(screenshots));
    window.show();
    return app.exec();
}
