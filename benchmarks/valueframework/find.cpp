// Finding a value among 100,000 paths: in the tree, and in a QHash of the same paths. Also what
// such a tree costs to build, in time and in memory.

#include <malloc.h>

#include <QHash>
#include <QVector>
#include <algorithm>
#include <cstdlib>
#include <random>

#include "benchmarks/valueframework/measure.h"
#include "valueframework/tree.h"
#include "valueframework/value.h"
#include "valueframework/valuehost.h"

namespace {

constexpr int valueCount = 100000;
constexpr int rounds = 16;

double HeapBytes()
{
    return double(mallinfo2().uordblks) + double(mallinfo2().hblkhd);
}

QVector<QString> MakePaths()
{
    QVector<QString> paths;
    for (int i = 0; i < valueCount; ++i) {
        paths.append(
            QStringLiteral("/RX%1/DDC/DDC%2/Setting%3").arg(i / 10000 + 1).arg(i / 20 % 500 + 1).arg(i % 20));
    }
    return paths;
}

// The same texts once more, in random order and in strings of their own: nobody who looks for a
// path holds the string that the tree holds.
QVector<QString> Shuffled(const QVector<QString>& paths)
{
    QVector<QString> copies;
    for (const QString& path : paths) {
        copies.append(QString(path.constData(), path.size()));
    }
    std::mt19937 random(4711);
    std::shuffle(copies.begin(), copies.end(), random);
    return copies;
}

void FillTree(const QVector<QString>& paths)
{
    ValueDescription description;
    description.type = ValueType::Float;
    description.unit = QStringLiteral("Hz");
    const double bytesBefore = HeapBytes();
    const double nanoseconds = Measure::NanosecondsPerCall(1, [&] {
        for (const QString& path : paths) {
            ValueHost::Create(path, description, 1.0);
        }
    });
    Measure::Print("find.create_100000", nanoseconds / 1e6, "ms", 0, "info");
    Measure::Print("find.bytes_per_value", (HeapBytes() - bytesBefore) / valueCount, "B", 0, "info");
}

}  // namespace

int main()
{
    const QVector<QString> paths = MakePaths();
    ValueHost::CreateTree();
    FillTree(paths);
    Tree* tree = Tree::Instance();
    QHash<QString, ValueBase*> peer;
    for (const QString& path : paths) {
        ValueBase* value = tree->FindValue(path);
        if (!value || value->GetPathName() != path) {
            std::fprintf(stderr, "find: no value at %s\n", qPrintable(path));
            return 1;
        }
        peer.insert(QString(path.constData(), path.size()), value);
    }
    const QVector<QString> wanted = Shuffled(paths);
    std::vector<double> ours, theirs;
    int found = 0;
    const auto inTree = [&] {
        for (const QString& path : wanted) {
            found += tree->FindValue(path) != nullptr;
        }
    };
    const auto inPeer = [&] {
        for (const QString& path : wanted) {
            found += peer.value(path) != nullptr;
        }
    };
    // Either goes first every other time: the second finds the wanted texts in the cache.
    for (int round = 0; round < rounds; ++round) {
        if (round % 2 == 0) {
            ours.push_back(Measure::NanosecondsPerCall(valueCount, inTree));
            theirs.push_back(Measure::NanosecondsPerCall(valueCount, inPeer));
        } else {
            theirs.push_back(Measure::NanosecondsPerCall(valueCount, inPeer));
            ours.push_back(Measure::NanosecondsPerCall(valueCount, inTree));
        }
    }
    if (found != 2 * rounds * valueCount) {
        std::fprintf(stderr, "find: %d of %d look-ups found a value\n", found, 2 * rounds * valueCount);
        return 1;
    }
    Measure::Print("find.ratio_qhash", Measure::Median(ours) / Measure::Median(theirs), "", 1.1, "max");
    Measure::Print("find.value", Measure::Median(ours), "ns", 0, "info");
    Measure::Print("find.qhash", Measure::Median(theirs), "ns", 0, "info");
    ValueHost::DestroyTree();
    return 0;
}
