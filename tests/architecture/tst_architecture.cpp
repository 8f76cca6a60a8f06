#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTest>

// Reads the sources and fails on what the folders promise each other not to do.
namespace {

const QString root = RX_SOURCE_DIR;

// An area of the tree and the areas that its files may include, besides itself.
struct Arrows
{
    const char* area;
    QStringList may;
};

// plugins/NAME stands for its own; its table row may say more than the row of all plug-ins.
const Arrows allowed[] = {
    {"host", {}},
    {"ddcgui", {"host"}},
    {"plugins", {"host"}},
    {"plugins/audiolink", {"host", "link"}},
    {"plugins/receivergui", {"host", "ddcgui"}},
    {"workbench", {"host", "link"}},
    {"link", {}},
    {"receiver", {"link"}},
    {"tools", {"link"}},
    {"station", {}},
    {"mapview", {}},
};

// Texts of our own only: no folder of a machine, no registry that packages come from. Put together
// from pieces, so that this file does not contain what it forbids.
QStringList ForbiddenTexts()
{
    return {QString("/") + "work/",        QString("/") + "home/",           QString("/") + "root/",
            QString("/") + "Users/",       QString("pypi") + ".org",         QString("pythonhosted") + ".org",
            QString("npmjs") + ".org",     QString("proxy.golang") + ".org", QString("crates") + ".io",
            QString("deb.debian") + ".org"};
}

// What one of the toolkits 4.8, 5.15 and 6 does not have, or C++14 does not.
struct Forbidden
{
    const char* pattern;
    const char* why;
};

const Forbidden forbiddenApi[] = {
    {"\\bQStringLiteral\\b", "not in Qt 4; use QLatin1String"},
    {"\\bQ_ENUM(_NS)?\\b", "not in Qt 4"},
    {"\\bQ_GADGET\\b.*\\bQ_ENUM\\b", "not in Qt 4"},
    {"\\bconnect\\([^;]*&[A-Za-z_:]+::[^;]*\\)", "functor connections are not in Qt 4; use SIGNAL and SLOT"},
    {"\\bQOverload\\b|\\bqOverload\\b", "not in Qt 4"},
    {"\\bQRegExp\\b", "not in Qt 6"},
    {"\\bQRegularExpression\\b", "not in Qt 4"},
    {"\\bQ_NULLPTR\\b", "plain nullptr is enough"},
    {"\\bqAsConst\\b|\\bstd::as_const\\b", "not in Qt 4 and C++14"},
    {"\\bQStringView\\b|\\bQLatin1StringView\\b|\\bQAnyStringView\\b", "not in Qt 4 and 5.9"},
    {"\\bstd::(optional|variant|any|string_view|filesystem)\\b", "not in C++14"},
    {"\\bif constexpr\\b|\\[\\[(nodiscard|maybe_unused)\\]\\]", "not in C++14"},
    {"^\\s*namespace \\w+::", "nested namespaces are not in C++14"},
    {"\\bQTimer::singleShot\\([^;]*\\[", "functors are not in Qt 4"},
    {"\\bhorizontalAdvance\\b", "not in Qt 4"},
    {"\\btoAscii\\b|\\bfromAscii\\b", "not in Qt 6"},
    {"#include\\s*<QtWidgets/(?!.*\\bhost\\b)", "only beside the version of Qt 4 (checked apart)"},
};

QString Read(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// Comments and texts in quotes are blanked, lines kept.
QString CodeOnly(const QString& text)
{
    static const QRegularExpression noise(
        "//[^\\n]*|/\\*.*?\\*/|\"(?:[^\"\\\\\\n]|\\\\.)*\"|'(?:[^'\\\\\\n]|\\\\.)*'",
        QRegularExpression::DotMatchesEverythingOption);
    QString code;
    qsizetype from = 0;
    QRegularExpressionMatchIterator it = noise.globalMatch(text);
    while (it.hasNext()) {
        const QRegularExpressionMatch match = it.next();
        code += text.mid(from, match.capturedStart() - from);
        code += QString(match.captured().count('\n'), '\n');
        if (match.captured().startsWith('"'))
            code += "\"\"";
        from = match.capturedEnd();
    }
    return code + text.mid(from);
}

QStringList Sources(const QString& area)
{
    QStringList files;
    QDirIterator it(root + '/' + area, {"*.h", "*.cpp"}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        files.append(it.next());
    files.sort();
    return files;
}

QString Shown(const QString& path)
{
    return QDir(root).relativeFilePath(path);
}

// plugins/NAME for a plug-in, else the first folder.
QString AreaOf(const QString& path)
{
    const QStringList parts = Shown(path).split('/');
    return parts.first() == "plugins" && parts.size() > 2 ? parts.at(0) + '/' + parts.at(1) : parts.first();
}

const Arrows* Row(const QString& area)
{
    const Arrows* found = nullptr;
    for (const Arrows& row : allowed)
        if (area == row.area || (!found && area.startsWith(QString(row.area) + '/')))
            found = &row;
    return found;
}

// The file that an include line means, as the compiler finds it; empty for one of a library.
QString Resolve(const QString& from, const QString& name)
{
    QStringList places = {QFileInfo(from).path(), root, root + "/host", root + "/workbench"};
    if (AreaOf(from) == "ddcgui")
        places.append(root + "/ddcgui");  // the module is a root of its own
    for (const QString& place : places) {
        const QFileInfo file(place + '/' + name);
        if (file.isFile())
            return QDir::cleanPath(file.absoluteFilePath());
    }
    return QString();
}

QStringList WrongArrows(const QString& file, const QString& text)
{
    static const QRegularExpression include("^\\s*#\\s*include\\s*([<\"])([^>\"]+)[>\"]",
                                            QRegularExpression::MultilineOption);
    QStringList wrong;
    const QString area = AreaOf(file);
    const Arrows* row = Row(area);
    QRegularExpressionMatchIterator it = include.globalMatch(text);
    while (it.hasNext()) {
        const QRegularExpressionMatch match = it.next();
        const QString name = match.captured(2);
        const QString target = Resolve(file, name);
        if (target.isEmpty()) {
            if (match.captured(1) == "\"" && !name.endsWith(".moc"))
                wrong.append(Shown(file) + ": no file in the tree for \"" + name + '"');
            continue;
        }
        const QString other = AreaOf(target);
        if (other != area && !(row && row->may.contains(other)))
            wrong.append(Shown(file) + ": " + area + " must not include " + Shown(target));
    }
    return wrong;
}

QStringList ForbiddenIn(const QString& file, const QString& text)
{
    QStringList wrong;
    const QStringList lines = CodeOnly(text).split('\n');
    for (const Forbidden& forbidden : forbiddenApi) {
        const QRegularExpression pattern(forbidden.pattern);
        if (QString(forbidden.pattern).contains("QtWidgets")) {
            if (text.contains(pattern) && !text.contains("QT_VERSION < 0x050000"))
                wrong.append(Shown(file) + ": QtWidgets without the include of Qt 4 beside it");
            continue;
        }
        for (int i = 0; i < lines.size(); ++i)
            if (lines.at(i).contains(pattern))
                wrong.append(QString("%1:%2: %3: %4")
                                 .arg(Shown(file))
                                 .arg(i + 1)
                                 .arg(lines.at(i).trimmed(), QString(forbidden.why)));
    }
    return wrong;
}

// Overrides between a slots or signals label and the next plain access label.
QStringList OverridesAmongSlots(const QString& file, const QString& text)
{
    static const QRegularExpression label(
        "^\\s*(public|protected|private)?\\s*(Q_SLOTS|Q_SIGNALS)?\\s*:\\s*$");
    QStringList wrong;
    bool inside = false;
    const QStringList lines = CodeOnly(text).split('\n');
    for (int i = 0; i < lines.size(); ++i) {
        const QRegularExpressionMatch match = label.match(lines.at(i));
        if (match.hasMatch() && !match.captured().trimmed().isEmpty() && lines.at(i).trimmed() != ":")
            inside = !match.captured(2).isEmpty();
        else if (lines.at(i).startsWith("};"))
            inside = false;
        else if (inside && lines.at(i).contains(QRegularExpression("\\boverride\\b")))
            wrong.append(QString("%1:%2: override in a slots section").arg(Shown(file)).arg(i + 1));
    }
    return wrong;
}

}  // namespace

class tst_Architecture : public QObject
{
    Q_OBJECT
private slots:
    void sourcesAreFound()
    {
        for (const char* area : {"host", "ddcgui", "workbench", "link", "receiver"})
            QVERIFY2(!Sources(area).isEmpty(), area);
    }

    void everyFolderIncludesOnlyWhatItMay_data()
    {
        QTest::addColumn<QString>("area");
        for (const Arrows& row : allowed)
            if (!QString(row.area).contains('/') && QDir(root + '/' + row.area).exists())
                QTest::newRow(row.area) << row.area;
    }
    void everyFolderIncludesOnlyWhatItMay()
    {
        QFETCH(QString, area);
        QStringList wrong;
        for (const QString& file : Sources(area))
            wrong += WrongArrows(file, Read(file));
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join('\n')));
    }

    void arrowsThatAreNotListedAreFound_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("line");
        QTest::addColumn<bool>("wrong");
        QTest::newRow("module to host") << "ddcgui/x.cpp"
                                        << "#include \"valueframework/tree.h\"" << false;
        QTest::newRow("module to workbench") << "ddcgui/x.cpp"
                                             << "#include \"valueframework/valuehost.h\"" << true;
        QTest::newRow("module to workbench in brackets") << "ddcgui/x.cpp"
                                                         << "#  include <valueframework/valuehost.h>" << true;
        QTest::newRow("module to link") << "ddcgui/x.cpp"
                                        << "#include \"link/messages.h\"" << true;
        QTest::newRow("host to workbench") << "host/base/x.h"
                                           << "#include \"base/basehost.h\"" << true;
        QTest::newRow("receiver to link") << "receiver/x.cpp"
                                          << "#include \"link/messages.h\"" << false;
        QTest::newRow("receiver to host") << "receiver/x.cpp"
                                          << "#include \"valueframework/tree.h\"" << true;
        QTest::newRow("workbench to module") << "workbench/app/x.cpp"
                                             << "#include \"ddcgui/ddcgui.h\"" << true;
        QTest::newRow("receiver window to module") << "plugins/receivergui/x.cpp"
                                                   << "#include \"ddcgui/ddcguiffm.h\"" << false;
        QTest::newRow("audio link to module") << "plugins/audiolink/x.cpp"
                                              << "#include \"ddcgui/ddcguiffm.h\"" << true;
        QTest::newRow("audio link to link") << "plugins/audiolink/x.cpp"
                                            << "#include \"link/messages.h\"" << false;
        QTest::newRow("sender to link") << "plugins/messagesender/x.cpp"
                                        << "#include \"link/messages.h\"" << true;
        QTest::newRow("nothing there") << "ddcgui/x.cpp"
                                       << "#include \"nothing/there.h\"" << true;
        QTest::newRow("a library") << "ddcgui/x.cpp"
                                   << "#include <QString>" << false;
    }
    void arrowsThatAreNotListedAreFound()
    {
        QFETCH(QString, file);
        QFETCH(QString, line);
        QFETCH(bool, wrong);
        QCOMPARE(!WrongArrows(root + '/' + file, line + '\n').isEmpty(), wrong);
    }

    void moduleAndInterfacesKeepToWhatAllToolkitsHave_data()
    {
        QTest::addColumn<QString>("area");
        QTest::newRow("ddcgui") << "ddcgui";
        QTest::newRow("host") << "host";
    }
    void moduleAndInterfacesKeepToWhatAllToolkitsHave()
    {
        QFETCH(QString, area);
        QStringList wrong;
        for (const QString& file : Sources(area)) {
            const QString text = Read(file);
            wrong += ForbiddenIn(file, text);
            wrong += OverridesAmongSlots(file, text);
        }
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join('\n')));
    }

    void whatNotAllToolkitsHaveIsFound_data()
    {
        QTest::addColumn<QString>("code");
        QTest::addColumn<bool>("wrong");
        QTest::newRow("literal") << "setText(QStringLiteral(\"x\"));" << true;
        QTest::newRow("literal in a comment") << "// QStringLiteral" << false;
        QTest::newRow("literal in a text") << "setText(\"QStringLiteral\");" << false;
        QTest::newRow("enum") << "Q_ENUM(Kind)" << true;
        QTest::newRow("functor") << "connect(button, &QPushButton::clicked, this, &Dialog::accept);" << true;
        QTest::newRow("macros") << "connect(&m_State, SIGNAL(a()), this, SLOT(b()));" << false;
        QTest::newRow("regular expression") << "QRegExp expression;" << true;
        QTest::newRow("optional") << "std::optional<int> x;" << true;
        QTest::newRow("slot override") << "public Q_SLOTS:\n    void done() override;\n" << true;
        QTest::newRow("plain override") << "public Q_SLOTS:\n    void a();\npublic:\n    void b() override;\n"
                                        << false;
        QTest::newRow("widgets") << "#include <QtWidgets/QLabel>" << true;
    }
    void whatNotAllToolkitsHaveIsFound()
    {
        QFETCH(QString, code);
        QFETCH(bool, wrong);
        const QString file = root + "/ddcgui/x.h";
        QCOMPARE(!(ForbiddenIn(file, code) + OverridesAmongSlots(file, code)).isEmpty(), wrong);
    }

    void noFileNamesAFolderOfAMachineOrARegistry()
    {
        QStringList wrong;
        for (const char* area :
             {"host", "ddcgui", "workbench", "plugins", "link", "receiver", "tools", "station", "mapview",
              "tests", "benchmarks", "cmake", "config", "docs", "translations"}) {
            QDirIterator it(root + '/' + area, QDir::Files, QDirIterator::Subdirectories);
            while (it.hasNext()) {
                const QString file = it.next();
                if (QStringList({"png", "wav", "qm", "json", "svg"}).contains(QFileInfo(file).suffix()))
                    continue;
                const QString text = Read(file);
                for (const QString& forbidden : ForbiddenTexts())
                    if (text.contains(forbidden))
                        wrong.append(Shown(file) + ": " + forbidden);
            }
        }
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join('\n')));
    }

    void nothingOutsideTheReceiverWindowIncludesTheModule()
    {
        QStringList wrong;
        for (const char* area : {"workbench", "link", "receiver", "tools", "station", "host"})
            for (const QString& file : Sources(area))
                if (Read(file).contains(QRegularExpression("#\\s*include\\s*[<\"]ddcgui")))
                    wrong.append(Shown(file));
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join('\n')));
    }
};

QTEST_GUILESS_MAIN(tst_Architecture)
#include "tst_architecture.moc"
