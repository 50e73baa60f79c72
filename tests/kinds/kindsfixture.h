#pragma once

// The roster every leaf-filter table runs against, and the host editor's way
// of configuring a filter: take its own fields, change the values, hand them
// back.

#include <standin/veskstandin.h>
#include <veskfield.h>
#include <veskrosterfilter.h>

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

using FieldValues = QList<QPair<QString, QString>>;

struct LabelledEntry
{
    QString label;
    VeskBuddy buddy;
};

// contact:    "Bobby bob" in Friends, through alice@home on jabber, "away"
// temporary:  "bob" in Work, through bob on icq, "away"
// group:      the group Friends
// invalid:    an entry of kind 7 named "xa.by"
// no account: contact "Bobby" in Work, known through no account, no description
// bare:       contact with no name and no group, through carol on a protocol
//             with an empty name, no description
inline QList<LabelledEntry> buildRoster()
{
    using namespace VeskStandIn;
    resetRoster();
    const VeskBuddy friends = addGroup(QStringLiteral("Friends"), 1);
    const VeskBuddy work = addGroup(QStringLiteral("Work"), 2);
    VeskAccountConnection *alice
        = addAccount(QStringLiteral("alice@home"), QStringLiteral("jabber"));
    VeskAccountConnection *bob = addAccount(QStringLiteral("bob"), QStringLiteral("icq"));
    VeskAccountConnection *carol = addAccount(QStringLiteral("carol"), QString());
    const VeskPresence away
        = makePresence(QStringLiteral("away"), QString(), QStringLiteral("away"));

    ContactInfo contact;
    contact.display = QStringLiteral("Bobby bob");
    contact.group = friends;
    contact.account = alice;
    contact.presence = away;
    ContactInfo temporary;
    temporary.display = QStringLiteral("bob");
    temporary.group = work;
    temporary.account = bob;
    temporary.presence = away;
    ContactInfo noAccount;
    noAccount.display = QStringLiteral("Bobby");
    noAccount.group = work;
    ContactInfo bare;
    bare.account = carol;

    return {
        { QStringLiteral("contact"), addContact(contact) },
        { QStringLiteral("temporary"), addTemporary(temporary) },
        { QStringLiteral("group"), friends },
        { QStringLiteral("invalid"), addEntry(7, QStringLiteral("xa.by")) },
        { QStringLiteral("no account"), addContact(noAccount) },
        { QStringLiteral("bare"), addContact(bare) },
    };
}

// The labels of the entries the filter passes, in roster order.
inline QString passing(const VeskRosterFilter &filter, const QList<LabelledEntry> &entries)
{
    QStringList labels;
    for (const LabelledEntry &entry : entries) {
        if (filter.filter(entry.buddy))
            labels << entry.label;
    }
    return labels.join(QStringLiteral(", "));
}

// What the host's filter editor does: the filter's own fields with the given
// values put in (a selected id or a text, by field id), handed back.
inline void configure(VeskRosterFilter &filter, const FieldValues &values)
{
    QList<VeskField> fields = filter.getConfiguration();
    for (const auto &value : values) {
        for (VeskField &field : fields) {
            if (field.getId() != value.first)
                continue;
            if (field.getKind() == VeskField::ComboBox)
                field.setSelectedId(value.second);
            else
                field.setText(value.second);
        }
    }
    filter.setConfiguration(fields);
}

// A field list as one line: "id=[item ids|item labels] selected id" or
// "id=text" for a line edit.
inline QString describe(const QList<VeskField> &fields)
{
    QStringList parts;
    for (const VeskField &field : fields) {
        if (field.getKind() == VeskField::ComboBox) {
            parts << QStringLiteral("%1=[%2|%3] %4")
                         .arg(field.getId(), field.getComboBoxIds().join(QLatin1Char(',')),
                             field.getComboBoxLabels().join(QLatin1Char(',')),
                             field.getSelectedId());
        } else {
            parts << QStringLiteral("%1=%2").arg(field.getId(), field.getText());
        }
    }
    return parts.join(QStringLiteral("; "));
}
