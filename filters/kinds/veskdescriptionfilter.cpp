// PLACEHOLDER: replaced by the real implementation; exists only so the tree links.
#include "veskdescriptionfilter.h"

VeskDescriptionFilter::VeskDescriptionFilter() {}
VeskDescriptionFilter::~VeskDescriptionFilter() = default;
VeskRosterFilter::RosterFilterType VeskDescriptionFilter::getType() const { return RosterFilterLeaf; }
QString VeskDescriptionFilter::id() const { return QStringLiteral("description"); }
QString VeskDescriptionFilter::name() const { return QStringLiteral("description"); }
QString VeskDescriptionFilter::display() const { return QString(); }
bool VeskDescriptionFilter::filter(const VeskBuddy &) const { return false; }
QList<VeskField> VeskDescriptionFilter::getConfiguration() const { return {}; }
void VeskDescriptionFilter::setConfiguration(const QList<VeskField> &) {}
