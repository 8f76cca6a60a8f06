#ifndef HOST_DEVICECONTROL_GLOBAL_H
#define HOST_DEVICECONTROL_GLOBAL_H

#include <QtCore/QtGlobal>

// Marks what crosses the border of the devicecontrol library. Exported classes keep one
// type identity in the whole process, so that dynamic_cast works across it.
#if defined(DEVICECONTROL_BUILD)
#define DEVICECONTROL_EXPORT Q_DECL_EXPORT
#else
#define DEVICECONTROL_EXPORT Q_DECL_IMPORT
#endif

#endif
