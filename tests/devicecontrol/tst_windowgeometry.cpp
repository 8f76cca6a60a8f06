#include <QApplication>
#include <QDir>
#include <QFile>
#include <QScreen>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QVBoxLayout>
#include <QWidget>
#include <memory>

#include "devicecontrol/devicecontrolhost.h"
#include "devicecontrol/guicentral.h"
#include "guibase/guibase.h"

namespace {

const QSize ownSize(300, 200);
const QPoint ownPlace(11, 13);

}  // namespace

// Size and place of the main widget, from one run to the next.
class TestWindowGeometry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_Folder = std::make_unique<QTemporaryDir>();
        m_File = m_Folder->filePath(QStringLiteral("state/geometry.ini"));
        DeviceControlHost::SetGeometryFile(m_File);
    }

    void cleanup()
    {
        m_Widget.reset();
        GuiCentral::Instance()->SetApplication(nullptr);
        GuiBase::Instance()->SetMainWidget(nullptr);
        DeviceControlHost::SetGeometryFile(QString());
    }

    void theGeometryOfOneRunIsThatOfTheNext()
    {
        Start();
        m_Widget->show();
        m_Widget->resize(412, 345);
        m_Widget->move(60, 70);
        End();
        Start();
        QCOMPARE(m_Widget->size(), ownSize);  // not before it is shown
        m_Widget->show();
        QCOMPARE(m_Widget->size(), QSize(412, 345));
        QCOMPARE(m_Widget->pos(), QPoint(60, 70));
    }

    void theGeometryIsRestoredAtTheFirstShowingOnly()
    {
        StoreOnce(QSize(412, 345));
        Start();
        m_Widget->show();
        m_Widget->resize(333, 222);
        m_Widget->hide();
        m_Widget->show();
        QCOMPARE(m_Widget->size(), QSize(333, 222));
    }

    void theGeometryIsStoredAfterTheWidgetIsGone()
    {
        Start();
        m_Widget->show();
        m_Widget->resize(412, 345);
        m_Widget.reset();
        GuiCentral::Instance()->StoreWidgetSize();
        Start();
        m_Widget->show();
        QCOMPARE(m_Widget->size(), QSize(412, 345));
    }

    void aMaximisedWindowKeepsItsNormalSizeToo()
    {
        Start();
        m_Widget->show();
        m_Widget->resize(412, 345);
        m_Widget->showMaximized();
        QTRY_VERIFY_WITH_TIMEOUT(m_Widget->isMaximized(), 60000);
        End();
        Start();
        m_Widget->show();
        QVERIFY(m_Widget->isMaximized());
        m_Widget->showNormal();
        QTRY_COMPARE_WITH_TIMEOUT(m_Widget->size(), QSize(412, 345), 60000);
    }

    void theMainWidgetMayBeSetAfterTheApplication()
    {
        StoreOnce(QSize(412, 345));
        m_Widget = Make();
        GuiCentral::Instance()->SetApplication(qApp);
        GuiBase::Instance()->SetMainWidget(m_Widget.get());
        m_Widget->show();
        QCOMPARE(m_Widget->size(), QSize(412, 345));
    }

    void aWindowOpensLargeEnoughForWhatItHolds_data()
    {
        QTest::addColumn<int>("contents");
        const int screen = QGuiApplication::primaryScreen()->availableSize().height();
        QTest::newRow("less than it has") << 100;
        QTest::newRow("more than the toolkit gives of the screen") << screen * 4 / 5;
        QTest::newRow("more than the screen") << screen * 2;
    }
    void aWindowOpensLargeEnoughForWhatItHolds()
    {
        QFETCH(int, contents);
        const int screen = QGuiApplication::primaryScreen()->availableSize().height();
        Start();
        auto* const column = new QVBoxLayout(m_Widget.get());
        auto* const held = new QWidget;
        held->setMinimumSize(50, contents);
        column->setContentsMargins(0, 0, 0, 0);
        column->addWidget(held);
        m_Widget->setMinimumSize(40, 30);  // which the contents do not raise any more
        m_Widget->show();
        QCOMPARE(m_Widget->height(), qMin(screen, qMax(contents, ownSize.height())));
        QCOMPARE(m_Widget->width(), ownSize.width());
    }

    void otherWindowsAreLeftAlone()
    {
        StoreOnce(QSize(412, 345));
        Start();
        QWidget other;
        other.setObjectName(m_Widget->objectName());
        other.resize(100, 100);
        other.show();
        QCOMPARE(other.size(), QSize(100, 100));
    }

    void unusableGeometryIsIgnored_data()
    {
        QTest::addColumn<QRect>("normal");
        QTest::newRow("smaller than the minimum") << QRect(10, 10, 50, 20);
        QTest::newRow("left of all screens") << QRect(-5000, 10, 400, 300);
        QTest::newRow("below all screens") << QRect(10, 50000, 400, 300);
        QTest::newRow("title above the screen") << QRect(10, -40, 400, 300);
        QTest::newRow("a corner only") << QRect(-390, 10, 400, 300);
        QTest::newRow("larger than windows can be") << QRect(0, 0, 2000000000, 2000000000);
        QTest::newRow("empty") << QRect(10, 10, 0, 0);
        QTest::newRow("negative") << QRect(QPoint(100, 100), QPoint(10, 10));
    }

    void unusableGeometryIsIgnored()
    {
        QFETCH(QRect, normal);
        WriteGeometry(normal);
        Start();
        m_Widget->show();
        QCOMPARE(m_Widget->size(), ownSize);
        QCOMPARE(m_Widget->pos(), ownPlace);
    }

    void usableGeometryIsTaken()
    {
        WriteGeometry(QRect(20, 30, 400, 300));
        Start();
        m_Widget->show();
        QCOMPARE(QRect(m_Widget->pos(), m_Widget->size()), QRect(20, 30, 400, 300));
    }

    void aDamagedFileIsHarmlessAndReplaced_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("noise") << QByteArray("\x00\xff\xfe[[[=\x01garbage", 14);
        QTest::newRow("no section's end") << QByteArray("[Window/Main\nNormal=@Rect(1 2 3 4)");
        QTest::newRow("another type") << QByteArray("[Window]\nMain\\Normal=blue\nMain\\Maximised=blue\n");
        QTest::newRow("a cut value") << QByteArray("[Window]\nMain\\Normal=@Rect(1 2\n");
        QTest::newRow("a variant that is none")
            << QByteArray("[Window]\nMain\\Normal=@Variant(\\0\\0\\x7f)\n");
        QTest::newRow("empty") << QByteArray();
    }

    void aDamagedFileIsHarmlessAndReplaced()
    {
        QFETCH(QByteArray, content);
        QVERIFY(QDir().mkpath(QFileInfo(m_File).absolutePath()));
        QFile file(m_File);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        Start();
        m_Widget->show();
        QCOMPARE(m_Widget->size(), ownSize);
        m_Widget->resize(412, 345);
        End();
        Start();
        m_Widget->show();
        QCOMPARE(m_Widget->size(), QSize(412, 345));
    }

    void withoutAFileNothingIsKept()
    {
        DeviceControlHost::SetGeometryFile(QString());
        Start();
        m_Widget->show();
        End();
        QVERIFY(!QFile::exists(m_File));
    }

    void aWindowThatWasNeverShownDoesNotReplaceWhatIsKept()
    {
        StoreOnce(QSize(412, 345));
        QFile file(m_File);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray before = file.readAll();
        file.close();
        Start();
        End();
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), before);
    }

    void aFolderThatCannotBeWrittenIsToldAndHarmless()
    {
        const QString file = QStringLiteral("/proc/none/geometry.ini");
        DeviceControlHost::SetGeometryFile(file);
        Start();
        m_Widget->show();
        const QByteArray text =
            file.toUtf8() +
            " cannot be written; the window's size is not kept. Check the permissions of its "
            "folder";
        QTest::ignoreMessage(QtWarningMsg, text.constData());
        End();
    }

private:
    static std::unique_ptr<QWidget> Make()
    {
        std::unique_ptr<QWidget> widget(new QWidget);
        widget->setObjectName(QStringLiteral("Main"));
        widget->setMinimumSize(120, 80);
        widget->resize(ownSize);
        widget->move(ownPlace);
        return widget;
    }

    void Start()
    {
        m_Widget = Make();
        GuiBase::Instance()->SetMainWidget(m_Widget.get());
        GuiCentral::Instance()->SetApplication(qApp);
    }

    void End()
    {
        GuiCentral::Instance()->StoreWidgetSize();
        m_Widget.reset();
    }

    void StoreOnce(const QSize& size)
    {
        Start();
        m_Widget->show();
        m_Widget->resize(size);
        End();
    }

    void WriteGeometry(const QRect& normal)
    {
        QVERIFY(QDir().mkpath(QFileInfo(m_File).absolutePath()));
        QSettings settings(m_File, QSettings::IniFormat);
        settings.setValue(QStringLiteral("Window/Main/Normal"), normal);
        settings.sync();
        QCOMPARE(settings.status(), QSettings::NoError);
    }

    std::unique_ptr<QTemporaryDir> m_Folder;
    QString m_File;
    std::unique_ptr<QWidget> m_Widget;
};

QTEST_MAIN(TestWindowGeometry)
#include "tst_windowgeometry.moc"
