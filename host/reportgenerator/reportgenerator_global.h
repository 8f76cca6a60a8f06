#ifndef HOST_REPORTGENERATOR_GLOBAL_H
#define HOST_REPORTGENERATOR_GLOBAL_H

#include <QtCore/QtGlobal>

// Marks what crosses the border of the reportgenerator library. Exported classes keep one
// type identity in the whole process, so that dynamic_cast works across it.
#if defined(REPORTGENERATOR_BUILD)
#define REPORTGENERATOR_EXPORT Q_DECL_EXPORT
#else
#define REPORTGENERATOR_EXPORT Q_DECL_IMPORT
#endif

#endif
