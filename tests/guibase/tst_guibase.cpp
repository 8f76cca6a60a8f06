#include <QTest>
#include <QWidget>
#include <memory>

#include "guibase/guibase.h"
#include "guibase/guibasehost.h"

class TestGuiBase : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        GuiBaseHost::SetMainWidgetListener(nullptr);
        GuiBase::Instance()->SetMainWidget(nullptr);
    }

    void thereIsNoMainWidgetUntilOneIsSet() { QVERIFY(!GuiBaseHost::MainWidget()); }

    void theMainWidgetIsKnownAndNotOwned()
    {
        const std::unique_ptr<QWidget> widget(new QWidget);
        GuiBase::Instance()->SetMainWidget(widget.get());
        QCOMPARE(GuiBaseHost::MainWidget(), widget.get());
        GuiBase::Instance()->SetMainWidget(nullptr);
        QVERIFY(!GuiBaseHost::MainWidget());
    }

    void aMainWidgetThatIsDestroyedIsForgotten()
    {
        std::unique_ptr<QWidget> widget(new QWidget);
        GuiBase::Instance()->SetMainWidget(widget.get());
        widget.reset();
        QVERIFY(!GuiBaseHost::MainWidget());
    }

    void everyChangeIsToldOnce()
    {
        QList<const void*> told;  // compared only: the widgets are gone by then
        GuiBaseHost::SetMainWidgetListener([&](QWidget* widget) { told.append(widget); });
        std::unique_ptr<QWidget> first(new QWidget);
        std::unique_ptr<QWidget> second(new QWidget);
        QWidget* const a = first.get();
        QWidget* const b = second.get();
        GuiBase::Instance()->SetMainWidget(a);
        GuiBase::Instance()->SetMainWidget(a);
        GuiBase::Instance()->SetMainWidget(b);
        first.reset();  // is no main widget any more
        second.reset();
        QCOMPARE(told, QList<const void*>({a, b, nullptr}));
    }

    void aListenerMayTakeTheWidgetBack()
    {
        int calls = 0;
        GuiBaseHost::SetMainWidgetListener([&](QWidget* widget) {
            ++calls;
            if (widget)
                GuiBase::Instance()->SetMainWidget(nullptr);
        });
        QWidget widget;
        GuiBase::Instance()->SetMainWidget(&widget);
        QCOMPARE(calls, 2);
        QVERIFY(!GuiBaseHost::MainWidget());
    }
};

QTEST_MAIN(TestGuiBase)
#include "tst_guibase.moc"
