#ifndef HOST_SPECTRUM_GLOBAL_H
#define HOST_SPECTRUM_GLOBAL_H

#include <QtCore/QtGlobal>

// Marks what crosses the border of the spectrum library. Exported classes keep one
// type identity in the whole process, so that dynamic_cast works across it.
#if defined(SPECTRUM_BUILD)
#define SPECTRUM_EXPORT Q_DECL_EXPORT
#else
#define SPECTRUM_EXPORT Q_DECL_IMPORT
#endif

#endif
