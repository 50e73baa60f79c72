#include "vesktextcondition_p.h"

#include <QCoreApplication>
#include <QStringList>

namespace VeskTextCondition {

namespace {
    const QString conditionFieldId = QStringLiteral("is_or_not");
    const QString containsId = QStringLiteral("contains");
    const QString doesNotContainId = QStringLiteral("does not contain");
    const QString matchExactlyId = QStringLiteral("match exactly");
    const QString notEmptyId = QStringLiteral("is not empty");
} // namespace

void read(
    const QList<VeskField> &fields, const QString &textFieldId, QString *conditionId, QString *text)
{
    for (const VeskField &field : fields) {
        const QString id = field.getId();
        if (id == conditionFieldId)
            *conditionId = field.getSelectedId();
        else if (id == textFieldId)
            *text = field.getText();
    }
}

void compile(
    const QString &conditionId, const QString &text, bool withNotEmpty, int *mode, QString *needle)
{
    if (conditionId == containsId)
        *mode = Contains;
    else if (conditionId == matchExactlyId)
        *mode = Equals;
    else if (conditionId == doesNotContainId)
        *mode = DoesNotContain;
    else if (withNotEmpty && conditionId == notEmptyId)
        *mode = NotEmpty;
    else
        return;
    *needle = *mode == NotEmpty ? QString() : text;
}

QList<VeskField> configuration(
    bool withNotEmpty, const QString &conditionId, const QString &textFieldId, const QString &text)
{
    QStringList ids { containsId, doesNotContainId, matchExactlyId };
    QStringList labels {
        QCoreApplication::translate("translation", "contains", "nc"),
        QCoreApplication::translate("translation", "does not contain", "nc"),
        QCoreApplication::translate("translation", "match exactly", "nc"),
    };
    if (withNotEmpty) {
        ids << notEmptyId;
        labels << QCoreApplication::translate("translation", "is not empty", "nc");
    }
    return {
        VeskField::comboBox(QString(), conditionFieldId, ids, labels, conditionId, QString()),
        VeskField::lineEdit(QString(), textFieldId, text, 32767, QString()),
    };
}

} // namespace VeskTextCondition
