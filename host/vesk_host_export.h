#pragma once

#include <QtCore/qglobal.h>

#if defined(VESK_HOST_BUILDING)
#define VESK_HOST_EXPORT Q_DECL_EXPORT
#else
#define VESK_HOST_EXPORT Q_DECL_IMPORT
#endif
