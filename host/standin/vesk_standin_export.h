#pragma once

#include <QtCore/qglobal.h>

#if defined(VESK_STANDIN_BUILDING)
#define VESK_STANDIN_EXPORT Q_DECL_EXPORT
#else
#define VESK_STANDIN_EXPORT Q_DECL_IMPORT
#endif
