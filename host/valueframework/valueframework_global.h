#ifndef HOST_VALUEFRAMEWORK_GLOBAL_H
#define HOST_VALUEFRAMEWORK_GLOBAL_H

#include <QtCore/QtGlobal>

// Marks what crosses the border of the valueframework library. Exported classes keep one
// type identity in the whole process, so that dynamic_cast works across it.
#if defined(VALUEFRAMEWORK_BUILD)
#define VALUEFRAMEWORK_EXPORT Q_DECL_EXPORT
#else
#define VALUEFRAMEWORK_EXPORT Q_DECL_IMPORT
#endif

#endif
