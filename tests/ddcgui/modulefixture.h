#pragma once

#include <QApplication>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <functional>

#include "base/basehost.h"
#include "devicecontrol/devicecontrolhost.h"
#include "receivercommon/receivercommonhost.h"
#include "startup/imshclientdll.h"
#include "startup/kestapplication.h"
#include "startup/startuphost.h"
#include "tests/support/testtree.h"
#include "valueframework/ivtclient.h"
#include "valueframework/observable.h"

// What the tests of the module share: an application, noted traces, answered boxes, a client and
// plug-ins that note every call.

#define DDCGUI_TEST_MAIN(TestClass)                                                 \
    int main(int argc, char** argv)                                                 \
    {                                                                               \
        KestApplication application(argc, argv);                                    \
        QApplication::setQuitOnLastWindowClosed(false); /* as the workbench does */ \
        QTEST_SET_MAIN_SOURCE_PATH                                                  \
        TestClass test;                                                             \
        return QTest::qExec(&test, argc, argv);                                     \
    }

// Collects traces and warnings while it lives.
class TraceNotes
{
public:
    TraceNotes()
    {
        s_Current = this;
        m_Previous = qInstallMessageHandler(&TraceNotes::Take);
    }
    ~TraceNotes()
    {
        qInstallMessageHandler(m_Previous);
        s_Current = nullptr;
    }

    QStringList traces;    // as written by the trace function: text, source, line
    QStringList warnings;  // of everybody, Qt included

private:
    static void Take(QtMsgType type, const QMessageLogContext& context, const QString& message)
    {
        if (qstrcmp(context.category, "rx.trace") == 0)
            s_Current->traces.append(message);
        else if (type == QtWarningMsg || type == QtCriticalMsg)
            s_Current->warnings.append(message);
        else if (s_Current->m_Previous)
            s_Current->m_Previous(type, context, message);
    }

    static inline TraceNotes* s_Current = nullptr;
    QtMessageHandler m_Previous;
};

// Answers modal windows while it lives: waits for one and hands it to the function, which has to end
// it. Each is handed over once.
class ModalAnswers : public QObject
{
public:
    explicit ModalAnswers(std::function<void(QWidget*)> answer) : m_Answer(answer)
    {
        m_Poll.setInterval(1);
        connect(&m_Poll, &QTimer::timeout, this, [this] {
            QWidget* window = QApplication::activeModalWidget();
            if (!window || window == m_Answered || !window->isVisible())
                return;
            m_Answered = window;
            ++count;
            m_Answer(window);
        });
        m_Poll.start();
    }

    int count = 0;

private:
    std::function<void(QWidget*)> m_Answer;
    QPointer<QWidget> m_Answered;
    QTimer m_Poll;
};

enum class Answer
{
    First,  // the box's buttons in the order in which they were added
    Second,
    Third,
    Enter,   // the default
    Escape,  // the escape key
    Close    // the window's close button
};

inline void GiveAnswer(QMessageBox* box, Answer answer, const QStringList& texts)
{
    if (answer == Answer::Enter) {
        QTest::keyClick(box, Qt::Key_Return);
    } else if (answer == Answer::Escape) {
        QTest::keyClick(box, Qt::Key_Escape);
    } else if (answer == Answer::Close) {
        box->close();
    } else {
        for (QAbstractButton* button : box->buttons())
            if (button->text() == texts.value(int(answer)))
                button->click();
    }
    if (box->isVisible())
        box->hide();  // an answer that the box does not take must not hang the test
}

// A client that the test drives and that notes what it is asked for.
class TestClient : public Observable, public IVtClient
{
public:
    TestClient() { ValueHost::SetClient("VTConnectToDRV", this); }
    ~TestClient() override { ValueHost::SetClient("VTConnectToDRV", nullptr); }

    void AddObserver(IObserver* observer) override { Observable::AddObserver(observer); }
    void DeleteObserver(IObserver* observer) override { Observable::DeleteObserver(observer); }
    QString GetServerAddress() override
    {
        calls.append("GetServerAddress");
        return streamAddress;
    }
    void Flush() override { calls.append("Flush"); }
    void HookValues(const QByteArray& pair, const QByteArray& reserved) override
    {
        calls.append("Hook " + pair + " [" + reserved + "]");
    }
    void ReleaseValues(const QByteArray& pair) override { calls.append("Release " + pair); }
    bool IsNodeServed(Node*) override { return nodeServed; }
    bool HasServedValues() override { return servedValues; }
    bool IsConnected() override { return connected; }

    void Tell(TChangeCode code)
    {
        if (code == CC_CONNECTED || code == CC_DISCONNECTED)
            connected = code == CC_CONNECTED;
        NotifyObservers(code, nullptr);
    }

    QStringList calls;
    QString streamAddress = "127.0.0.1:1";  // nobody is there
    bool connected = false;
    bool nodeServed = false;
    bool servedValues = true;
};

// A message-sender client that notes every call in order.
class NotingSender : public IMshClientDll
{
public:
    NotingSender(const QString& argument, QStringList* calls) : IMshClientDll(argument), m_Calls(calls)
    {
        Note("create", {argument});
    }

    void AddValue(const QString& tag, const QString& path, const QString& algorithm) override
    {
        Note("AddValue", {tag, path, algorithm});
    }
    void SetFrequencyPath(const QString& path) override { Note("SetFrequencyPath", {path}); }
    void SetToolBar(QToolBar* bar, bool flag) override
    {
        toolBar = bar;
        Note("SetToolBar", {bar ? "bar" : "null", Text(flag)});
    }
    void SetFlag1(bool on) override { Note("SetFlag1", {Text(on)}); }
    void SetApplication(const QString& application) override { Note("SetApplication", {application}); }
    void SetGroup(const QString& group) override { Note("SetGroup", {group}); }
    void SetFlag2(bool on) override { Note("SetFlag2", {Text(on)}); }
    void SetServer(const QString& address, int port) override
    {
        Note("SetServer", {address, QString::number(port)});
    }
    void Start() override { Note("Start", {}); }
    void SetPdwPath(const QString& path) override { Note("SetPdwPath", {path}); }
    void SetName(const QString& name) override { Note("SetName", {name}); }
    void SetFlag3(bool on) override { Note("SetFlag3", {Text(on)}); }
    void SetFlag4(bool on) override { Note("SetFlag4", {Text(on)}); }
    void SetFlag5(bool on) override { Note("SetFlag5", {Text(on)}); }
    void SetFlag6(bool on) override { Note("SetFlag6", {Text(on)}); }

    QToolBar* toolBar = nullptr;

private:
    static QString Text(bool on) { return on ? "true" : "false"; }
    void Note(const QString& call, const QStringList& arguments)
    {
        m_Calls->append(call + '(' + arguments.join(", ") + ')');
    }

    QStringList* m_Calls;
};
