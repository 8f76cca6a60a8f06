#include <QBoxLayout>
#include <QFrame>
#include <QHostInfo>
#include <QLabel>
#include <QRadioButton>

#include "ddcguiffm.h"
#include "ddcguimain.h"
#include "ddcifspectrum.h"
#include "ddcselectiondlg.h"
#include "tests/ddcgui/modulefixture.h"

namespace {

void ChooseInDialog(QWidget* dialog, const QString& name, const char* buttonText)
{
    for (QRadioButton* button : dialog->findChildren<QRadioButton*>())
        if (button->text() == name)
            button->click();
    for (QPushButton* button : dialog->findChildren<QPushButton*>())
        if (button->text() == buttonText)
            button->click();
}

// Runs the application's loop over `act`; 0 when the application was ended by it, 77 when not.
int RunApplication(std::function<void()> act)
{
    QTimer late;
    late.setSingleShot(true);
    QObject::connect(&late, &QTimer::timeout, [] { QCoreApplication::exit(77); });
    QTimer start;
    start.setSingleShot(true);
    QObject::connect(&start, &QTimer::timeout, [&] {
        act();
        late.start(0);
    });
    start.start(0);
    return QCoreApplication::exec();
}

// Notes who is hidden and shown, in order.
class VisibilityNotes : public QObject
{
public:
    QStringList told;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Hide || event->type() == QEvent::Show)
            told.append(QString(watched->metaObject()->className()) +
                        (event->type() == QEvent::Hide ? " hidden" : " shown"));
        return false;
    }
};

}  // namespace

class tst_DdcGuiMain : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        BaseHost::SetTraceMask(0x20);
        m_Tree.reset(new TestTree);
        m_Tree->AddDevice();
        for (const char* name : {"DDC1", "DDC2"})
            m_Tree->AddChannel(QString("/RX1/DDC/") + name);
        m_Window.reset(new DdcGuiMain("DDCGUI"));
    }
    void cleanup()
    {
        m_Window.reset();
        m_Tree.reset();
    }

    void windowStartsHiddenWithItsNameAndSizes()
    {
        QVERIFY(m_Window->isHidden());
        QVERIFY(!m_Window->parentWidget());
        QCOMPARE(m_Window->objectName(), QString("DDC"));
        QCOMPARE(m_Window->sizePolicy(), QSizePolicy());
        QCOMPARE(m_Window->minimumSize(), QSize(460, 500));
        m_Window->ReconnectFfmClient();  // without a panel: nothing
    }

    void freeConfiguredChannelIsTakenWithoutADialog()
    {
        TraceNotes notes;
        ModalAnswers dialogs([](QWidget* window) { window->close(); });
        m_Window->Start("/RX1", "caption", "DDC2");
        QCOMPARE(dialogs.count, 0);
        QVERIFY(m_Window->isVisible());
        QVERIFY(Panel());
        QCOMPARE(Panel()->objectName(), QString("DDC2"));
        QCOMPARE(TestTree::Text("/RX1/DDC/DDC2/ConnectedClient").GetValue(), QHostInfo::localHostName());
        QCOMPARE(notes.traces
                     .filter("Currently running DDC: DDC2 "
                             "[devicecontrol\\receiver\\common\\ddcgui\\ddcguimain:212]")
                     .size(),
                 1);
    }

    void titleIsComposedOfTheReceiversCaptionOrTheConfiguredOne_data()
    {
        QTest::addColumn<QString>("receiver");
        QTest::addColumn<QString>("configured");
        QTest::addColumn<QString>("title");
        QTest::newRow("of the receiver") << "Receiver 1"
                                         << "caption"
                                         << "T&K Receiver 1 DDC1";
        QTest::newRow("initials are there") << "The T&K box"
                                            << "caption"
                                            << "The T&K box DDC1";
        QTest::newRow("case matters") << "t&k box"
                                      << "caption"
                                      << "T&K t&k box DDC1";
        QTest::newRow("configured") << ""
                                    << "caption"
                                    << "T&K caption DDCs DDC1";
        QTest::newRow("configured with initials") << ""
                                                  << "T&K box"
                                                  << "T&K box DDCs DDC1";
        QTest::newRow("neither") << ""
                                 << ""
                                 << "T&K  DDCs DDC1";
    }
    void titleIsComposedOfTheReceiversCaptionOrTheConfiguredOne()
    {
        QFETCH(QString, receiver);
        QFETCH(QString, configured);
        QFETCH(QString, title);
        TestTree::Text("/RX1/DEVICE_CAPTION").SetValue(receiver, nullptr);
        m_Window->Start("/RX1", configured, "DDC1");
        QCOMPARE(m_Window->windowTitle(), title);
    }

    void newCaptionOfTheReceiverGivesANewTitle()
    {
        m_Window->Start("/RX1", "caption", "DDC1");
        TestTree::Text("/RX1/DEVICE_CAPTION").SetValue("Other", nullptr);
        QCOMPARE(m_Window->windowTitle(), QString("T&K Other DDC1"));
    }

    void rangeIsShownInMegahertzWithOneDecimal_data()
    {
        QTest::addColumn<double>("frequency");
        QTest::addColumn<double>("span");
        QTest::addColumn<QString>("range");
        QTest::newRow("1 MHz") << 100000000.0 << 1000000.0 << "99.5 MHz - 100.5 MHz";
        QTest::newRow("25 kHz") << 100000000.0 << 25000.0 << "100.0 MHz - 100.0 MHz";
        // Half of 100001 Hz is 50000 Hz, which puts the upper bound just below the next tenth.
        QTest::newRow("half is truncated") << 99999999.6 << 100001.0 << "99.9 MHz - 100.0 MHz";
        QTest::newRow("below zero") << 0.0 << 1000000.0 << "-0.5 MHz - 0.5 MHz";
        QTest::newRow("huge") << 40000000000.0 << 200000000.0 << "39900.0 MHz - 40100.0 MHz";
    }
    void rangeIsShownInMegahertzWithOneDecimal()
    {
        QFETCH(double, frequency);
        QFETCH(double, span);
        QFETCH(QString, range);
        TestTree::Float("/RX1/FREQUENCY").SetValue(frequency, nullptr);
        TestTree::AddSelection("/RX1/IFPANSPAN", {{1, "span", span}}, 1);
        m_Window->Start("/RX1", "", "DDC1");
        QCOMPARE(RangeText(), range);
    }

    void rangeFollowsFrequencyAndSpan()
    {
        m_Window->Start("/RX1", "", "DDC1");
        QCOMPARE(RangeText(), QString("99.5 MHz - 100.5 MHz"));
        TestTree::Float("/RX1/FREQUENCY").SetValue(200000000, nullptr);
        QCOMPARE(RangeText(), QString("199.5 MHz - 200.5 MHz"));
        TestTree::Selection("/RX1/IFPANSPAN").SelectKey(5000000, nullptr);
        QCOMPARE(RangeText(), QString("197.5 MHz - 202.5 MHz"));
    }

    void headerRowHasItsItemsInOrder()
    {
        m_Window->Start("/RX1", "", "DDC1");
        QFrame* frame = qobject_cast<QFrame*>(m_Window->centralWidget());
        QVERIFY(frame);
        QCOMPARE(frame->objectName(), QString("DDCFrame"));
        QVERIFY(qobject_cast<QVBoxLayout*>(frame->layout()));
        QLayout* row = frame->layout()->itemAt(0)->layout();
        const struct
        {
            const char* className;
            const char* objectName;
            const char* toolTip;
            int minimumWidth;
            int maximumWidth;
        } items[] = {
            {"QLabel", "", "Frequency Range", 0, 35},
            {"VCLabel", "Valid Range", "Valid Frequency Range", 30, QWIDGETSIZE_MAX},
            {"QLabel", "", "", 180, 180},
            {"QLabel", "", "", 0, 30},
            {"VCLabel", "Current Mode", "Current Mode", 30, QWIDGETSIZE_MAX},
        };
        QCOMPARE(row->count(), 6);
        for (int i = 0; i < 5; ++i) {
            QWidget* label = row->itemAt(i)->widget();
            QCOMPARE(QString(label->metaObject()->className()), QString(items[i].className));
            QCOMPARE(label->objectName(), QString(items[i].objectName));
            QCOMPARE(label->toolTip(), QString(items[i].toolTip));
            QCOMPARE(label->minimumWidth(), items[i].minimumWidth);
            QCOMPARE(label->maximumWidth(), items[i].maximumWidth);
        }
        QCOMPARE(qobject_cast<QLabel*>(row->itemAt(0)->widget())->text(), QString("Range:"));
        QCOMPARE(qobject_cast<QLabel*>(row->itemAt(2)->widget())->text(), QString());
        QCOMPARE(qobject_cast<QLabel*>(row->itemAt(3)->widget())->text(), QString("Mode:"));
        QVERIFY(row->itemAt(5)->spacerItem());
    }

    void frameHoldsTheHeaderThePanelAndTheSpectrumInThisOrder()
    {
        m_Window->Start("/RX1", "", "DDC1");
        QVERIFY(Pane());
        QVBoxLayout* layout = qobject_cast<QVBoxLayout*>(m_Window->centralWidget()->layout());
        QVERIFY(layout);
        QCOMPARE(layout->count(), 3);
        QVERIFY(layout->itemAt(0)->layout());
        QCOMPARE(layout->itemAt(1)->widget(), static_cast<QWidget*>(Panel()));
        QCOMPARE(layout->itemAt(2)->widget(), static_cast<QWidget*>(Pane()));
        for (int i = 1; i < layout->count(); ++i) {
            QCOMPARE(layout->stretch(i), 0);
            QCOMPARE(layout->itemAt(i)->alignment(), Qt::Alignment());
        }
        QCOMPARE(Pane()->parentWidget(), m_Window->centralWidget());
    }

    void headerRowIsNoHigherThanItsText()
    {
        m_Window->Start("/RX1", "", "DDC1");
        QVERIFY(QTest::qWaitForWindowExposed(m_Window.data()));
        const QLabel* range = m_Window->findChild<QLabel*>("Valid Range");
        QTRY_VERIFY(range->height() > 0 && range->height() <= range->sizeHint().height());
    }

    void modeLabelFollowsTheDriversMode()
    {
        m_Window->Start("/RX1", "", "DDC1");
        QLabel* mode = m_Window->findChild<QLabel*>("Current Mode");
        QCOMPARE(mode->text(), QString("FFM"));
        TestTree::Selection("/RX1/DRVCOMMANDS").SelectText("Replay", nullptr);
        QTRY_COMPARE(mode->text(), QString("Replay"));
    }

    void panelAndSpectrumAreHiddenInThisOrderWhileTheReceiverFindsDirections()
    {
        m_Window->Start("/RX1", "", "DDC1");
        QVERIFY(Panel()->isVisible());
        QVERIFY(Pane()->isVisible());
        VisibilityNotes notes;
        Panel()->installEventFilter(&notes);
        Pane()->installEventFilter(&notes);
        TestTree::Selection("/RX1/DDF/DF_ENABLED").SelectText("ON", nullptr);
        QVERIFY(!Panel()->isVisible());
        QVERIFY(!Pane()->isVisible());
        QCOMPARE(notes.told, QStringList({"DdcGuiFfm hidden", "DdcIfSpectrum hidden"}));
        notes.told.clear();
        TestTree::Selection("/RX1/DDF/DF_ENABLED").SelectText("OFF", nullptr);
        QVERIFY(Panel()->isVisible());
        QVERIFY(Pane()->isVisible());
        QCOMPARE(notes.told, QStringList({"DdcGuiFfm shown", "DdcIfSpectrum shown"}));
    }

    void directionFindingAtTheStartHidesThePanel()
    {
        TestTree::Selection("/RX1/DDF/DF_ENABLED").SelectText("ON", nullptr);
        m_Window->Start("/RX1", "", "DDC1");
        QVERIFY(m_Window->isVisible());
        QVERIFY(Panel()->isHidden());
        QVERIFY(Pane()->isHidden());
    }

    void onlyTheExactTextMeansDirectionFinding()
    {
        TestTree::AddSelection("/RX1/DDF/DF_ENABLED", {{0, "OFF", 0}, {1, "on", 0}, {2, "ON ", 0}}, 1);
        m_Window->Start("/RX1", "", "DDC1");
        QVERIFY(Panel()->isVisible());
        TestTree::Selection("/RX1/DDF/DF_ENABLED").SelectKey(2, nullptr);
        QVERIFY(Panel()->isVisible());
    }

    void switchingKeyWithDirectionFindingOffLeavesThePanelsAsTheyWere()
    {
        m_Window->Start("/RX1", "", "DDC1");
        TestTree::Selection("/RX1/DRVCOMMANDS").SelectKey(14, nullptr);
        QVERIFY(Panel()->isVisible());
        QVERIFY(Pane()->isVisible());
        TestTree::Selection("/RX1/DDF/DF_ENABLED").SelectText("ON", nullptr);
        QVERIFY(!Panel()->isVisible());  // the exception holds with DF off only
        QVERIFY(!Pane()->isVisible());
        TestTree::Selection("/RX1/DDF/DF_ENABLED").SelectText("OFF", nullptr);
        QVERIFY(!Panel()->isVisible());
        QVERIFY(!Pane()->isVisible());
        TestTree::Selection("/RX1/DRVCOMMANDS").SelectKey(1, nullptr);
        QVERIFY(Panel()->isVisible());
        QVERIFY(Pane()->isVisible());
    }

    void missingValuesAreSkipped_data()
    {
        QTest::addColumn<QString>("missing");
        for (const char* path :
             {"/RX1/DEVICE_CAPTION", "/RX1/FREQUENCY", "/RX1/IFPANSPAN", "/RX1/DRVCOMMANDS", "/RX1/DDF"})
            QTest::newRow(path) << path;
    }
    void missingValuesAreSkipped()
    {
        QFETCH(QString, missing);
        TestTree::Delete(missing);
        m_Window->Start("/RX1", "caption", "DDC1");
        QVERIFY(m_Window->isVisible());
        QTRY_VERIFY(Panel()->isVisible());
        const bool hasRange = missing != "/RX1/FREQUENCY" && missing != "/RX1/IFPANSPAN";
        QCOMPARE(RangeText(), QString(hasRange ? "99.5 MHz - 100.5 MHz" : ""));
        if (missing == "/RX1/DEVICE_CAPTION")
            QCOMPARE(m_Window->windowTitle(), QString("T&K caption DDCs DDC1"));
    }

    void takenOrMissingChannelBringsUpTheDialog_data()
    {
        QTest::addColumn<QString>("configured");
        QTest::newRow("taken") << "DDC1";
        QTest::newRow("missing") << "DDC7";
        QTest::newRow("none configured") << "";
    }
    void takenOrMissingChannelBringsUpTheDialog()
    {
        QFETCH(QString, configured);
        TestTree::Text("/RX1/DDC/DDC1/ConnectedClient").SetValue("other station", nullptr);
        QString title;
        bool hidden = false;
        ModalAnswers dialogs([&](QWidget* window) {
            title = window->windowTitle();
            hidden = m_Window->isHidden();
            ChooseInDialog(window, "DDC1", "&OK");
            QVERIFY(window->isVisible());  // taken: refused
            ChooseInDialog(window, "DDC2", "&OK");
        });
        m_Window->Start("/RX1", "caption", configured);
        QCOMPARE(dialogs.count, 1);
        QVERIFY(hidden);
        QCOMPARE(title, QString("Receiver 1 DDCs"));
        QVERIFY(m_Window->isVisible());
        QCOMPARE(Panel()->objectName(), QString("DDC2"));
        QCOMPARE(m_Window->windowTitle(), QString("T&K Receiver 1 DDC2"));
        QCOMPARE(TestTree::Text("/RX1/DDC/DDC1/ConnectedClient").GetValue(), QString("other station"));
        for (QWidget* widget : QApplication::topLevelWidgets())
            QVERIFY(!qobject_cast<DdcSelectionDlg*>(widget));
    }

    void dialogWithoutAChoiceEndsTheApplication_data()
    {
        QTest::addColumn<QString>("how");
        QTest::newRow("cancel") << "cancel";
        QTest::newRow("close") << "close";
        QTest::newRow("escape") << "escape";
    }
    void dialogWithoutAChoiceEndsTheApplication()
    {
        QFETCH(QString, how);
        ModalAnswers dialogs([&](QWidget* window) {
            if (how == "cancel")
                ChooseInDialog(window, "DDC1", "&Cancel");
            else if (how == "close")
                window->close();
            else
                QTest::keyClick(window, Qt::Key_Escape);
        });
        QCOMPARE(RunApplication([&] { m_Window->Start("/RX1", "caption", ""); }), 0);
        QVERIFY(m_Window->isHidden());
        QVERIFY(!Panel());
    }

    void receiverDeletedWhileTheDialogIsOpenDoesNoHarm()
    {
        ModalAnswers dialogs([&](QWidget* window) {
            TestTree::Delete("/RX1");
            ChooseInDialog(window, "DDC1", "&OK");
            QVERIFY(window->isVisible());
            ChooseInDialog(window, "DDC1", "&Cancel");
        });
        QCOMPARE(RunApplication([&] { m_Window->Start("/RX1", "caption", ""); }), 0);
        QVERIFY(!Panel());
    }

    void closingEndsTheApplicationAndFreesTheChannel()
    {
        m_Window->Start("/RX1", "", "DDC1");
        QVERIFY(!TestTree::Text("/RX1/DDC/DDC1/ConnectedClient").GetValue().isEmpty());
        QCOMPARE(RunApplication([&] { m_Window->close(); }), 0);
        QCOMPARE(TestTree::Text("/RX1/DDC/DDC1/ConnectedClient").GetValue(), QString());
    }

    void reconnectClaimsTheChannelAgain()
    {
        m_Window->Start("/RX1", "", "DDC1");
        TestTree::Text("/RX1/DDC/DDC1/ConnectedClient").SetValue(QString(), nullptr);
        m_Window->ReconnectFfmClient();
        QCOMPARE(TestTree::Text("/RX1/DDC/DDC1/ConnectedClient").GetValue(), QHostInfo::localHostName());
    }

    void axisOfThePanoramaIsKeptForTheWindowsLife()
    {
        m_Window->Start("/RX1", "", "DDC1");
        QCOMPARE(TestTree::Float("/GUICOMMON/IFPANHALFWIDTH").GetValue(), 500000.0);
        TestTree::Float("/RX1/FREQUENCY").SetValue(200000000, nullptr);
        QCOMPARE(TestTree::Float("/GUICOMMON/IFPANSTARTFREQ").GetValue(), 199500000.0);
        m_Window.reset();
        QCOMPARE(TestTree::Float("/RX1/FREQUENCY").CountObservers(), 0);
    }

    void destructionTakesTheRangeLabelThenThePanelThenTheSpectrum()
    {
        m_Window->Start("/RX1", "", "DDC1");
        QStringList gone;
        const QPair<QObject*, QString> parts[] = {
            {Pane(), "spectrum"}, {Panel(), "panel"}, {m_Window->findChild<QLabel*>("Valid Range"), "range"}};
        for (const auto& part : parts)
            connect(part.first, &QObject::destroyed, this, [&gone, part] { gone.append(part.second); });
        m_Window.reset();
        QCOMPARE(gone, QStringList({"range", "panel", "spectrum"}));
    }

    void destructionLeavesTheTreeAlone()
    {
        m_Window->Start("/RX1", "", "DDC1");
        m_Window.reset();
        for (ValueBase* value : ValueHost::ValuesBelow(QString()))
            QVERIFY2(value->CountObservers() == 0, qPrintable(value->GetPathName()));
    }

    void valuesThatGoWhileTheWindowRunsLeaveItStanding()
    {
        m_Window->Start("/RX1", "", "DDC1");
        TestTree::Delete("/RX1");
        QVERIFY(m_Window->isVisible());
        m_Window->Update(nullptr, CC_VALUE);
        QCOMPARE(RangeText(), QString("99.5 MHz - 100.5 MHz"));
    }

private:
    DdcGuiFfm* Panel() const { return m_Window->findChild<DdcGuiFfm*>(); }
    DdcIfSpectrum* Pane() const { return m_Window->findChild<DdcIfSpectrum*>(); }
    QString RangeText() const { return m_Window->findChild<QLabel*>("Valid Range")->text(); }

    QScopedPointer<TestTree> m_Tree;
    QScopedPointer<DdcGuiMain> m_Window;
};

DDCGUI_TEST_MAIN(tst_DdcGuiMain)
#include "tst_ddcguimain.moc"
