#ifndef HOST_KESTAPPLICATION_H
#define HOST_KESTAPPLICATION_H

#include <QtCore/QtGlobal>
#if QT_VERSION < 0x050000
#include <QtGui/QApplication>
#else
#include <QtWidgets/QApplication>
#endif

#include "startup/startup_global.h"

class KestApplicationPrivate;

// The application object. Owns the splash screen.
class STARTUP_EXPORT KestApplication : public QApplication
{
    Q_OBJECT
public:
    KestApplication(int& argc, char** argv);
    ~KestApplication();

    // Shows the splash screen, or brings it to the front. Raising twice shows it once.
    void RaiseSplash();
    void HideSplash();

    static KestApplication* m_pThis;  // null before construction and after destruction

private:
    Q_DISABLE_COPY(KestApplication)
    friend class KestApplicationPrivate;
    KestApplicationPrivate* d;
};

#endif
