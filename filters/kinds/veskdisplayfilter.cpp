// PLACEHOLDER: replaced by the real implementation; exists only so the tree links.
#include "veskdisplayfilter.h"

VeskDisplayFilter::VeskDisplayFilter() {}
VeskDisplayFilter::~VeskDisplayFilter() = default;
VeskRosterFilter::RosterFilterType VeskDisplayFilter::getType() const { return RosterFilterLeaf; }
QString VeskDisplayFilter::id() const { return QStringLiteral("display"); }
QString VeskDisplayFilter::name() const { return QStringLiteral("display"); }
QString VeskDisplayFilter::display() const { return QString(); }
bool VeskDisplayFilter::filter(const VeskBuddy &) const { return false; }
QList<VeskField> VeskDisplayFilter::getConfiguration() const { return {}; }
void VeskDisplayFilter::setConfiguration(const QList<VeskField> &) {}
