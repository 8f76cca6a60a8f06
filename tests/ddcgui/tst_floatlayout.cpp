#include <QTest>
#include <QWidget>

#include "floatlayout.h"

namespace {

// An item of a fixed hint that remembers where it was put.
class FixedItem : public QLayoutItem
{
public:
    explicit FixedItem(const QSize& hint, int* alive = nullptr) : m_Hint(hint), m_Alive(alive)
    {
        if (m_Alive)
            ++*m_Alive;
    }
    ~FixedItem() override
    {
        if (m_Alive)
            --*m_Alive;
    }
    QSize sizeHint() const override { return m_Hint; }
    QSize minimumSize() const override { return QSize(1, 1); }
    QSize maximumSize() const override { return QSize(1000, 1000); }
    Qt::Orientations expandingDirections() const override { return {}; }
    void setGeometry(const QRect& rect) override
    {
        m_Rect = rect;
        ++moves;
    }
    QRect geometry() const override { return m_Rect; }
    bool isEmpty() const override { return false; }

    int moves = 0;

private:
    QSize m_Hint;
    QRect m_Rect;
    int* m_Alive;
};

}  // namespace

class tst_FloatLayout : public QObject
{
    Q_OBJECT
private slots:
    void emptyLayoutIsAsHighAsItsSpacingAndHintsNothing()
    {
        FloatLayout layout(1, nullptr, 10);
        layout.setSpacing(7);
        QCOMPARE(layout.heightForWidth(100), 7);
        QCOMPARE(layout.sizeHint(), QSize(0, 0));
        QCOMPARE(layout.minimumSize(), QSize(0, 0));
        QCOMPARE(layout.count(), 0);
    }

    void firstItemStaysInTheFirstRowAlsoWhereItDoesNotFit()
    {
        FloatLayout layout(1, nullptr, 10);
        layout.setSpacing(4);
        FixedItem* item = new FixedItem(QSize(100, 20));
        layout.addItem(item);
        layout.setGeometry(QRect(0, 0, 50, 200));
        QCOMPARE(item->geometry(), QRect(10, 5, 100, 20));
        QCOMPARE(layout.heightForWidth(50), 4 + 30);
    }

    void itemsOfARowAreCentredInItsHeightWithTheGap()
    {
        FloatLayout layout(1, nullptr, 10);
        layout.setSpacing(6);
        FixedItem* low = new FixedItem(QSize(30, 20));
        FixedItem* high = new FixedItem(QSize(40, 30));
        layout.addItem(low);
        layout.addItem(high);
        layout.setGeometry(QRect(0, 0, 200, 100));
        QCOMPARE(low->geometry(), QRect(10, 10, 30, 20));
        QCOMPARE(high->geometry(), QRect(10 + 30 + 6, 5, 40, 30));
        QCOMPARE(layout.heightForWidth(200), 6 + 40);
    }

    void halvesAreRoundedDown()
    {
        FloatLayout layout(1, nullptr, 10);
        layout.setSpacing(0);
        FixedItem* low = new FixedItem(QSize(10, 19));
        layout.addItem(low);
        layout.addItem(new FixedItem(QSize(10, 30)));
        layout.setGeometry(QRect(0, 0, 200, 100));
        QCOMPARE(low->geometry().top(), 10);  // (40 - 19) / 2 = 10.5
    }

    void itemsWrapWhenTheWidthRunsOutAndTheRightEdgeHasNoGap()
    {
        FloatLayout layout(1, nullptr, 10);
        layout.setSpacing(5);
        FixedItem* first = new FixedItem(QSize(50, 20));
        FixedItem* second = new FixedItem(QSize(35, 20));
        FixedItem* third = new FixedItem(QSize(50, 10));
        layout.addItem(first);
        layout.addItem(second);
        layout.addItem(third);
        layout.setGeometry(QRect(3, 4, 100, 200));  // 10 + 50 + 5 + 35 fills it exactly
        QCOMPARE(first->geometry(), QRect(3 + 10, 4 + 5, 50, 20));
        QCOMPARE(second->geometry(), QRect(3 + 65, 4 + 5, 35, 20));
        QCOMPARE(third->geometry(), QRect(3 + 10, 4 + 30 + 5, 50, 10));
        QCOMPARE(layout.heightForWidth(100), 5 + 30 + 20);
        QCOMPARE(layout.heightForWidth(99), 5 + 30 + 30 + 20);  // one pixel less: three rows
    }

    void heightForWidthMovesNothing()
    {
        FloatLayout layout(1, nullptr, 10);
        FixedItem* item = new FixedItem(QSize(50, 20));
        layout.addItem(item);
        layout.heightForWidth(30);
        layout.heightForWidth(300);
        QCOMPARE(item->moves, 0);
        QVERIFY(layout.hasHeightForWidth());
    }

    void hintAddsUpAlongTheOrientation_data()
    {
        QTest::addColumn<int>("orientation");
        QTest::addColumn<QSize>("hint");
        QTest::newRow("horizontal") << 1 << QSize(70, 30);
        QTest::newRow("vertical") << 0 << QSize(40, 50);
        QTest::newRow("anything else") << 2 << QSize(40, 50);
    }
    void hintAddsUpAlongTheOrientation()
    {
        QFETCH(int, orientation);
        QFETCH(QSize, hint);
        FloatLayout layout(orientation, nullptr, 10);
        layout.addItem(new FixedItem(QSize(30, 20)));
        layout.addItem(new FixedItem(QSize(40, 30)));
        QCOMPARE(layout.sizeHint(), hint);
        QCOMPARE(layout.minimumSize(), QSize(40, 30));  // of the hints, not of the items' minimum
        QCOMPARE(layout.expandingDirections(), Qt::Orientations(Qt::Horizontal));
    }

    void itemsOutOfRangeAreNull()
    {
        FloatLayout layout(1, nullptr, 10);
        FixedItem* item = new FixedItem(QSize(1, 1));
        layout.addItem(item);
        QVERIFY(!layout.itemAt(-1));
        QVERIFY(!layout.itemAt(layout.count()));
        QVERIFY(!layout.takeAt(layout.count()));
        QVERIFY(!layout.takeAt(-1));
        QCOMPARE(layout.count(), 1);
        QCOMPARE(layout.itemAt(0), static_cast<QLayoutItem*>(item));
        QCOMPARE(layout.takeAt(0), static_cast<QLayoutItem*>(item));
        QCOMPARE(layout.count(), 0);
        delete item;
    }

    void marginsAreNotConsulted()
    {
        FloatLayout layout(1, nullptr, 10);
        layout.setSpacing(0);
        layout.setContentsMargins(50, 60, 70, 80);
        FixedItem* item = new FixedItem(QSize(20, 20));
        layout.addItem(item);
        layout.setGeometry(QRect(0, 0, 100, 100));
        QCOMPARE(item->geometry(), QRect(10, 5, 20, 20));
    }

    void destructionDeletesTheItemsAndKeepsTheWidgets()
    {
        int alive = 0;
        QWidget panel;
        QWidget* child = new QWidget;
        {
            FloatLayout* layout = new FloatLayout(1, &panel, 10);
            layout->addItem(new FixedItem(QSize(1, 1), &alive));
            layout->addItem(new FixedItem(QSize(1, 1), &alive));
            layout->addWidget(child);
            QCOMPARE(alive, 2);
            delete layout;
        }
        QCOMPARE(alive, 0);
        QCOMPARE(child->parentWidget(), &panel);
    }
};

QTEST_MAIN(tst_FloatLayout)
#include "tst_floatlayout.moc"
