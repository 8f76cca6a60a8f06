// What binding a panel costs, and that it does not depend on the size of the tree.
#include <QElapsedTimer>
#include <algorithm>
#include <cstdio>
#include <vector>

#include "base/basehost.h"
#include "ddcguiffm.h"
#include "startup/kestapplication.h"
#include "tests/support/testtree.h"

namespace {

const int smallTree = 100;
const int largeTree = 100000;
const int rounds = 15;
const int bindingsPerRound = 40;
const double mostTimesSlower = 3;

void Print(const char* name, double value, const char* unit, double bound, const char* sense)
{
    std::printf("{\"name\":\"%s\",\"value\":%.4f,\"unit\":\"%s\",\"bound\":%g,\"sense\":\"%s\"}\n", name,
                value, unit, bound, sense);
}

// A receiver with two channels among `total` values.
void Fill(TestTree& tree, int total)
{
    tree.AddDevice();
    tree.AddChannel("/RX1/DDC/DDC1");
    tree.AddChannel("/RX1/DDC/DDC2");
    for (int i = 0; ValueHost::CountValues() < total; ++i)
        TestTree::AddFloat(
            QString("/RX%1/DDC/DDC%2/Value%3").arg(2 + i / 1000).arg(i % 1000 / 50).arg(i % 50), i, "Hz");
}

// Microseconds of one binding: the best of the rounds, so that what else the machine does is left
// out. Negative when the panel was not bound.
double MeasureBinding(int total)
{
    TestTree tree;
    Fill(tree, total);
    DdcGuiFfm panel(nullptr, nullptr, "DDC1", "/RX1", "/RX1/DDC/DDC1", true);
    panel.ConnectVtValuesToControls("DDC1");
    const int observers = TestTree::Find("/RX1/DDC/DDC1/Frequency")->CountObservers();
    if (ValueHost::CountValues() < total || observers != 3)
        return -1;

    double best = 1e30;
    QElapsedTimer timer;
    for (int round = 0; round < rounds; ++round) {
        timer.start();
        for (int i = 0; i < bindingsPerRound; ++i)
            panel.ConnectVtValuesToControls(i % 2 ? "DDC1" : "DDC2");
        best = std::min(best, double(timer.nsecsElapsed()) / 1000 / bindingsPerRound);
        QCoreApplication::processEvents();
    }
    return TestTree::Find("/RX1/DDC/DDC1/Frequency")->CountObservers() == 3 ? best : -1;
}

}  // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    KestApplication application(argc, argv);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    BaseHost::SetTraceMask(0);

    // In turn, small and large, so that both see the same machine.
    std::vector<double> ratios;
    double smallTime = 1e30;
    double largeTime = 1e30;
    for (int i = 0; i < 3; ++i) {
        const double small = MeasureBinding(smallTree);
        const double large = MeasureBinding(largeTree);
        if (small < 0 || large < 0) {
            std::fprintf(stderr, "the panel was not bound to its values\n");
            return 1;
        }
        ratios.push_back(large / small);
        smallTime = std::min(smallTime, small);
        largeTime = std::min(largeTime, large);
    }
    std::sort(ratios.begin(), ratios.end());
    Print("ffm.bind_ratio", ratios[ratios.size() / 2], "ratio", mostTimesSlower, "max");
    Print("ffm.bind_small_tree", smallTime, "us", 0, "info");
    Print("ffm.bind_large_tree", largeTime, "us", 0, "info");
    return 0;
}
