#ifndef HOST_RECEIVERCOMMON_GLOBAL_H
#define HOST_RECEIVERCOMMON_GLOBAL_H

#include <QtCore/QtGlobal>

// Marks what crosses the border of the receivercommon library. Exported classes keep one
// type identity in the whole process, so that dynamic_cast works across it.
#if defined(RECEIVERCOMMON_BUILD)
#define RECEIVERCOMMON_EXPORT Q_DECL_EXPORT
#else
#define RECEIVERCOMMON_EXPORT Q_DECL_IMPORT
#endif

#endif
