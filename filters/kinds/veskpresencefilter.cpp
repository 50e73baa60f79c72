// PLACEHOLDER: replaced by the real implementation; exists only so the tree links.
#include "veskpresencefilter.h"

VeskPresenceFilter::VeskPresenceFilter() : positive(true) {}
VeskPresenceFilter::~VeskPresenceFilter() = default;
VeskRosterFilter::RosterFilterType VeskPresenceFilter::getType() const { return RosterFilterLeaf; }
QString VeskPresenceFilter::id() const { return QStringLiteral("presence"); }
QString VeskPresenceFilter::name() const { return QStringLiteral("presence"); }
QString VeskPresenceFilter::display() const { return QString(); }
bool VeskPresenceFilter::filter(const VeskBuddy &) const { return false; }
QList<VeskField> VeskPresenceFilter::getConfiguration() const { return {}; }
void VeskPresenceFilter::setConfiguration(const QList<VeskField> &) {}
