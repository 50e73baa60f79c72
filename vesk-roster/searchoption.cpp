#include "searchoption.h"

#include "refusal.h"
#include "sessiontext_p.h"

VeskRosterQuickSearch takeSearchOptions(QStringList *args)
{
    VeskRosterQuickSearch search;
    const QString option = QStringLiteral("--search");
    for (int i = 0; i < args->size();) {
        const QString arg = args->at(i);
        if (arg == option) {
            if (i + 1 >= args->size())
                refuse(vtr("missing argument: %1 needs a value").arg(option));
            search.setText(args->at(i + 1));
            args->removeAt(i + 1);
            args->removeAt(i);
        } else if (arg.startsWith(option + QLatin1Char('='))) {
            search.setText(arg.mid(option.size() + 1));
            args->removeAt(i);
        } else if (arg == QLatin1String("--every-entry")) {
            search.setScope(VeskRosterQuickSearch::EveryEntry);
            args->removeAt(i);
        } else {
            ++i;
        }
    }
    return search;
}
