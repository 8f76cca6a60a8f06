#ifndef HOST_GUIBASE_GLOBAL_H
#define HOST_GUIBASE_GLOBAL_H

#include <QtCore/QtGlobal>

// Marks what crosses the border of the guibase library. Exported classes keep one
// type identity in the whole process, so that dynamic_cast works across it.
#if defined(GUIBASE_BUILD)
#define GUIBASE_EXPORT Q_DECL_EXPORT
#else
#define GUIBASE_EXPORT Q_DECL_IMPORT
#endif

#endif
