#include "accountstatus.h"
#include "filtersdialog.h"
#include "mainwindow.h"
#include "rosterlibrary.h"
#include "sortingdialog.h"

#include <librarysession.h>
#include <rosterfile.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QLibraryInfo>
#include <QLocale>
#include <QMessageBox>
#include <QTranslator>
#include <QTreeWidget>

namespace {

void installTranslations(QApplication &app)
{
    const QLocale locale;
    const QString here = QCoreApplication::applicationDirPath();
    for (const char *catalogue :
        { "vesk_roster_gui", "vesk_gui_roster_widgets", "vesk_gui_roster_filter" }) {
        auto *translator = new QTranslator(&app);
        const QString name = QString::fromLatin1(catalogue);
        if (translator->load(locale, name, QStringLiteral("_"), here)
            || translator->load(
                locale, name, QStringLiteral("_"), here + QLatin1String("/../translations")))
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

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("vesk-roster-gui"));
    installTranslations(app);

    QCommandLineParser parser;
    parser.setApplicationDescription(QCoreApplication::translate("main", "The roster window."));
    parser.addHelpOption();
    const QCommandLineOption settings(QStringLiteral("settings"),
        QCoreApplication::translate("main", "The settings directory (as vesk-roster's)."),
        QCoreApplication::translate("main", "DIR"));
    const QCommandLineOption roster(QStringLiteral("roster"),
        QCoreApplication::translate(
            "main", "The roster file (JSON); the bundled sample without it."),
        QCoreApplication::translate("main", "FILE"));
    const QCommandLineOption screenshots(QStringLiteral("screenshots"),
        QCoreApplication::translate(
            "main", "Save pictures of the window and the editors in DIR, then quit."),
        QCoreApplication::translate("main", "DIR"));
    parser.addOption(settings);
    parser.addOption(roster);
    parser.addOption(screenshots);
    VeskAccountStatus::addOptions(parser);
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
        if (!file.open(QIODevice::ReadOnly)) {
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
