// PLACEHOLDER: replaced by the real implementation; exists only so the tree links.
#include "veskaccountfilter.h"

VeskAccountFilter::VeskAccountFilter() : positive(true) {}
VeskAccountFilter::~VeskAccountFilter() = default;
VeskRosterFilter::RosterFilterType VeskAccountFilter::getType() const { return RosterFilterLeaf; }
QString VeskAccountFilter::id() const { return QStringLiteral("account"); }
QString VeskAccountFilter::name() const { return QStringLiteral("account"); }
QString VeskAccountFilter::display() const { return QString(); }
bool VeskAccountFilter::filter(const VeskBuddy &) const { return false; }
QList<VeskField> VeskAccountFilter::getConfiguration() const { return {}; }
void VeskAccountFilter::setConfiguration(const QList<VeskField> &) {}
