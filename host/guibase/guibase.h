#ifndef HOST_GUIBASE_H
#define HOST_GUIBASE_H

#include <QtCore/QtGlobal>

#include "guibase/guibase_global.h"

class GuiBasePrivate;
class QWidget;

// What the parts of a user interface share in one process.
class GUIBASE_EXPORT GuiBase
{
public:
    static GuiBase* Instance();

    // The application's main widget; not owned, null takes it back. The stale banner lies over it.
    void SetMainWidget(QWidget* widget);

private:
    Q_DISABLE_COPY(GuiBase)
    friend class GuiBasePrivate;
    GuiBase();
    ~GuiBase();
    GuiBasePrivate* d;
};

#endif
