#include "accountstatus.h"

#include "mainwindow.h"
#include "rostertreemodel.h"

#include <veskrosterproxymodel.h>
#include <veskxmppaccount.h>
#include <veskxmpphost.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QInputDialog>
#include <QLabel>
#include <QStatusBar>
#include <QTimer>
#include <QTreeView>

void VeskAccountStatus::follow(VeskXmppHost *host, VeskRosterTreeModel *model)
{
    connect(host, &VeskXmppHost::entryAdded, model, &VeskRosterTreeModel::insertEntry);
    connect(host, &VeskXmppHost::entryAboutToBeRemoved, model, &VeskRosterTreeModel::removeEntry);
    connect(host, &VeskXmppHost::entryChanged, model, &VeskRosterTreeModel::entryChanged);
    connect(
        host, &VeskXmppHost::entriesAboutToBeReset, model, &VeskRosterTreeModel::beginEntriesReset);
    connect(host, &VeskXmppHost::entriesReset, model, &VeskRosterTreeModel::endEntriesReset);
}

void VeskAccountStatus::addOptions(QCommandLineParser &parser)
{
    parser.addOption(QCommandLineOption(QStringLiteral("xmpp"),
        tr("Show the roster of this XMPP account (repeatable); the password comes from "
           "VESK_XMPP_PASSWORD or a dialog."),
        tr("JID")));
    parser.addOption(QCommandLineOption(QStringLiteral("xmpp-server"),
        tr("The server to connect to, instead of the one the JID's domain names."),
        tr("HOST:PORT")));
    parser.addOption(QCommandLineOption(QStringLiteral("xmpp-ca"),
        tr("Trust the server certificates this CA signed, besides the system's."), tr("FILE")));
    parser.addOption(QCommandLineOption(
        QStringLiteral("xmpp-insecure"), tr("No TLS: only for a server on the loopback address.")));
}

bool VeskAccountStatus::readOptions(
    const QCommandLineParser &parser, Options *options, QString *error)
{
    options->jids = parser.values(QStringLiteral("xmpp"));
    options->server = parser.value(QStringLiteral("xmpp-server"));
    options->caFile = parser.value(QStringLiteral("xmpp-ca"));
    options->insecure = parser.isSet(QStringLiteral("xmpp-insecure"));
    if (options->jids.isEmpty()) {
        if (!options->server.isEmpty() || !options->caFile.isEmpty() || options->insecure) {
            *error = tr("--xmpp-server, --xmpp-ca and --xmpp-insecure go with --xmpp JID");
            return false;
        }
        return true;
    }
    for (const QString &jid : qAsConst(options->jids)) {
        VeskXmppSettings settings;
        settings.jid = jid;
        settings.insecure = options->insecure;
        if (!options->server.isEmpty()
            && !VeskXmppHost::parseServer(options->server, &settings.host, &settings.port)) {
            *error = tr("--xmpp-server needs HOST:PORT, not \"%1\"").arg(options->server);
            return false;
        }
        *error = VeskXmppHost::settingsProblem(settings);
        if (!error->isEmpty())
            return false;
    }
    if (!options->caFile.isEmpty() && !QFileInfo(options->caFile).isReadable()) {
        *error = tr("cannot read the CA certificate \"%1\"").arg(options->caFile);
        return false;
    }
    return true;
}

VeskAccountStatus::VeskAccountStatus(VeskRosterWindow *window, const Options &options)
    : QObject(window)
    , window(window)
    , options(options)
    , xmppHost(std::make_unique<VeskXmppHost>())
    , ticker(new QTimer(this))
{
    follow(xmppHost.get(), window->model());
    // Groups that arrive are shown open, as the window shows them at start.
    QTreeView *view = window->view();
    connect(window->proxy(), &QAbstractItemModel::modelReset, view, &QTreeView::expandAll);
    connect(window->proxy(), &QAbstractItemModel::rowsInserted, view,
        [view](const QModelIndex &parent, int first, int last) {
            if (parent.isValid())
                return;
            for (int row = first; row <= last; ++row)
                view->expand(view->model()->index(row, 0));
        });
    ticker->setInterval(1000);
    connect(ticker, &QTimer::timeout, this, &VeskAccountStatus::update);
}

VeskAccountStatus::~VeskAccountStatus() = default;

bool VeskAccountStatus::start(QString *error)
{
    const bool fromEnvironment = qEnvironmentVariableIsSet("VESK_XMPP_PASSWORD");
    for (const QString &jid : qAsConst(options.jids)) {
        VeskXmppSettings settings;
        settings.jid = jid;
        settings.caFile = options.caFile;
        settings.insecure = options.insecure;
        settings.reconnect = true;
        if (!options.server.isEmpty())
            VeskXmppHost::parseServer(options.server, &settings.host, &settings.port);
        if (fromEnvironment) {
            settings.password = qgetenv("VESK_XMPP_PASSWORD");
        } else {
            bool ok = false;
            const QString password = QInputDialog::getText(window, tr("Log in"),
                tr("Password for %1:").arg(jid), QLineEdit::Password, QString(), &ok);
            if (!ok) {
                *error = tr("no password for %1").arg(jid);
                return false;
            }
            settings.password = password.toUtf8();
        }
        VeskXmppAccount *account = xmppHost->addAccount(settings);
        auto *label = new QLabel(window);
        label->setObjectName(QStringLiteral("account ") + jid);
        label->setTextFormat(Qt::PlainText);
        window->statusBar()->addPermanentWidget(label);
        labels.append(label);
        connect(account, &VeskXmppAccount::stateChanged, this, &VeskAccountStatus::update);
        account->connectToServer();
    }
    ticker->start();
    update();
    return true;
}

QString VeskAccountStatus::stateText(VeskXmppAccount *account) const
{
    QString state;
    switch (account->state()) {
    case VeskXmppAccount::Disconnected:
        state = tr("disconnected");
        break;
    case VeskXmppAccount::Connecting:
        state = tr("connecting...");
        break;
    case VeskXmppAccount::Connected:
        state = options.insecure ? tr("connected, without TLS") : tr("connected");
        break;
    case VeskXmppAccount::Waiting:
        state = tr("offline (%1); trying again shortly").arg(account->errorText());
        break;
    case VeskXmppAccount::Failed:
        state = tr("failed: %1").arg(account->errorText());
        break;
    }
    return tr("%1: %2").arg(account->jid(), state);
}

void VeskAccountStatus::update()
{
    const QList<VeskXmppAccount *> accounts = xmppHost->accounts();
    for (int i = 0; i < accounts.size() && i < labels.size(); ++i) {
        labels.at(i)->setText(stateText(accounts.at(i)));
        labels.at(i)->setToolTip(accounts.at(i)->errorText());
    }
}

bool VeskAccountStatus::screenshot(const QString &path)
{
    // Once every account is in and a few rounds of the buddies' changes
    // have shown, at most 30 s.
    window->show();
    QElapsedTimer clock;
    clock.start();
    QEventLoop loop;
    QTimer poll;
    connect(&poll, &QTimer::timeout, &loop, [&] {
        const QList<VeskXmppAccount *> accounts = xmppHost->accounts();
        const bool in = std::all_of(accounts.begin(), accounts.end(),
            [](VeskXmppAccount *a) { return a->state() == VeskXmppAccount::Connected; });
        if ((in && clock.elapsed() > 6000) || clock.elapsed() > 30000)
            loop.quit();
    });
    poll.start(100);
    loop.exec();
    update();
    QApplication::processEvents();
    return window->grab().save(path);
}
