#include <QDialog>
#include <QDir>
#include <QImage>
#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include "app/shots.h"

// Pictures of what the application shows.
class ShotsTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void savesEveryWindowOnceItHasSettledAndAtTheEnd();
    void savesADialogThatRunsItsOwnLoop();
    void savesAWindowThatGoesBeforeItSettled();
    void leavesOutWhatMovesIntoAnotherWindow();
    void leavesMenusOut();
    void refusesAFolderThatCannotBeWritten();
};

static QStringList picturesIn(const QTemporaryDir& folder)
{
    return QDir(folder.path()).entryList({"*.png"}, QDir::Files, QDir::Name);
}

void ShotsTest::savesEveryWindowOnceItHasSettledAndAtTheEnd()
{
    QTemporaryDir folder;
    Shots shots;
    QString error;
    QVERIFY(shots.open(folder.path(), &error));
    QLabel window("text");
    window.setWindowTitle("T&K Receiver DDC1");
    window.resize(200, 100);
    window.show();
    QTRY_COMPARE(picturesIn(folder), QStringList{"01-t-k-receiver-ddc1.png"});
    QCOMPARE(QImage(folder.filePath("01-t-k-receiver-ddc1.png")).size(), QSize(200, 100));
    shots.saveAll();
    QCOMPARE(picturesIn(folder), (QStringList{"01-t-k-receiver-ddc1-end.png", "01-t-k-receiver-ddc1.png"}));
}

void ShotsTest::savesADialogThatRunsItsOwnLoop()
{
    QTemporaryDir folder;
    Shots shots;
    QString error;
    QVERIFY(shots.open(folder.path(), &error));
    QMessageBox box(QMessageBox::Question, "Connection", "Wait longer?", QMessageBox::Yes | QMessageBox::No);
    QTimer watch;
    connect(&watch, &QTimer::timeout, &box, [&] {
        if (!picturesIn(folder).isEmpty()) {
            box.accept();
        }
    });
    watch.start(10);
    box.exec();
    QCOMPARE(picturesIn(folder), QStringList{"01-connection.png"});
}

void ShotsTest::savesAWindowThatGoesBeforeItSettled()
{
    QTemporaryDir folder;
    Shots shots;
    QString error;
    QVERIFY(shots.open(folder.path(), &error));
    QLabel window("text");
    window.setObjectName("Short Lived");
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    window.hide();
    QCOMPARE(picturesIn(folder), QStringList{"01-short-lived.png"});
}

void ShotsTest::leavesOutWhatMovesIntoAnotherWindow()
{
    QTemporaryDir folder;
    Shots shots;
    QString error;
    QVERIFY(shots.open(folder.path(), &error));
    QMainWindow window;
    window.setWindowTitle("outer");
    auto* frame = new QFrame;
    frame->setObjectName("inner");
    frame->show();
    window.setCentralWidget(frame);
    window.show();
    QTRY_COMPARE(picturesIn(folder), QStringList{"01-outer.png"});
    window.hide();
    QCOMPARE(picturesIn(folder), QStringList{"01-outer.png"});
}

void ShotsTest::leavesMenusOut()
{
    QTemporaryDir folder;
    Shots shots;
    QString error;
    QVERIFY(shots.open(folder.path(), &error));
    QMenu menu;
    menu.addAction("entry");
    menu.popup(QPoint(0, 0));
    QLabel window("text");
    window.setWindowTitle("other");
    window.show();
    QTRY_COMPARE(picturesIn(folder), QStringList{"01-other.png"});
}

void ShotsTest::refusesAFolderThatCannotBeWritten()
{
    Shots shots;
    QString error;
    QVERIFY(!shots.open("/proc/pictures", &error));
    QVERIFY2(error.contains("/proc/pictures"), qPrintable(error));
}

QTEST_MAIN(ShotsTest)
#include "tst_shots.moc"
