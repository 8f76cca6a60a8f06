#ifndef HOST_RECORDERTOOLBAR_GLOBAL_H
#define HOST_RECORDERTOOLBAR_GLOBAL_H

#include <QtCore/QtGlobal>

// Marks what crosses the border of the recordertoolbar library. Exported classes keep one
// type identity in the whole process, so that dynamic_cast works across it.
#if defined(RECORDERTOOLBAR_BUILD)
#define RECORDERTOOLBAR_EXPORT Q_DECL_EXPORT
#else
#define RECORDERTOOLBAR_EXPORT Q_DECL_IMPORT
#endif

#endif
