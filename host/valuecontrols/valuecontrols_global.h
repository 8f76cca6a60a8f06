#ifndef HOST_VALUECONTROLS_GLOBAL_H
#define HOST_VALUECONTROLS_GLOBAL_H

#include <QtCore/QtGlobal>

// Marks what crosses the border of the valuecontrols library. Exported classes keep one
// type identity in the whole process, so that dynamic_cast works across it.
#if defined(VALUECONTROLS_BUILD)
#define VALUECONTROLS_EXPORT Q_DECL_EXPORT
#else
#define VALUECONTROLS_EXPORT Q_DECL_IMPORT
#endif

#endif
