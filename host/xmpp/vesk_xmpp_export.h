#pragma once

#include <QtCore/qglobal.h>

#if defined(VESK_XMPP_BUILDING)
#define VESK_XMPP_EXPORT Q_DECL_EXPORT
#else
#define VESK_XMPP_EXPORT Q_DECL_IMPORT
#endif
