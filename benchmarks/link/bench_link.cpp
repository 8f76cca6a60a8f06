#include <QCoreApplication>

#include "driverprocess.h"
#include "figures.h"

// `--stopped SECONDS` shortens the stop of the stopped reader for a quick look.
int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.value(0) == QLatin1String("--serve") && arguments.size() == 4)
        return Bench::serve(arguments.mid(1));
    int stoppedSeconds = 30;
    if (arguments.value(0) == QLatin1String("--stopped"))
        stoppedSeconds = qMax(1, arguments.value(1).toInt());
    Bench::measureCodec();
    Bench::measureUpdates();
    Bench::measureSnapshots();
    Bench::measureStoppedReader(stoppedSeconds);
    return 0;
}
