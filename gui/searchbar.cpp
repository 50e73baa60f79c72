#include "searchbar.h"

#include <veskrosterproxymodel.h>
#include <veskrosterquicksearch.h>

#include <QApplication>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>

VeskSearchBar::VeskSearchBar(VeskRosterProxyModel *proxy, QWidget *parent)
    : QWidget(parent)
    , proxy(proxy)
    , edit(new QLineEdit(this))
    , everyEntry(new QCheckBox(tr("Search e&very entry"), this))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 4, 6, 4);
    auto *label = new QLabel(tr("Searc&h:"), this);
    label->setBuddy(edit);
    edit->setObjectName(QStringLiteral("search"));
    edit->setPlaceholderText(tr("Name, account, group or status (Ctrl+F)"));
    edit->setClearButtonEnabled(true);
    edit->setAccessibleName(tr("Quick search"));
    edit->installEventFilter(this);
    everyEntry->setObjectName(QStringLiteral("searchEveryEntry"));
    everyEntry->setToolTip(tr("Look for the text in every entry, not only in those the current "
                              "filter shows"));
    layout->addWidget(label);
    layout->addWidget(edit, 1);
    layout->addWidget(everyEntry);
    connect(edit, &QLineEdit::textChanged, this, &VeskSearchBar::apply);
    // The texts the search looks at are read while the user has yet to type,
    // a slice per turn of the event loop so that the window stays responsive,
    // and again once the roster's rows changed.
    preparing.setInterval(0);
    preparing.setSingleShot(true);
    connect(&preparing, &QTimer::timeout, this, [this] {
        if (!this->proxy->prepareQuickSearch(8))
            preparing.start();
    });
    connect(proxy, &QAbstractItemModel::layoutChanged, this, [this] {
        if (edit->hasFocus())
            preparing.start();
    });
    connect(everyEntry, &QCheckBox::toggled, this, [this](bool on) {
        this->proxy->setQuickSearchScope(
            on ? VeskRosterQuickSearch::EveryEntry : VeskRosterQuickSearch::CurrentFilter);
        Q_EMIT searchChanged();
    });
}

QString VeskSearchBar::text() const
{
    return edit->text();
}

void VeskSearchBar::focusField()
{
    edit->setFocus(Qt::ShortcutFocusReason);
    edit->selectAll();
}

bool VeskSearchBar::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == edit && event->type() == QEvent::FocusIn)
        preparing.start();
    if (watched == edit && event->type() == QEvent::KeyPress
        && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape && !edit->text().isEmpty()) {
        edit->clear();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void VeskSearchBar::apply()
{
    // The proxy asks again only the members a keystroke can change (see
    // VeskRosterProxyModel::setQuickSearch), so that typing stays within a
    // frame on large rosters.
    proxy->setQuickSearch(edit->text());
    Q_EMIT searchChanged();
}

bool VeskSearchHighlightDelegate::matchIn(
    const QString &text, const QString &needle, int *start, int *length)
{
    const QString foldedNeedle = VeskRosterQuickSearch::fold(needle);
    if (foldedNeedle.isEmpty())
        return false;
    // The folded text, and for each of its characters the character of
    // `text` it came from.
    QString folded;
    QVector<int> from;
    for (int i = 0; i < text.size(); ++i) {
        const int width
            = text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()
            ? 2
            : 1;
        const QString piece = VeskRosterQuickSearch::fold(text.mid(i, width));
        folded += piece;
        for (int k = 0; k < piece.size(); ++k)
            from.append(i);
        i += width - 1;
    }
    const int at = int(folded.indexOf(foldedNeedle));
    if (at < 0)
        return false;
    // The match ends with the character of its last folded one, and takes
    // along the marks that follow it (they fold to nothing).
    const int after = at + int(foldedNeedle.size());
    const int last = from.at(after - 1);
    const int end = qMax(after < from.size() ? from.at(after) : int(text.size()),
        last + (text.at(last).isHighSurrogate() ? 2 : 1));
    *start = from.at(at);
    *length = end - *start;
    return true;
}

void VeskSearchHighlightDelegate::paint(
    QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QStyledItemDelegate::paint(painter, option, index);
    const auto *proxy = qobject_cast<const VeskRosterProxyModel *>(index.model());
    if (!proxy || index.column() != 0 || proxy->quickSearch().isEmpty()
        || proxy->rosterEntry(index).getType() == VeskBuddy::TypeGroup)
        return;
    QStyleOptionViewItem opt = option;
    initStyleOption(&opt, index);
    int start = 0;
    int length = 0;
    if (!matchIn(opt.text, proxy->quickSearch(), &start, &length))
        return;
    const QWidget *widget = opt.widget;
    QStyle *style = widget ? widget->style() : QApplication::style();
    const QRect textRect = style->subElementRect(QStyle::SE_ItemViewItemText, &opt, widget);
    const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, widget) + 1;
    const QFontMetrics metrics(opt.font);
    const int left = textRect.left() + margin + metrics.horizontalAdvance(opt.text.left(start));
    const int width = metrics.horizontalAdvance(opt.text.mid(start, length));
    QColor mark = opt.palette.color(QPalette::Highlight);
    mark.setAlpha(80);
    painter->fillRect(QRect(left, textRect.top() + 2, width, textRect.height() - 4), mark);
}
