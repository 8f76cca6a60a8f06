#ifndef HOST_GUICENTRAL_H
#define HOST_GUICENTRAL_H

#include <QtCore/QString>

#include "devicecontrol/devicecontrol_global.h"

class GuiCentralPrivate;
class QApplication;

// Services for device windows: private values of the tree, and window geometry kept between runs.
class DEVICECONTROL_EXPORT GuiCentral
{
public:
    static GuiCentral* Instance();

    // A new value with a unique path that only the caller uses. `step` is the step of a control
    // that edits it; 0 lets the control choose. Empty without a tree.
    QString CreateUniqueValueFloat(double initial, double minimum, double maximum, double step);
    QString CreateUniqueValueInt(int initial, int minimum, int maximum, int step);

    // The application whose windows are meant. Geometry of its main widget is restored when it is
    // first shown.
    void SetApplication(QApplication* application);

    // Saves size and place of the main widget for the next run.
    void StoreWidgetSize();

private:
    Q_DISABLE_COPY(GuiCentral)
    friend class GuiCentralPrivate;
    GuiCentral();
    ~GuiCentral();
    GuiCentralPrivate* d;
};

#endif
