#include <QBoxLayout>
#include <QLabel>
#include <QTest>

#include "floatlayout.h"
#include "valuetree/panelhelpers.h"

class tst_PanelHelpers : public QObject
{
    Q_OBJECT
private slots:
    void columnOfALayoutWithoutWidgetIs140WideAtMostWhateverComesLater()
    {
        FloatLayout* outer = new FloatLayout(1, nullptr, 10);
        AddColumn(outer, new QVBoxLayout);
        QCOMPARE(outer->count(), 1);
        QWidget* column = outer->itemAt(0)->widget();
        QCOMPARE(column->maximumWidth(), 140);
        QWidget panel;
        panel.setMinimumWidth(400);
        panel.setLayout(outer);
        QCOMPARE(column->maximumWidth(), 140);
        QCOMPARE(column->parentWidget(), &panel);
    }

    void columnIsTenPixelsNarrowerThanThePanelsMinimumOfThatMoment()
    {
        QWidget panel;
        panel.setMinimumSize(400, 30);
        FloatLayout* outer = new FloatLayout(1, &panel, 10);
        AddColumn(outer, new QVBoxLayout);
        panel.setMinimumWidth(200);
        AddColumn(outer, new QVBoxLayout);
        QCOMPARE(outer->itemAt(0)->widget()->maximumWidth(), 390);
        QCOMPARE(outer->itemAt(1)->widget()->maximumWidth(), 190);
    }

    void innerLayoutLosesItsMarginsAndBelongsToTheColumn()
    {
        QWidget panel;
        FloatLayout* outer = new FloatLayout(1, &panel, 10);
        QVBoxLayout* inner = new QVBoxLayout;
        inner->setContentsMargins(1, 2, 3, 4);
        inner->addWidget(new QLabel("text"));
        AddColumn(outer, inner);
        QCOMPARE(inner->contentsMargins(), QMargins(0, 0, 0, 0));
        QCOMPARE(outer->itemAt(0)->widget()->layout(), static_cast<QLayout*>(inner));
    }

    void missingLayoutOnEitherSideAddsNothingAndKeepsMargins()
    {
        QWidget panel;
        FloatLayout* outer = new FloatLayout(1, &panel, 10);
        QVBoxLayout inner;
        inner.setContentsMargins(1, 2, 3, 4);
        AddColumn(nullptr, &inner);
        QCOMPARE(inner.contentsMargins(), QMargins(1, 2, 3, 4));
        AddColumn(outer, nullptr);
        QCOMPARE(outer->count(), 0);
        AddColumn(nullptr, nullptr);
    }
};

QTEST_MAIN(tst_PanelHelpers)
#include "tst_panelhelpers.moc"
