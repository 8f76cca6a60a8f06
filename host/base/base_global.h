#ifndef HOST_BASE_GLOBAL_H
#define HOST_BASE_GLOBAL_H

#include <QtCore/QtGlobal>

// Marks what crosses the border of the base library. Exported classes keep one
// type identity in the whole process, so that dynamic_cast works across it.
#if defined(BASE_BUILD)
#define BASE_EXPORT Q_DECL_EXPORT
#else
#define BASE_EXPORT Q_DECL_IMPORT
#endif

#endif
