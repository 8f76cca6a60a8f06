#include <QAbstractButton>
#include <QButtonGroup>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

#include "ddcselectiondlg.h"
#include "tests/ddcgui/modulefixture.h"

namespace {

// Notes what a dialog signals; lives longer than the dialog.
class Results : public QObject
{
    Q_OBJECT
public:
    explicit Results(DdcSelectionDlg* dialog)
    {
        connect(dialog, SIGNAL(SignalDDCSelected(QString&)), this, SLOT(Take(QString&)));
        connect(dialog, SIGNAL(SignalDDCSelectCancelled()), this, SLOT(Cancel()));
    }
    QStringList names;
    int cancelled = 0;

public slots:
    void Take(QString& name) { names.append(name); }
    void Cancel() { ++cancelled; }
};

void Press(QWidget* dialog, const char* text)
{
    for (QPushButton* button : dialog->findChildren<QPushButton*>())
        if (button->text() == text)
            button->click();
}

QRadioButton* Radio(QWidget* dialog, const QString& name)
{
    for (QRadioButton* button : dialog->findChildren<QRadioButton*>())
        if (button->text() == name)
            return button;
    return nullptr;
}

QStringList Labels(QWidget* dialog)
{
    QStringList texts;
    for (QLabel* label : dialog->findChildren<QLabel*>())
        texts.append(label->text());
    return texts;
}

}  // namespace

class tst_DdcSelectionDlg : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        m_Tree.reset(new TestTree);
        m_Tree->AddDevice();
        for (const char* name : {"MAIN", "DDC1", "DDC2", "other", "DDC3", "ddc4"})
            TestTree::AddText(QString("/RX1/DDC/%1/ConnectedClient").arg(name), QString());
        TestTree::Text("/RX1/DDC/DDC2/ConnectedClient").SetValue("station 7", nullptr);
        TestTree::Delete("/RX1/DDC/DDC3/ConnectedClient");
        TestTree::AddBool("/RX1/DDC/DDC3/AudioMute", false);
        m_Dialog = new DdcSelectionDlg(nullptr, "title", "/RX1");
        m_Results.reset(new Results(m_Dialog));
    }
    void cleanup()
    {
        delete m_Dialog.data();
        m_Results.reset();
        m_Tree.reset();
    }

    void rowsShowTheChannelsAndWhoHoldsThem()
    {
        QCOMPARE(m_Dialog->windowTitle(), QString("title"));
        QCOMPARE(Labels(m_Dialog),
                 QStringList({"SELECT DDC:", "CONNECTED CLIENT:", "FREE", "station 7", "Free"}));
        QVERIFY(m_Dialog->testAttribute(Qt::WA_DeleteOnClose));
        QCOMPARE(m_Dialog->maximumSize(), m_Dialog->size());
    }

    void childrenWithoutDdcInTheirNameGetNoRowAndNoId()
    {
        QButtonGroup* group = m_Dialog->findChild<QButtonGroup*>();
        QVERIFY(group->exclusive());
        QStringList names;
        for (int id = 0; id < group->buttons().size(); ++id)
            names.append(group->button(id) ? group->button(id)->text() : QString("no button of this id"));
        QCOMPARE(names, QStringList({"DDC1", "DDC2", "DDC3"}));
    }

    void headersKeepTheNormalFaceAndAreLow()
    {
        for (QLabel* label : m_Dialog->findChildren<QLabel*>()) {
            if (!label->text().endsWith(':'))
                continue;
            QVERIFY(!label->font().bold());
            QCOMPARE(label->maximumHeight(), 20);
        }
    }

    void holderOfATakenChannelIsMarkedRed()
    {
        for (QLabel* label : m_Dialog->findChildren<QLabel*>()) {
            const bool taken = label->text() == "station 7";
            for (QPalette::ColorGroup state : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
                const QBrush brush = label->palette().brush(state, QPalette::Window);
                QCOMPARE(brush == QBrush(Qt::red, Qt::SolidPattern), taken);
            }
        }
        m_Dialog->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_Dialog));
        QLabel* label = m_Dialog->findChildren<QLabel*>().at(3);
        QCOMPARE(label->grab().toImage().pixelColor(label->width() - 1, 0), QColor(Qt::red));
    }

    void freeChannelIsTaken()
    {
        m_Dialog->show();
        Radio(m_Dialog, "DDC1")->click();
        Press(m_Dialog, "&OK");
        QCOMPARE(m_Results->names, QStringList({"DDC1"}));
        QVERIFY(m_Dialog->isHidden());
        delete m_Dialog.data();
        QCOMPARE(m_Results->names.size(), 1);
    }

    void channelThatCannotBeTakenLeavesTheDialogOpen_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("nothing checked") << QString();
        QTest::newRow("held by a station") << "DDC2";
        QTest::newRow("client value missing shows Free") << "DDC3";
    }
    void channelThatCannotBeTakenLeavesTheDialogOpen()
    {
        QFETCH(QString, name);
        m_Dialog->show();
        if (!name.isEmpty()) {
            QVERIFY(Radio(m_Dialog, name)->isEnabled());
            Radio(m_Dialog, name)->click();
        }
        Press(m_Dialog, "&OK");
        QVERIFY(m_Dialog->isVisible());
        QCOMPARE(m_Results->names, QStringList());
    }

    void channelTakenBetweenTheListAndOkIsRefused()
    {
        m_Dialog->show();
        Radio(m_Dialog, "DDC1")->click();
        TestTree::Text("/RX1/DDC/DDC1/ConnectedClient").SetValue("other station", nullptr);
        Press(m_Dialog, "&OK");
        QVERIFY(m_Dialog->isVisible());
        TestTree::Delete("/RX1/DDC");
        Press(m_Dialog, "&OK");
        QCOMPARE(m_Results->names, QStringList());
        Press(m_Dialog, "&Cancel");
        QCOMPARE(m_Results->names, QStringList({QString()}));
    }

    void channelThatBecameFreeIsTaken()
    {
        m_Dialog->show();
        Radio(m_Dialog, "DDC2")->click();
        TestTree::Text("/RX1/DDC/DDC2/ConnectedClient").SetValue(QString(), nullptr);
        Press(m_Dialog, "&OK");
        QCOMPARE(m_Results->names, QStringList({"DDC2"}));
    }

    void cancelDeliversAnEmptyNameOnce()
    {
        m_Dialog->show();
        Radio(m_Dialog, "DDC1")->click();
        Press(m_Dialog, "&Cancel");
        QVERIFY(m_Dialog->isHidden());
        delete m_Dialog.data();
        QCOMPARE(m_Results->names, QStringList({QString()}));
        QCOMPARE(m_Results->cancelled, 0);
    }

    void closeButtonDeletesTheDialogAndDeliversAnEmptyNameOnce()
    {
        m_Dialog->show();
        m_Dialog->close();
        QTRY_VERIFY(m_Dialog.isNull());
        QCOMPARE(m_Results->names, QStringList({QString()}));
    }

    void destructionWithoutAChoiceDeliversAnEmptyNameOnce()
    {
        m_Dialog->show();
        Radio(m_Dialog, "DDC1")->click();
        delete m_Dialog.data();
        QCOMPARE(m_Results->names, QStringList({QString()}));
    }

    void escapeHidesTheDialogAndSignalsNothingUntilItIsDestroyed()
    {
        m_Dialog->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_Dialog));
        QTest::keyClick(m_Dialog, Qt::Key_Escape);
        QVERIFY(m_Dialog->isHidden());
        QCOMPARE(m_Results->names, QStringList());
        delete m_Dialog.data();
        QCOMPARE(m_Results->names, QStringList({QString()}));
    }

    void withoutAChannelsNodeOkActsAsCancel()
    {
        DdcSelectionDlg* dialog = new DdcSelectionDlg(nullptr, "title", "/RX9");
        Results results(dialog);
        QVERIFY(!dialog->findChild<QButtonGroup*>());
        QCOMPARE(Labels(dialog), QStringList({"SELECT DDC:", "CONNECTED CLIENT:"}));
        dialog->show();
        Press(dialog, "&OK");
        QVERIFY(dialog->isHidden());
        delete dialog;
        QCOMPARE(results.names, QStringList({QString()}));
    }

    void buildingTheDialogWarnsAboutNothing()
    {
        TraceNotes notes;
        DdcSelectionDlg dialog(nullptr, "title", "/RX1");
        QCOMPARE(notes.warnings, QStringList());
    }

private:
    QScopedPointer<TestTree> m_Tree;
    QPointer<DdcSelectionDlg> m_Dialog;
    QScopedPointer<Results> m_Results;
};

DDCGUI_TEST_MAIN(tst_DdcSelectionDlg)
#include "tst_ddcselectiondlg.moc"
