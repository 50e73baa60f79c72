// PLACEHOLDER: replaced by the real implementation; exists only so the tree links.
#include "veskprotocolfilter.h"

VeskProtocolFilter::VeskProtocolFilter() : positive(true) {}
VeskProtocolFilter::~VeskProtocolFilter() = default;
VeskRosterFilter::RosterFilterType VeskProtocolFilter::getType() const { return RosterFilterLeaf; }
QString VeskProtocolFilter::id() const { return QStringLiteral("protocol"); }
QString VeskProtocolFilter::name() const { return QStringLiteral("protocol"); }
QString VeskProtocolFilter::display() const { return QString(); }
bool VeskProtocolFilter::filter(const VeskBuddy &) const { return false; }
QList<VeskField> VeskProtocolFilter::getConfiguration() const { return {}; }
void VeskProtocolFilter::setConfiguration(const QList<VeskField> &) {}
