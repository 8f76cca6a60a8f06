#pragma once

#include <QProcess>
#include <QStringList>

// The driver's side in a process of its own, so that neither its time nor its memory counts as the
// workbench's: the benchmark starts itself anew with --serve.
namespace Bench {

struct DriverLoad
{
    int values = 0;               // floats at /BENCH/V0 and on
    int events = 0;               // of those, the first ones are event values
    double updatesPerSecond = 0;  // 0: none; infinite: as many as it can
};

// The child's main function.
int serve(const QStringList& arguments);

class DriverProcess
{
public:
    explicit DriverProcess(const DriverLoad& load);
    ~DriverProcess();

    quint16 port() const { return m_port; }
    double residentMegabytes() const;

private:
    QProcess m_process;
    quint16 m_port = 0;
};

}  // namespace Bench
