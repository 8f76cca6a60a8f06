#ifndef HOST_STARTUP_GLOBAL_H
#define HOST_STARTUP_GLOBAL_H

#include <QtCore/QtGlobal>

// Marks what crosses the border of the startup library. Exported classes keep one
// type identity in the whole process, so that dynamic_cast works across it.
#if defined(STARTUP_BUILD)
#define STARTUP_EXPORT Q_DECL_EXPORT
#else
#define STARTUP_EXPORT Q_DECL_IMPORT
#endif

#endif
