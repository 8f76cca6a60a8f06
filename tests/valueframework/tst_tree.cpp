#include <QTest>

#include "tests/valueframework/watcher.h"
#include "valueframework/arexception.h"
#include "valueframework/node.h"
#include "valueframework/valuedescriptor.h"
#include "valueframework/vtclientcenter.h"

namespace {

QStringList ChildNames(const QString& path)
{
    QStringList names;
    if (Node* node = Tree::Instance()->FindNode(path)) {
        for (TreeItem* item : node->GetChildren()) {
            names.append(item->GetName());
        }
    }
    return names;
}

QStringList PathsOf(const QVector<ValueBase*>& values)
{
    QStringList paths;
    for (ValueBase* value : values) {
        paths.append(value->GetPathName());
    }
    return paths;
}

}  // namespace

// Where values live: making, finding, adding, deleting, and the end of it all.
class tst_tree : public QObject
{
    Q_OBJECT
private slots:
    void thereIsNoTreeBeforeAndAfter();
    void aSecondCreateTreeKeepsTheTree();
    void withoutATreeEverythingIsNull();
    void aValueIsFoundByItsExactPathOnly();
    void pathsThatDifferInCaseAreDifferentValues();
    void theFrequencyOfAChannelLiesBelowTheDevice();
    void aChannelHasTheSameLevelLimitsAsAllOthers();
    void findValueAndGetValueAreOneOperation();
    void nodesKeepTheirChildrenInTheOrderOfMaking();
    void childrenKeepTheirOrderWhileOthersLeave();
    void createNodeMakesAllNodesAboveIt();
    void createNodeOfTheEmptyPathIsTheRoot();
    void createNodeAtOrBelowAValueIsNull();
    void malformedPathsMakeNothing_data();
    void malformedPathsMakeNothing();
    void addValueTakesAPathWithAndWithoutATrailingSeparator();
    void addValueToTheRoot();
    void addValueRefusesAndTakesNothing_data();
    void addValueRefusesAndTakesNothing();
    void aValueThatHasItsPlaceIsNotAddedAgain();
    void anAddedValueKeepsItsNameForGood();
    void anExceptionTellsItsMessageInBothForms();
    void createReplacesAValueOfAnotherType();
    void createKeepsAValueOfTheSameType();
    void createIsNullWhereANodeIs();
    void createGivesUpAgainstAnObserverThatKeepsThePath();
    void createWhileAnObserverMakesTheSamePath();
    void createWhileAnObserverDeletesThePath();
    void valuesBelowAreInTheOrderOfMaking();
    void aClientIsKnownByItsName();
};

void tst_tree::thereIsNoTreeBeforeAndAfter()
{
    QVERIFY(!Tree::Instance());
    ValueHost::CreateTree();
    QVERIFY(Tree::Instance());
    MakeInt("/A/B");
    ValueHost::DestroyTree();
    QVERIFY(!Tree::Instance());
    ValueHost::DestroyTree();
    ValueHost::CreateTree();
    QVERIFY(Tree::Instance());
    QVERIFY(!Tree::Instance()->FindValue("/A/B"));
    QCOMPARE(ValueHost::CountValues(), 0);
    ValueHost::DestroyTree();
}

void tst_tree::aSecondCreateTreeKeepsTheTree()
{
    OwnTree tree;
    MakeInt("/A/B");
    ValueHost::CreateTree();
    QVERIFY(Tree::Instance()->FindValue("/A/B"));
}

void tst_tree::withoutATreeEverythingIsNull()
{
    QVERIFY(!ValueHost::Create("/A", Described(ValueType::Bool), true));
    QVERIFY(!ValueDescriptor::CreateNodeAbsolute("/A", nullptr));
    QCOMPARE(ValueHost::CountValues(), 0);
    QVERIFY(ValueHost::ValuesBelow("").isEmpty());
}

void tst_tree::aValueIsFoundByItsExactPathOnly()
{
    OwnTree tree;
    IntValue* value = MakeInt("/RX1/DDC/DDC1/Mode");
    Tree* found = Tree::Instance();
    QCOMPARE(found->FindValue("/RX1/DDC/DDC1/Mode"), value);
    QCOMPARE(value->GetPathName(), QString("/RX1/DDC/DDC1/Mode"));
    QCOMPARE(value->GetName(), QString("Mode"));
    for (const char* other : {"", "/", "/RX1", "/RX1/DDC/DDC1", "/RX1/DDC/DDC1/Mode/", "RX1/DDC/DDC1/Mode",
                              "/RX1/DDC/DDC1/Mod", "/RX1/DDC/DDC1/Modes", "/RX1//DDC/DDC1/Mode"}) {
        QVERIFY2(!found->FindValue(other), other);
    }
    QVERIFY(!found->FindNode("/RX1/DDC/DDC1/Mode"));
    QVERIFY(found->FindNode("/RX1/DDC"));
}

void tst_tree::pathsThatDifferInCaseAreDifferentValues()
{
    OwnTree tree;
    FloatValue* setting = MakeFloat("/RX1/DDC/DDC1/Frequency", 1);
    FloatValue* followed = MakeFloat("/RX1/DDC/DDC1/FREQUENCY", 2);
    QVERIFY(setting && followed && setting != followed);
    QCOMPARE(Tree::Instance()->FindValue("/RX1/DDC/DDC1/Frequency"), setting);
    QCOMPARE(Tree::Instance()->FindValue("/RX1/DDC/DDC1/FREQUENCY"), followed);
}

void tst_tree::theFrequencyOfAChannelLiesBelowTheDevice()
{
    OwnTree tree;
    FloatValue* frequency = MakeFloat("/D/DDC/X/Frequency");
    const QString devicePath = "/D", name = "X";
    QCOMPARE(Tree::Instance()->FindValue(devicePath + "/DDC/" + name + "/Frequency"), frequency);
    QCOMPARE(ChildNames("/D/DDC"), QStringList{"X"});
}

void tst_tree::aChannelHasTheSameLevelLimitsAsAllOthers()
{
    OwnTree tree;
    FloatValue* limit = MakeFloat("/GUICOMMON/IF_LEVELMAXIMUM", 80);
    MakeFloat("/D/DDC/X/Frequency");
    QCOMPARE(Tree::Instance()->FindValue(QString("/GUICOMMON") + "/" + "IF_LEVELMAXIMUM"), limit);
    QVERIFY(!Tree::Instance()->FindValue("/D/GUICOMMON/IF_LEVELMAXIMUM"));
}

void tst_tree::findValueAndGetValueAreOneOperation()
{
    OwnTree tree;
    IntValue* value = MakeInt("/A/B");
    QCOMPARE(Tree::Instance()->GetValue("/A/B"), value);
    QVERIFY(!Tree::Instance()->GetValue("/A/C"));
}

void tst_tree::nodesKeepTheirChildrenInTheOrderOfMaking()
{
    OwnTree tree;
    MakeInt("/N/zebra");
    ValueDescriptor::CreateNodeAbsolute("/N/beta", nullptr);
    MakeInt("/N/alpha");
    MakeInt("/N/beta/inner");
    MakeInt("/N/10");
    MakeInt("/N/9");
    QCOMPARE(ChildNames("/N"), (QStringList{"zebra", "beta", "alpha", "10", "9"}));
    Node* node = Tree::Instance()->FindNode("/N");
    QVERIFY(dynamic_cast<Node*>(node->GetChildren().at(1)));
    QVERIFY(dynamic_cast<IntValue*>(node->GetChildren().at(2)));
}

void tst_tree::childrenKeepTheirOrderWhileOthersLeave()
{
    OwnTree tree;
    QStringList expected;
    for (int i = 0; i < 200; ++i) {
        MakeInt(QString("/N/v%1").arg(i));
    }
    for (int i = 0; i < 200; ++i) {
        if (i % 5 != 2) {
            Tree::Instance()->DeleteValue(QString("/N/v%1").arg(i));
        } else {
            expected.append(QString("v%1").arg(i));
        }
    }
    MakeInt("/N/v0");
    expected.append("v0");
    QCOMPARE(ChildNames("/N"), expected);
}

void tst_tree::createNodeMakesAllNodesAboveIt()
{
    OwnTree tree;
    Node* node = ValueDescriptor::CreateNodeAbsolute("/RX1/DDC/DDC1", nullptr);
    QVERIFY(node);
    QCOMPARE(node->GetPathName(), QString("/RX1/DDC/DDC1"));
    QCOMPARE(node->GetName(), QString("DDC1"));
    QVERIFY(node->GetChildren().empty());
    QCOMPARE(ChildNames("/RX1"), QStringList{"DDC"});
    QCOMPARE(ValueDescriptor::CreateNodeAbsolute("/RX1/DDC/DDC1", nullptr), node);
    QCOMPARE(Tree::Instance()->FindNode("/RX1/DDC/DDC1"), node);
}

void tst_tree::createNodeOfTheEmptyPathIsTheRoot()
{
    OwnTree tree;
    Node* root = ValueDescriptor::CreateNodeAbsolute("", nullptr);
    QVERIFY(root);
    QCOMPARE(root, Tree::Instance()->FindNode(""));
    QCOMPARE(root->GetName(), QString());
    QCOMPARE(root->GetPathName(), QString());
}

void tst_tree::createNodeAtOrBelowAValueIsNull()
{
    OwnTree tree;
    MakeInt("/A/B");
    QTest::ignoreMessage(QtWarningMsg, "No node \"/A/B\": \"/A/B\" is a value");
    QVERIFY(!ValueDescriptor::CreateNodeAbsolute("/A/B", nullptr));
    QTest::ignoreMessage(QtWarningMsg, "No node \"/A/B/C\": \"/A/B\" is a value");
    QVERIFY(!ValueDescriptor::CreateNodeAbsolute("/A/B/C", nullptr));
    QCOMPARE(ChildNames("/A"), QStringList{"B"});
}

void tst_tree::malformedPathsMakeNothing_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("no separator") << "A";
    QTest::newRow("not absolute") << "A/B";
    QTest::newRow("separator alone") << "/";
    QTest::newRow("trailing separator") << "/A/";
    QTest::newRow("empty part") << "/A//B";
}

void tst_tree::malformedPathsMakeNothing()
{
    QFETCH(QString, path);
    OwnTree tree;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("is no path of a node"));
    QVERIFY(!ValueDescriptor::CreateNodeAbsolute(path, nullptr));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("No value can be made at"));
    QVERIFY(!ValueHost::Create(path, Described(ValueType::Bool), true));
    QVERIFY(ChildNames("").isEmpty());
    QCOMPARE(ValueHost::CountValues(), 0);
}

void tst_tree::addValueTakesAPathWithAndWithoutATrailingSeparator()
{
    OwnTree tree;
    ValueDescriptor::CreateNodeAbsolute("/RX1/DDC", nullptr);
    auto* first = new TextValue;
    first->SetName("First", nullptr);
    QCOMPARE(first->GetPathName(), QString("First"));
    Tree::Instance()->AddValue("/RX1/DDC/", first);
    auto* second = new TextValue;
    second->SetName("Second", nullptr);
    Tree::Instance()->AddValue("/RX1/DDC", second);
    QCOMPARE(Tree::Instance()->FindValue("/RX1/DDC/First"), first);
    QCOMPARE(second->GetPathName(), QString("/RX1/DDC/Second"));
    QCOMPARE(ChildNames("/RX1/DDC"), (QStringList{"First", "Second"}));
}

void tst_tree::addValueToTheRoot()
{
    OwnTree tree;
    auto* value = new TextValue;
    value->SetName("Top", nullptr);
    Tree::Instance()->AddValue("/", value);
    QCOMPARE(Tree::Instance()->FindValue("/Top"), value);
}

void tst_tree::addValueRefusesAndTakesNothing_data()
{
    QTest::addColumn<QString>("parentPath");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("reason");
    QTest::newRow("no such node") << "/X/"
                                  << "Name"
                                  << "there is no node \"/X\"";
    QTest::newRow("parent is a value") << "/A/Taken"
                                       << "Name"
                                       << "there is no node \"/A/Taken\"";
    QTest::newRow("empty name") << "/A/"
                                << ""
                                << "without a name";
    QTest::newRow("name of a value") << "/A/"
                                     << "Taken"
                                     << "that name is taken";
    QTest::newRow("name of a node") << "/A/"
                                    << "Node"
                                    << "that name is taken";
    QTest::newRow("separator in the name") << "/A/"
                                           << "B/C"
                                           << "a name has no \"/\"";
}

void tst_tree::addValueRefusesAndTakesNothing()
{
    QFETCH(QString, parentPath);
    QFETCH(QString, name);
    QFETCH(QString, reason);
    OwnTree tree;
    MakeInt("/A/Taken");
    ValueDescriptor::CreateNodeAbsolute("/A/Node", nullptr);
    TextValue value;  // on the stack: a tree that took it would destroy it once more
    value.SetName(name, nullptr);
    QString message;
    try {
        Tree::Instance()->AddValue(parentPath, &value);
    } catch (const ARException& exception) {
        message = exception.GetMessage();
    }
    QVERIFY2(message.contains(reason), qPrintable(message));
    QCOMPARE(ValueHost::CountValues(), 1);
    QVERIFY(value.SetValue("still usable", nullptr));
    QCOMPARE(value.GetPathName(), name);
}

void tst_tree::aValueThatHasItsPlaceIsNotAddedAgain()
{
    OwnTree tree;
    IntValue* value = MakeInt("/A/B");
    ValueDescriptor::CreateNodeAbsolute("/C", nullptr);
    QVERIFY_EXCEPTION_THROWN(Tree::Instance()->AddValue("/C", value), ARException);
    QVERIFY_EXCEPTION_THROWN(Tree::Instance()->AddValue("/C", nullptr), ARException);
    QCOMPARE(value->GetPathName(), QString("/A/B"));
    QVERIFY(ChildNames("/C").isEmpty());
}

void tst_tree::anAddedValueKeepsItsNameForGood()
{
    OwnTree tree;
    IntValue* value = MakeInt("/A/B");
    value->SetName("C", nullptr);
    QCOMPARE(value->GetPathName(), QString("/A/B"));
    QCOMPARE(Tree::Instance()->FindValue("/A/B"), value);
}

void tst_tree::anExceptionTellsItsMessageInBothForms()
{
    const ARException exception(QString::fromUtf8("no node \"/Übung\""));
    const ARException copy(exception);
    QCOMPARE(copy.GetMessage(), QString::fromUtf8("no node \"/Übung\""));
    QCOMPARE(QByteArray(copy.what()), QByteArray("no node \"/Übung\""));
}

void tst_tree::createReplacesAValueOfAnotherType()
{
    OwnTree tree;
    Watcher watcher;
    MakeInt("/A/B", 5)->AddObserver(&watcher);
    ValueBase* value = ValueHost::Create("/A/B", Described(ValueType::Text), "five");
    QCOMPARE(watcher.codes, QVector<TChangeCode>{CC_STATE});
    QVERIFY(dynamic_cast<TextValue*>(value));
    QCOMPARE(value->GetText(), QString("five"));
    QCOMPARE(value->CountObservers(), 0);
    QCOMPARE(ValueHost::CountValues(), 1);
}

void tst_tree::createKeepsAValueOfTheSameType()
{
    OwnTree tree;
    Watcher watcher;
    IntValue* value = MakeInt("/A/B", 5);
    value->AddObserver(&watcher);
    QCOMPARE(ValueHost::Create("/A/B", Described(ValueType::Integer), 5), value);
    QVERIFY(watcher.codes.isEmpty());
    QCOMPARE(ValueHost::Create("/A/B", Limited(ValueType::Integer, 0, 9, "s"), 6), value);
    QCOMPARE(watcher.codes, (QVector<TChangeCode>{CC_DESCRIPTION, CC_VALUE}));
    QCOMPARE(ValueHost::Description(*value).unit, QString("s"));
    QCOMPARE(ValueHost::Create("/A/B", Limited(ValueType::Integer, 0, 9, "s"), QVariant()), value);
    QCOMPARE(value->GetValue(), 6);
}

void tst_tree::createIsNullWhereANodeIs()
{
    OwnTree tree;
    MakeInt("/A/B");
    QTest::ignoreMessage(QtWarningMsg, "No value can be made at \"/A\": a node has that path");
    QVERIFY(!ValueHost::Create("/A", Described(ValueType::Bool), true));
    QTest::ignoreMessage(QtWarningMsg, "No node \"/A/B\": \"/A/B\" is a value");
    QVERIFY(!ValueHost::Create("/A/B/C", Described(ValueType::Bool), true));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("the type is unknown here"));
    QVERIFY(!ValueHost::Create("/A/D", Described(ValueType::Other), QVariant()));
    QCOMPARE(ValueHost::CountValues(), 1);
}

void tst_tree::createGivesUpAgainstAnObserverThatKeepsThePath()
{
    OwnTree tree;
    Watcher watcher([&](Observable*, TChangeCode) {
        if (Tree::Instance() && !Tree::Instance()->FindValue("/A/B")) {
            if (ValueBase* value = MakeInt("/A/B")) {
                value->AddObserver(&watcher);
            }
        }
    });
    MakeInt("/A/B")->AddObserver(&watcher);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("an observer puts one of another type there"));
    QVERIFY(!ValueHost::Create("/A/B", Described(ValueType::Text), "x"));
    QVERIFY(dynamic_cast<IntValue*>(Tree::Instance()->FindValue("/A/B")));
    watcher.onUpdate = nullptr;
}

void tst_tree::createWhileAnObserverMakesTheSamePath()
{
    OwnTree tree;
    Watcher watcher([](Observable*, TChangeCode) { MakeText("/A/B", "first"); });
    MakeInt("/A/B")->AddObserver(&watcher);
    ValueBase* value = ValueHost::Create("/A/B", Described(ValueType::Text), "second");
    QVERIFY(value);
    QCOMPARE(Tree::Instance()->FindValue("/A/B"), value);
    QCOMPARE(value->GetText(), QString("second"));
    QCOMPARE(ValueHost::CountValues(), 1);
}

void tst_tree::createWhileAnObserverDeletesThePath()
{
    OwnTree tree;
    Watcher watcher([](Observable*, TChangeCode) { Tree::Instance()->DeleteValue("/A/B"); });
    MakeInt("/A/B")->AddObserver(&watcher);
    QVERIFY(!ValueHost::Create("/A/B", Limited(ValueType::Integer, 0, 5), 3));
    QCOMPARE(ValueHost::CountValues(), 0);
}

void tst_tree::valuesBelowAreInTheOrderOfMaking()
{
    OwnTree tree;
    for (const char* path : {"/R/D/x", "/R/a", "/RX/v", "/R/D/E/y", "/R/b"}) {
        MakeInt(path);
    }
    QCOMPARE(PathsOf(ValueHost::ValuesBelow("/R")), (QStringList{"/R/D/x", "/R/a", "/R/D/E/y", "/R/b"}));
    QCOMPARE(PathsOf(ValueHost::ValuesBelow("/R/D/E/y")), QStringList{"/R/D/E/y"});
    QCOMPARE(ValueHost::ValuesBelow("").size(), 5);
    QVERIFY(ValueHost::ValuesBelow("/X").isEmpty());
}

void tst_tree::aClientIsKnownByItsName()
{
    class Client : public IVtClient, public Observable
    {
    public:
        void AddObserver(IObserver* observer) override { Observable::AddObserver(observer); }
        void DeleteObserver(IObserver* observer) override { Observable::DeleteObserver(observer); }
        QString GetServerAddress() override { return QString(); }
        void Flush() override {}
        void HookValues(const QByteArray&, const QByteArray&) override {}
        void ReleaseValues(const QByteArray&) override {}
        bool IsNodeServed(Node*) override { return false; }
        bool HasServedValues() override { return false; }
        bool IsConnected() override { return false; }
    };
    Client client;
    VtClientCenter* center = VtClientCenter::Instance();
    QVERIFY(center);
    QVERIFY(!center->GetVtClient("VTConnectToDRV"));
    ValueHost::SetClient("VTConnectToDRV", &client);
    QCOMPARE(center->GetVtClient("VTConnectToDRV"), static_cast<IVtClient*>(&client));
    QVERIFY(!center->GetVtClient("vtconnecttodrv"));
    Watcher watcher([&](Observable* subject, TChangeCode) {
        QCOMPARE(dynamic_cast<IVtClient*>(subject), static_cast<IVtClient*>(&client));
    });
    center->GetVtClient("VTConnectToDRV")->AddObserver(&watcher);
    client.NotifyObservers(CC_CONNECTED, nullptr);
    QCOMPARE(watcher.codes, QVector<TChangeCode>{CC_CONNECTED});
    ValueHost::SetClient("VTConnectToDRV", nullptr);
    QVERIFY(!center->GetVtClient("VTConnectToDRV"));
}

QTEST_GUILESS_MAIN(tst_tree)
#include "tst_tree.moc"
