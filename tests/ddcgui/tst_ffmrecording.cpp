#include <QDateTime>
#include <QRegularExpression>

#include "reportgenerator/recording.h"
#include "tests/ddcgui/panelfixture.h"

namespace {

const QString ddc = "/RX1/DDC/DDC1";
const QString question =
    "Record not possible. Audio MUTE is on.\nWould you like to turn it off and proceed with the recording?";
const QString warning =
    "Record not possible. Audio mode is not selected.\nOpen 'Audio Configuration...' from Configuration "
    "menu.\nThen select the desired sample rate.";

// What was seen of a box.
struct Seen
{
    QString title;
    QString text;
    QStringList buttons;
    QString defaultButton;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QWidget* parent = nullptr;
};

Seen Look(QMessageBox* box)
{
    Seen seen;
    seen.title = box->windowTitle();
    seen.text = box->text();
    for (QAbstractButton* button : box->buttons())
        seen.buttons.append(button->text().remove('&'));
    seen.buttons.sort();
    seen.defaultButton = box->defaultButton() ? box->defaultButton()->text().remove('&') : QString();
    seen.icon = box->icon();
    seen.parent = box->parentWidget();
    return seen;
}

// Answers the question about the mute, and notes what was asked.
class MuteAnswer
{
public:
    explicit MuteAnswer(Answer answer)
        : m_Answers([this, answer](QWidget* window) {
              QMessageBox* box = qobject_cast<QMessageBox*>(window);
              QVERIFY(box);
              seen = Look(box);
              if (before)
                  before();
              GiveAnswer(box, answer, {"Yes", "No"});
          })
    {}

    int Count() const { return m_Answers.count; }
    Seen seen;
    std::function<void()> before;  // runs while the box is open

private:
    ModalAnswers m_Answers;
};

}  // namespace

class tst_FfmRecording : public QObject
{
    Q_OBJECT
private slots:
    void unmutedChannelRecordsWithoutAQuestionAlsoWithTheAudioModeOff()
    {
        PanelFixture fixture;
        fixture.Bind("DDC1");
        TestTree::Bool(ddc + "/AudioMute").SetValue(false, nullptr);
        TestTree::Bool(ddc + "/AudioMode").SetValue(false, nullptr);
        MuteAnswer answer(Answer::Second);
        TestTree::Selection(ddc + "/AudioRecording").SelectKey(0, nullptr);
        QCOMPARE(answer.Count(), 0);
        QCOMPARE(TestTree::Selection(ddc + "/AudioRecording").GetCurrentKey(), 0);
        QVERIFY(!TestTree::Bool(ddc + "/AudioMode").GetValue());
    }

    void mutedChannelAsksAndEveryAnswerButYesTakesTheRecordingBack_data()
    {
        QTest::addColumn<Answer>("answer");
        QTest::addColumn<bool>("records");
        QTest::newRow("yes") << Answer::First << true;
        QTest::newRow("no") << Answer::Second << false;
        QTest::newRow("enter is the default, no") << Answer::Enter << false;
        QTest::newRow("escape chooses nothing") << Answer::Escape << false;
        QTest::newRow("closed") << Answer::Close << false;
    }
    void mutedChannelAsksAndEveryAnswerButYesTakesTheRecordingBack()
    {
        QFETCH(Answer, answer);
        QFETCH(bool, records);
        PanelFixture fixture;
        fixture.Bind("DDC1");
        QVERIFY(TestTree::Bool(ddc + "/AudioMute").GetValue());
        MuteAnswer mute(answer);
        TestTree::Selection(ddc + "/AudioRecording").SelectKey(0, nullptr);
        QCOMPARE(mute.Count(), 1);
        QCOMPARE(mute.seen.title, QString("Record Confirmation"));
        QCOMPARE(mute.seen.text, question);
        QCOMPARE(mute.seen.buttons, QStringList({"No", "Yes"}));
        QCOMPARE(mute.seen.defaultButton, QString("No"));
        QCOMPARE(mute.seen.icon, QMessageBox::Information);
        QCOMPARE(mute.seen.parent, fixture.panel.get());
        QCOMPARE(TestTree::Selection(ddc + "/AudioRecording").GetCurrentKey(), records ? 0 : 1);
        QCOMPARE(TestTree::Bool(ddc + "/AudioMute").GetValue(), !records);
        QCOMPARE(TestTree::Bool(ddc + "/AudioMode").GetValue(), records);
    }

    void writesOfAConfirmedRecordingDoNotComeBackToThePanel()
    {
        PanelFixture fixture;
        DdcGuiFfm& panel = fixture.Bind("DDC1");
        int told = 0;
        connect(&panel, &DdcGuiFfm::audioMuteChanged, this, [&] { ++told; });
        MuteAnswer mute(Answer::First);
        TestTree::Selection(ddc + "/AudioRecording").SelectKey(0, nullptr);
        QCOMPARE(mute.Count(), 1);
        QCOMPARE(told, 0);
    }

    void switchingOffAsksNothing()
    {
        PanelFixture fixture;
        fixture.Bind("DDC1");
        MuteAnswer mute(Answer::First);
        {
            MuteAnswer on(Answer::First);
            TestTree::Selection(ddc + "/AudioRecording").SelectKey(0, nullptr);
        }
        TestTree::Bool(ddc + "/AudioMute").SetValue(true, nullptr);
        const int before = mute.Count();
        TestTree::Selection(ddc + "/AudioRecording").SelectKey(1, nullptr);
        QCOMPARE(mute.Count(), before);
    }

    void channelWithoutItsAudioValuesCannotRecord_data()
    {
        QTest::addColumn<QString>("suffix");
        QTest::newRow("mode") << "/AudioMode";
        QTest::newRow("mute") << "/AudioMute";
    }
    void channelWithoutItsAudioValuesCannotRecord()
    {
        QFETCH(QString, suffix);
        PanelFixture fixture;
        fixture.Bind("DDC1");
        TestTree::Delete(ddc + suffix);
        MuteAnswer mute(Answer::First);
        TestTree::Selection(ddc + "/AudioRecording").SelectKey(0, nullptr);
        QCOMPARE(mute.Count(), 0);
        QCOMPARE(TestTree::Selection(ddc + "/AudioRecording").GetCurrentKey(), 1);
    }

    void valuesDeletedWhileTheQuestionIsOpenDoNoHarm_data()
    {
        QTest::addColumn<QString>("gone");
        QTest::newRow("mute") << ddc + "/AudioMute";
        QTest::newRow("mode") << ddc + "/AudioMode";
        QTest::newRow("the recording itself") << ddc + "/AudioRecording";
        QTest::newRow("the whole receiver") << QString("/RX1");
    }
    void valuesDeletedWhileTheQuestionIsOpenDoNoHarm()
    {
        QFETCH(QString, gone);
        for (Answer answer : {Answer::First, Answer::Second}) {
            PanelFixture fixture;
            fixture.Bind("DDC1");
            MuteAnswer mute(answer);
            mute.before = [gone] { TestTree::Delete(gone); };
            TestTree::Selection(ddc + "/AudioRecording").SelectKey(0, nullptr);
            QCOMPARE(mute.Count(), 1);
            if (gone.endsWith("AudioMute") && answer == Answer::First)
                QVERIFY(TestTree::Bool(ddc + "/AudioMode").GetValue());
        }
    }

    void panelDeletedWhileTheQuestionIsOpenDoesNoHarm()
    {
        PanelFixture fixture;
        fixture.Bind("DDC1");
        int asked = 0;
        ModalAnswers answers([&](QWidget*) {
            ++asked;
            fixture.panel.reset();
        });
        TestTree::Selection(ddc + "/AudioRecording").SelectKey(0, nullptr);
        QCOMPARE(asked, 1);
        QVERIFY(!fixture.panel);
    }

    // --- the receiver's own recording ---------------------------------------------------------
    void receiverWithAnAudioModeRecordsUnlessItStaysMuted_data()
    {
        QTest::addColumn<QString>("mute");
        QTest::addColumn<Answer>("answer");
        QTest::addColumn<int>("questions");
        QTest::addColumn<bool>("records");
        QTest::newRow("not muted") << "Off" << Answer::Second << 0 << true;
        QTest::newRow("muted, yes") << "On" << Answer::First << 1 << true;
        QTest::newRow("muted, no") << "On" << Answer::Second << 1 << false;
        QTest::newRow("muted, enter") << "On" << Answer::Enter << 1 << false;
        QTest::newRow("muted, escape") << "On" << Answer::Escape << 1 << false;
        QTest::newRow("muted, closed") << "On" << Answer::Close << 1 << false;
    }
    void receiverWithAnAudioModeRecordsUnlessItStaysMuted()
    {
        QFETCH(QString, mute);
        QFETCH(Answer, answer);
        QFETCH(int, questions);
        QFETCH(bool, records);
        PanelFixture fixture;
        BindReceiver(fixture);
        TestTree::Selection("/RX1/AUDIO/CHANNELMUTE").SelectText(mute, nullptr);
        TestTree::Selection("/RX1/RECORDREPLAY/MODE").SelectText("Record", nullptr);
        TestTree::Selection("/RX1/RECORDREPLAY/SOURCE").SelectText("Audio", nullptr);
        MuteAnswer asked(answer);
        Record();
        QCOMPARE(asked.Count(), questions);
        if (questions) {
            QCOMPARE(asked.seen.title, QString("Record Confirmation"));
            QCOMPARE(asked.seen.text, question);
            QCOMPARE(asked.seen.defaultButton, QString("No"));
        }
        QCOMPARE(IsRecording(), records);
        QCOMPARE(TestTree::Bool("/RX1/AUDIO/AUDRECORDVALID").GetValue(), records);
        QCOMPARE(TestTree::Selection("/RX1/AUDIO/CHANNELMUTE").GetCurrentText(),
                 QString(records ? "Off" : "On"));
        QCOMPARE(TestTree::Selection("/RX1/RECORDREPLAY/MODE").GetCurrentText(),
                 QString(records ? "Record" : "Stop"));
    }

    void receiverWithoutAnAudioModeWarnsAndItsRunningAudioRecordingIsStopped_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("after");
        QTest::newRow("records audio") << "Record"
                                       << "Audio"
                                       << "Stop";
        QTest::newRow("records audio too") << "Record"
                                           << "IF + Audio"
                                           << "Stop";
        QTest::newRow("records IF") << "Record"
                                    << "IF"
                                    << "Record";
        QTest::newRow("replays") << "Replay"
                                 << "Audio"
                                 << "Replay";
    }
    void receiverWithoutAnAudioModeWarnsAndItsRunningAudioRecordingIsStopped()
    {
        QFETCH(QString, mode);
        QFETCH(QString, source);
        QFETCH(QString, after);
        PanelFixture fixture;
        BindReceiver(fixture);
        TestTree::Selection("/RX1/AUDIO/AUDIOMODE").SelectKey(0, nullptr);
        TestTree::Selection("/RX1/RECORDREPLAY/MODE").SelectText(mode, nullptr);
        TestTree::Selection("/RX1/RECORDREPLAY/SOURCE").SelectText(source, nullptr);
        Seen seen;
        ModalAnswers answers([&](QWidget* window) {
            seen = Look(qobject_cast<QMessageBox*>(window));
            qobject_cast<QMessageBox*>(window)->button(QMessageBox::Ok)->click();
        });
        Record();
        QCOMPARE(answers.count, 1);
        QCOMPARE(seen.title, QString("Record Failed"));
        QCOMPARE(seen.text, warning);
        QCOMPARE(seen.buttons, QStringList({"OK"}));
        QCOMPARE(seen.icon, QMessageBox::Warning);
        QCOMPARE(seen.parent, fixture.panel.get());
        QVERIFY(!IsRecording());
        QCOMPARE(TestTree::Selection("/RX1/RECORDREPLAY/MODE").GetCurrentText(), after);
        QVERIFY(!TestTree::Bool("/RX1/AUDIO/AUDRECORDVALID").GetValue());
    }

    void receiverThatIsKnownToRecordIsNotAskedAnything()
    {
        PanelFixture fixture;
        BindReceiver(fixture);
        TestTree::Bool("/RX1/AUDIO/AUDRECORDVALID").SetValue(true, nullptr);
        TestTree::Selection("/RX1/AUDIO/AUDIOMODE").SelectKey(0, nullptr);
        MuteAnswer asked(Answer::Second);
        Record();
        QCOMPARE(asked.Count(), 0);
        QVERIFY(IsRecording());
    }

    void receiverWithoutAudioValuesFailsSilently()
    {
        PanelFixture fixture;
        BindReceiver(fixture);
        TestTree::Delete("/RX1/AUDIO/AUDIOMODE");
        TestTree::Delete("/RX1/AUDIO/CHANNELMUTE");
        TestTree::Bool("/RX1/AUDIO/AUDRECORDVALID").SetValue(true, nullptr);
        TestTree::Selection("/RX1/RECORDREPLAY/MODE").SelectText("Record", nullptr);
        TestTree::Selection("/RX1/RECORDREPLAY/SOURCE").SelectText("Audio", nullptr);
        MuteAnswer asked(Answer::Second);
        Record();
        QCOMPARE(asked.Count(), 0);
        QVERIFY(!IsRecording());
        QCOMPARE(TestTree::Selection("/RX1/RECORDREPLAY/MODE").GetCurrentText(), QString("Record"));
    }

    void missingAudioModeCountsAsNoneSelected()
    {
        PanelFixture fixture;
        BindReceiver(fixture);
        TestTree::Delete("/RX1/AUDIO/AUDIOMODE");
        Seen seen;
        ModalAnswers answers([&](QWidget* window) {
            seen = Look(qobject_cast<QMessageBox*>(window));
            window->close();
        });
        Record();
        QCOMPARE(seen.title, QString("Record Failed"));
        QVERIFY(!IsRecording());
    }

    void missingMuteOrValidFlagDoesNotStopTheReceiver()
    {
        PanelFixture fixture;
        BindReceiver(fixture);
        TestTree::Delete("/RX1/AUDIO/CHANNELMUTE");
        TestTree::Delete("/RX1/AUDIO/AUDRECORDVALID");
        TestTree::Delete("/RX1/RECORDREPLAY/MODE");
        TestTree::Delete("/RX1/RECORDREPLAY/SOURCE");
        MuteAnswer asked(Answer::Second);
        Record();
        QCOMPARE(asked.Count(), 0);
        QVERIFY(IsRecording());
    }

    void receiverDeletedWhileABoxIsOpenDoesNoHarm_data()
    {
        QTest::addColumn<int>("audioMode");
        QTest::newRow("question") << 1;
        QTest::newRow("warning") << 0;
    }
    void receiverDeletedWhileABoxIsOpenDoesNoHarm()
    {
        QFETCH(int, audioMode);
        for (bool panelToo : {false, true}) {
            PanelFixture fixture;
            BindReceiver(fixture);
            TestTree::Selection("/RX1/AUDIO/CHANNELMUTE").SelectText("On", nullptr);
            TestTree::Selection("/RX1/AUDIO/AUDIOMODE").SelectKey(audioMode, nullptr);
            ModalAnswers answers([&](QWidget* window) {
                TestTree::Delete("/RX1");
                if (panelToo)
                    fixture.panel.reset();
                else
                    window->close();
            });
            Record();
            QCOMPARE(answers.count, 1);
        }
    }

    // --- pulse recordings ---------------------------------------------------------------------
    void finishedPulseRecordingIsDescribedAndHandedOver()
    {
        PanelFixture fixture;
        fixture.Bind("DDC4", TestTree::PulseAnalysis);
        const QString path = "/RX1/DDC/DDC4";
        TestTree::Float(path + "/Frequency").SetValue(98500000, nullptr);
        TestTree::Selection(path + "/Bandwidth").SelectKey(120000, nullptr);
        TestTree::Text(path + "/PDWPath").SetValue("file:///data/pulses 1.pdw", nullptr);
        const QString xml = TestTree::Text(path + "/HandoverPath").GetValue();

        REPORTGENERATOR::Recording expected;
        expected.GetMetadata()->GetDetail()->SetRecordData("PDW");
        expected.GetMetadata()->GetDetail()->SetStartFrequency(98380000);
        expected.GetMetadata()->GetDetail()->SetStopFrequency(98620000);
        expected.SetURL("file:///data/pulses 1.pdw");
        QCOMPARE(WithoutTimes(xml), WithoutTimes(expected.GetXmlString()));
        QCOMPARE(TestTree::Text(path + "/PDWPath").GetValue(), QString());
    }

    void sameLocationAgainIsSeenAsNew()
    {
        PanelFixture fixture;
        fixture.Bind("DDC4", TestTree::PulseAnalysis);
        const QString path = "/RX1/DDC/DDC4";
        NotingObserver notes;
        TestTree::Text(path + "/HandoverPath").AddObserver(&notes);
        TestTree::Text(path + "/PDWPath").SetValue("file", nullptr);
        TestTree::Text(path + "/HandoverPath").SetValue(QString(), nullptr);
        TestTree::Text(path + "/PDWPath").SetValue("file", nullptr);
        QVERIFY(!TestTree::Text(path + "/HandoverPath").GetValue().isEmpty());
        QCOMPARE(notes.Count(CC_VALUE), 3);
    }

    void emptyLocationProducesNoHandover()
    {
        PanelFixture fixture;
        fixture.Bind("DDC4", TestTree::PulseAnalysis);
        TextValue& pdw = TestTree::Text("/RX1/DDC/DDC4/PDWPath");
        pdw.NotifyObservers(CC_VALUE, nullptr);
        pdw.NotifyObservers(CC_HOOKS_SERVED, nullptr);
        pdw.SetValue(QString(), nullptr);
        QCOMPARE(TestTree::Text("/RX1/DDC/DDC4/HandoverPath").GetValue(), QString());
    }

    void hooksServedNoticeHandsOverLikeANewValue()
    {
        PanelFixture fixture;
        fixture.Bind("DDC4", TestTree::PulseAnalysis);
        TextValue& pdw = TestTree::Text("/RX1/DDC/DDC4/PDWPath");
        pdw.SetValue("file", fixture.panel.get());  // the panel is not told of its own write
        QCOMPARE(TestTree::Text("/RX1/DDC/DDC4/HandoverPath").GetValue(), QString());
        pdw.NotifyObservers(CC_HOOKS_SERVED, nullptr);
        QVERIFY(TestTree::Text("/RX1/DDC/DDC4/HandoverPath").GetValue().contains("file"));
    }

    void handoverWithoutFrequencyOrBandwidthNamesNoSpan()
    {
        for (const char* missing : {"/Frequency", "/Bandwidth"}) {
            PanelFixture fixture;
            fixture.Bind("DDC4", TestTree::PulseAnalysis);
            TestTree::Delete(QString("/RX1/DDC/DDC4") + missing);
            TestTree::Text("/RX1/DDC/DDC4/PDWPath").SetValue("file", nullptr);
            REPORTGENERATOR::Recording expected;
            expected.GetMetadata()->GetDetail()->SetRecordData("PDW");
            expected.GetMetadata()->GetDetail()->SetStartFrequency(0);
            expected.GetMetadata()->GetDetail()->SetStopFrequency(0);
            expected.SetURL("file");
            QCOMPARE(WithoutTimes(TestTree::Text("/RX1/DDC/DDC4/HandoverPath").GetValue()),
                     WithoutTimes(expected.GetXmlString()));
        }
    }

    void missingHandoverValueOnlyClearsTheLocation()
    {
        PanelFixture fixture;
        fixture.Bind("DDC4", TestTree::PulseAnalysis);
        TestTree::Delete("/RX1/DDC/DDC4/HandoverPath");
        TestTree::Text("/RX1/DDC/DDC4/PDWPath").SetValue("file", nullptr);
        QCOMPARE(TestTree::Text("/RX1/DDC/DDC4/PDWPath").GetValue(), QString());
    }

private:
    static void BindReceiver(PanelFixture& fixture)
    {
        fixture.tree.AddDeviceRecording();
        fixture.Bind("MAIN");
    }
    static void Record() { TestTree::Selection("/RX1/DDC/MAIN/AudioRecording").SelectKey(0, nullptr); }
    static bool IsRecording()
    {
        return TestTree::Selection("/RX1/DDC/MAIN/AudioRecording").GetCurrentKey() == 0;
    }

    // What is left when all times are taken out, wherever the layout has them.
    static QString WithoutTimes(QString xml)
    {
        static const QRegularExpression times(
            "<(Start|Stop)Time>[^<]*</(Start|Stop)Time>|<(Start|Stop)Time/>");
        return xml.remove(times).simplified().remove("> ").remove(">");
    }
};

DDCGUI_TEST_MAIN(tst_FfmRecording)
#include "tst_ffmrecording.moc"
