#ifndef HOST_IMSHCLIENTDLL_H
#define HOST_IMSHCLIENTDLL_H

#include "startup/idllinstance.h"

class QToolBar;

// The message-sender client: publishes values of one channel to other stations. Configure, then Start.
class STARTUP_EXPORT IMshClientDll : public IDllInstance
{
public:
    explicit IMshClientDll(const QString& name);
    ~IMshClientDll();

    // Publishes the value at `path` under a short tag; `algorithm` names how a receiver adapts it, may be
    // empty.
    virtual void AddValue(const QString& tag, const QString& path, const QString& algorithm) = 0;
    virtual void SetFrequencyPath(const QString& path) = 0;
    virtual void SetToolBar(QToolBar* toolBar, bool flag) = 0;  // not owned
    virtual void SetFlag1(bool on) = 0;
    virtual void SetApplication(const QString& application) = 0;
    virtual void SetGroup(const QString& group) = 0;
    virtual void SetFlag2(bool on) = 0;
    virtual void SetServer(const QString& address, int port) = 0;
    virtual void Start() = 0;
    virtual void SetPdwPath(const QString& path) = 0;
    virtual void SetName(const QString& name) = 0;
    virtual void SetFlag3(bool on) = 0;
    virtual void SetFlag4(bool on) = 0;
    virtual void SetFlag5(bool on) = 0;
    virtual void SetFlag6(bool on) = 0;
};

#endif
