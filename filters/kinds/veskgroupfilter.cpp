// PLACEHOLDER: replaced by the real implementation; exists only so the tree links.
#include "veskgroupfilter.h"

VeskGroupFilter::VeskGroupFilter() : positive(true) {}
VeskGroupFilter::~VeskGroupFilter() = default;
VeskRosterFilter::RosterFilterType VeskGroupFilter::getType() const { return RosterFilterLeaf; }
QString VeskGroupFilter::id() const { return QStringLiteral("group"); }
QString VeskGroupFilter::name() const { return QStringLiteral("group"); }
QString VeskGroupFilter::display() const { return QString(); }
bool VeskGroupFilter::filter(const VeskBuddy &) const { return false; }
QList<VeskField> VeskGroupFilter::getConfiguration() const { return {}; }
void VeskGroupFilter::setConfiguration(const QList<VeskField> &) {}
