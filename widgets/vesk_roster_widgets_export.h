#pragma once

#include <QtCore/qglobal.h>

// Define VESK_ROSTER_WIDGETS_STATIC when linking a static build of the library.
#if defined(VESK_ROSTER_WIDGETS_STATIC)
#define VESK_ROSTER_WIDGETS_EXPORT
#elif defined(VESK_ROSTER_WIDGETS_BUILDING)
#define VESK_ROSTER_WIDGETS_EXPORT Q_DECL_EXPORT
#else
#define VESK_ROSTER_WIDGETS_EXPORT Q_DECL_IMPORT
#endif
