#include "veskchoicecondition_p.h"
#include <veskentrykind_p.h>

#include <veskaccount.h>
#include <veskbuddy.h>

#include <QCoreApplication>
#include <QSet>

namespace VeskChoiceCondition {

namespace {
    const QString conditionFieldId = QStringLiteral("is_or_not");
    const QString isId = QStringLiteral("is");
    const QString isNotId = QStringLiteral("is not");
} // namespace

void read(const QList<VeskField> &fields, QString *value, bool *positive, QString *conditionLabel,
    QString *valueLabel)
{
    for (const VeskField &field : fields) {
        if (field.getId() == conditionFieldId) {
            *conditionLabel = field.getSelectedLabel();
            *positive = field.getSelectedId() == isId;
        } else {
            *value = field.getSelectedId();
            if (valueLabel)
                *valueLabel = field.getSelectedLabel();
        }
    }
}

QList<VeskField> configuration(bool positive, const QString &valueFieldId, const QStringList &ids,
    const QStringList &labels, const QString &value)
{
    const QStringList conditionLabels {
        QCoreApplication::translate("translation", "is", "nc"),
        QCoreApplication::translate("translation", "is not", "nc"),
    };
    return {
        VeskField::comboBox(QString(), conditionFieldId, { isId, isNotId }, conditionLabels,
            positive ? isId : isNotId, QString()),
        VeskField::comboBox(QString(), valueFieldId, ids, labels, value, QString()),
    };
}

VeskAccountConnection *accountOf(const VeskBuddy &buddy)
{
    switch (buddy.getType()) {
    case VeskEntryKind::Contact:
        return VeskBuddyContact(buddy).getAccount();
    case VeskEntryKind::Temporary:
        return VeskBuddyTemporary(buddy).getAccount();
    default:
        return nullptr;
    }
}

QStringList distinctAccountTexts(AccountText what)
{
    QSet<QString> texts;
    const QList<VeskAccountConnection *> accounts
        = VeskAccountManager::getInstance()->getAccounts();
    for (const VeskAccountConnection *account : accounts) {
        // The host does not promise a list without holes; a hole offers nothing.
        if (!account)
            continue;
        texts.insert(what == ProtocolName
                ? account->getProtocolName()
                : account->getUid() + QLatin1Char('@') + account->getProtocolName());
    }
    return QStringList(texts.cbegin(), texts.cend());
}

} // namespace VeskChoiceCondition
