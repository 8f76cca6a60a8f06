#include "startup/kestapplication.h"

#include <memory>

#include "startup/splash.h"
#include "startup/startuphost.h"

class KestApplicationPrivate
{
public:
    static KestApplicationPrivate* Get()
    {
        return KestApplication::m_pThis ? KestApplication::m_pThis->d : nullptr;
    }

    Splash& TheSplash()
    {
        if (!m_Splash)
            m_Splash = std::make_unique<Splash>();
        return *m_Splash;
    }

    std::unique_ptr<Splash> m_Splash;
};

KestApplication* KestApplication::m_pThis = nullptr;

KestApplication::KestApplication(int& argc, char** argv)
    : QApplication(argc, argv), d(new KestApplicationPrivate)
{
    m_pThis = this;
}

KestApplication::~KestApplication()
{
    m_pThis = nullptr;
    delete d;
}

void KestApplication::RaiseSplash()
{
    Splash& splash = d->TheSplash();
    splash.show();
    if (platformName() !=
        QLatin1String("offscreen"))  // where windows do not stack, and raising one is a warning
        splash.raise();
    splash.repaint();  // it is seen before the event loop runs
}

void KestApplication::HideSplash()
{
    if (d->m_Splash)
        d->m_Splash->hide();
}

void StartupHost::SetSplashText(const QString& text)
{
    if (KestApplicationPrivate* d = KestApplicationPrivate::Get())
        d->TheSplash().SetText(text);
}
