#include <QTest>
#include <memory>

#include "guibase/splitter.h"

class TestSplitter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theHandleCanBeSeen_data() { AddOrientations(); }

    void theHandleCanBeSeen()
    {
        QFETCH(Qt::Orientation, orientation);
        const std::unique_ptr<Splitter> splitter = Make(orientation);
        QWidget* const handle = splitter->handle(1);
        const int thickness = orientation == Qt::Horizontal ? handle->width() : handle->height();
        QVERIFY2(thickness >= 8, qPrintable(QString::number(thickness)));
        const QImage picture = handle->grab().toImage();
        const int background = qGray(picture.pixel(1, 1));
        int found = 0;
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                if (qAbs(qGray(picture.pixel(x, y)) - background) > 40)
                    ++found;
        QVERIFY2(found >= 5, qPrintable(QString::number(found)));
    }

    void theHandleTakesTheFocusAndShowsIt()
    {
        const std::unique_ptr<Splitter> splitter = Make(Qt::Horizontal);
        QWidget* const handle = splitter->handle(1);
        QVERIFY(handle->focusPolicy() & Qt::TabFocus);
        QTRY_VERIFY_WITH_TIMEOUT(splitter->isActiveWindow(), 60000);
        handle->clearFocus();
        const QImage without = handle->grab().toImage();
        handle->setFocus();
        QTRY_VERIFY_WITH_TIMEOUT(handle->hasFocus(), 60000);
        QVERIFY(without != handle->grab().toImage());
    }

    void theHandleHasANameForScreenReaders_data() { AddOrientations(); }

    void theHandleHasANameForScreenReaders()
    {
        QFETCH(Qt::Orientation, orientation);
        const std::unique_ptr<Splitter> splitter = Make(orientation);
        QCOMPARE(splitter->handle(1)->accessibleName(),
                 orientation == Qt::Horizontal ? QStringLiteral("Divider between left and right")
                                               : QStringLiteral("Divider between top and bottom"));
        QVERIFY(!splitter->handle(1)->accessibleDescription().isEmpty());
    }

    void arrowKeysMoveTheHandle_data()
    {
        QTest::addColumn<Qt::Orientation>("orientation");
        QTest::addColumn<Qt::LayoutDirection>("direction");
        QTest::addColumn<Qt::Key>("back");
        QTest::addColumn<Qt::Key>("forth");
        QTest::newRow("beside") << Qt::Horizontal << Qt::LeftToRight << Qt::Key_Left << Qt::Key_Right;
        QTest::newRow("beside, from the right")
            << Qt::Horizontal << Qt::RightToLeft << Qt::Key_Left << Qt::Key_Right;
        QTest::newRow("above each other") << Qt::Vertical << Qt::LeftToRight << Qt::Key_Up << Qt::Key_Down;
    }

    void arrowKeysMoveTheHandle()
    {
        QFETCH(Qt::Orientation, orientation);
        QFETCH(Qt::LayoutDirection, direction);
        QFETCH(Qt::Key, back);
        QFETCH(Qt::Key, forth);
        const std::unique_ptr<Splitter> splitter = Make(orientation, direction);
        QWidget* const handle = splitter->handle(1);
        const auto place = [&] { return orientation == Qt::Horizontal ? handle->x() : handle->y(); };
        const int start = place();
        QTest::keyClick(handle, forth);
        QCOMPARE(place(), start + 16);
        QTest::keyClick(handle, back);
        QTest::keyClick(handle, back);
        QCOMPARE(place(), start - 16);
        QTest::keyClick(handle, forth, Qt::ShiftModifier);
        QCOMPARE(place(), start - 15);
        QTest::keyClick(handle, back, Qt::ControlModifier);
        QCOMPARE(place(), start - 16);
    }

    void keysOfTheOtherDirectionDoNothing()
    {
        const std::unique_ptr<Splitter> splitter = Make(Qt::Horizontal);
        const QList<int> sizes = splitter->sizes();
        QTest::keyClick(splitter->handle(1), Qt::Key_Up);
        QTest::keyClick(splitter->handle(1), Qt::Key_Down);
        QTest::keyClick(splitter->handle(1), Qt::Key_A);
        QCOMPARE(splitter->sizes(), sizes);
    }

    void theHandleStopsAtTheEnds()
    {
        const std::unique_ptr<Splitter> splitter = Make(Qt::Horizontal);
        splitter->setChildrenCollapsible(false);
        for (int i = 0; i < 100; ++i)
            QTest::keyClick(splitter->handle(1), Qt::Key_Left);
        QCOMPARE(splitter->sizes().first(), splitter->widget(0)->minimumWidth());
        for (int i = 0; i < 100; ++i)
            QTest::keyClick(splitter->handle(1), Qt::Key_Right);
        QCOMPARE(splitter->sizes().last(), splitter->widget(1)->minimumWidth());
    }

private:
    static void AddOrientations()
    {
        QTest::addColumn<Qt::Orientation>("orientation");
        QTest::newRow("beside each other") << Qt::Horizontal;
        QTest::newRow("above each other") << Qt::Vertical;
    }

    static std::unique_ptr<Splitter> Make(Qt::Orientation orientation,
                                          Qt::LayoutDirection direction = Qt::LeftToRight)
    {
        std::unique_ptr<Splitter> splitter(new Splitter(orientation));
        splitter->setLayoutDirection(direction);
        for (int i = 0; i < 2; ++i) {
            QWidget* const part = new QWidget;
            part->setMinimumSize(40, 40);
            splitter->addWidget(part);
        }
        splitter->resize(400, 400);
        splitter->show();
        if (!QTest::qWaitForWindowExposed(splitter.get(), 60000))
            qWarning("the window was not shown");
        splitter->activateWindow();
        return splitter;
    }
};

QTEST_MAIN(TestSplitter)
#include "tst_splitter.moc"
