#include <QLabel>
#include <QLayout>
#include <QMainWindow>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>
#include <memory>

#include "app/statusbanner.h"

// The strip that tells the operator what is wrong, over the main widget.
class StatusBannerTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();

    void staysAwayWhileAllIsWell();
    void tellsWhereTheDriverIsLookedForAndHowOften();
    void goesWhenTheDriverIsBack();
    void movesNothingInTheWindow();
    void keepsTheWidthOfItsWindow();
    void showsErrorsUntilTheyAreDismissed();
    void keepsTheLatestErrorsOnly();
    void tellsAnErrorOnceHoweverOftenItComes();
    void liesOverTheNextMainWidgetWhenTheFirstIsGone();

private:
    QLabel* line(const char* name) const { return m_banner->findChild<QLabel*>(name); }

    std::unique_ptr<QMainWindow> m_window;
    QLabel* m_content = nullptr;
    QPointer<StatusBanner> m_banner;
};

void StatusBannerTest::init()
{
    m_window = std::make_unique<QMainWindow>();
    m_content = new QLabel("content");
    m_window->setCentralWidget(m_content);
    m_window->resize(460, 300);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    m_banner = new StatusBanner;
    m_banner->setMainWidget(m_window.get());
}

void StatusBannerTest::cleanup()
{
    delete m_banner;
    m_window.reset();
}

void StatusBannerTest::staysAwayWhileAllIsWell()
{
    QVERIFY(!m_banner->isVisible());
}

void StatusBannerTest::tellsWhereTheDriverIsLookedForAndHowOften()
{
    m_banner->driverLost("127.0.0.1:4711");
    QVERIFY(m_banner->isVisible());
    QVERIFY(line("DriverLine")->text().contains("127.0.0.1:4711"));
    m_banner->setAttempt(17);
    QVERIFY(line("DriverLine")->text().contains("17"));
    const QString first = line("DriverLine")->text();
    QTRY_VERIFY(line("DriverLine")->text() != first);  // the time since then runs
}

void StatusBannerTest::goesWhenTheDriverIsBack()
{
    m_banner->driverLost("127.0.0.1:4711");
    m_banner->driverBack();
    QVERIFY(!m_banner->isVisible());
    // Together with what the loss brought about, but not with what was there before.
    m_banner->showError("before");
    m_banner->driverLost("127.0.0.1:4711");
    m_banner->showError("No connection");
    m_banner->driverBack();
    QCOMPARE(line("ErrorLine")->text(), QString("before"));
}

void StatusBannerTest::movesNothingInTheWindow()
{
    const QRect place = m_content->geometry();
    const QSize least = m_window->minimumSizeHint();
    m_banner->driverLost("127.0.0.1:4711");
    m_banner->showError("Something went wrong");
    QCoreApplication::processEvents();
    QCOMPARE(m_content->geometry(), place);
    QCOMPARE(m_window->minimumSizeHint(), least);
}

void StatusBannerTest::keepsTheWidthOfItsWindow()
{
    m_banner->driverLost("127.0.0.1:4711");
    QTRY_COMPARE(m_banner->width(), m_window->width());
    m_window->resize(800, 300);
    QTRY_COMPARE(m_banner->width(), 800);
    QCOMPARE(m_banner->geometry().bottomLeft(), m_window->rect().bottomLeft());
    // A narrow window gets more lines, not cut ones.
    m_window->setMinimumSize(200, 200);
    m_window->resize(220, 300);
    QTRY_COMPARE(m_banner->width(), 220);
    QVERIFY(m_banner->height() >= m_banner->layout()->heightForWidth(220));
}

void StatusBannerTest::showsErrorsUntilTheyAreDismissed()
{
    m_banner->showError("Something went wrong");
    QVERIFY(m_banner->isVisible());
    QVERIFY(line("ErrorLine")->text().contains("Something went wrong"));
    QTest::mouseClick(m_banner->findChild<QToolButton*>("DismissErrors"), Qt::LeftButton);
    QVERIFY(!m_banner->isVisible());
}

void StatusBannerTest::keepsTheLatestErrorsOnly()
{
    for (int i = 0; i < 20; ++i) {
        m_banner->showError(QString("error %1").arg(i));
    }
    const QString text = line("ErrorLine")->text();
    QVERIFY(text.contains("error 19") && !text.contains("error 9"));
    QVERIFY(text.count('\n') < 4);
}

void StatusBannerTest::tellsAnErrorOnceHoweverOftenItComes()
{
    m_banner->showError("same");
    m_banner->showError("same");
    QCOMPARE(line("ErrorLine")->text(), QString("same"));
}

void StatusBannerTest::liesOverTheNextMainWidgetWhenTheFirstIsGone()
{
    m_banner->driverLost("127.0.0.1:4711");
    QWidget second;
    second.resize(500, 200);
    second.show();
    m_banner->setMainWidget(&second);
    m_window.reset();
    QVERIFY(!m_banner.isNull());
    QVERIFY(m_banner->isVisible());
    m_banner->setMainWidget(nullptr);
    QVERIFY(!m_banner->isVisible());
}

QTEST_MAIN(StatusBannerTest)
#include "tst_statusbanner.moc"
