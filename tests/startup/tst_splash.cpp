#include <QSet>
#include <QSplashScreen>
#include <QTest>

#include "startup/kestapplication.h"
#include "startup/startuphost.h"

namespace {

QList<QSplashScreen*> VisibleSplashes()
{
    QList<QSplashScreen*> found;
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (QSplashScreen* splash = qobject_cast<QSplashScreen*>(widget))
            if (splash->isVisible())
                found.append(splash);
    return found;
}

int Colours(const QImage& image)
{
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            colours.insert(image.pixel(x, y));
    return colours.size();
}

}  // namespace

class TestSplash : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { KestApplication::m_pThis->HideSplash(); }

    void theApplicationIsKnownWhileItLives()
    {
        QCOMPARE(static_cast<QCoreApplication*>(KestApplication::m_pThis), QCoreApplication::instance());
    }

    void hidingASplashThatWasNeverRaisedIsHarmless()
    {
        KestApplication::m_pThis->HideSplash();
        QVERIFY(VisibleSplashes().isEmpty());
    }

    void raisingTwiceShowsOneSplashAndHidingOnceHidesIt()
    {
        KestApplication::m_pThis->RaiseSplash();
        KestApplication::m_pThis->RaiseSplash();
        QCOMPARE(VisibleSplashes().size(), 1);
        KestApplication::m_pThis->HideSplash();
        QVERIFY(VisibleSplashes().isEmpty());
        KestApplication::m_pThis->RaiseSplash();
        QCOMPARE(VisibleSplashes().size(), 1);
    }

    void theSplashIsADrawnPicture()
    {
        KestApplication::m_pThis->RaiseSplash();
        const QImage picture = VisibleSplashes().first()->grab().toImage();
        QVERIFY(picture.width() >= 400);
        QVERIFY2(Colours(picture) > 50, qPrintable(QString::number(Colours(picture))));
    }

    void theSplashShowsWhatIsBeingDone()
    {
        KestApplication::m_pThis->RaiseSplash();
        QSplashScreen* const splash = VisibleSplashes().first();
        StartupHost::SetSplashText(QStringLiteral("Loading plug-ins"));
        const QImage before = splash->grab().toImage();
        QCOMPARE(splash->accessibleDescription(), QStringLiteral("Loading plug-ins"));
        QCOMPARE(splash->accessibleName(), QStringLiteral("RX Workbench"));
        StartupHost::SetSplashText(QStringLiteral("Waiting for the driver"));
        const QImage after = splash->grab().toImage();
        QVERIFY(before != after);
        const QRect upper(0, 0, before.width(), before.height() / 2);
        QCOMPARE(before.copy(upper), after.copy(upper));  // name and version stand
    }

    void theVersionOfTheApplicationIsShown()
    {
        KestApplication::m_pThis->RaiseSplash();
        QSplashScreen* const splash = VisibleSplashes().first();
        const QImage without = splash->grab().toImage();
        QCoreApplication::setApplicationVersion(QStringLiteral("1.2.3"));
        const QImage with = splash->grab().toImage();
        QCoreApplication::setApplicationVersion(QString());
        QVERIFY(without != with);
    }
};

int main(int argc, char** argv)
{
    int result = 0;
    {
        KestApplication application(argc, argv);
        TestSplash test;
        result = QTest::qExec(&test, argc, argv);
    }
    if (KestApplication::m_pThis)
        qFatal("the application is still known after its end");
    return result;
}
#include "tst_splash.moc"
