#pragma once

#include <memory>

#include "ddcguiffm.h"
#include "tests/ddcgui/modulefixture.h"

// A panel on a tree of its own, with nothing left over between tests.
class PanelFixture
{
public:
    PanelFixture()
    {
        tree.AddDevice();
        BaseHost::SetTraceMask(0x20);
    }
    ~PanelFixture()
    {
        panel.reset();
        StartupHost::DestroyPlugins();
        StartupHost::ClearFactories();
        StartupHost::ClearConfiguration();
        ReceiverCommonHost::SetBoxedVersion(false);
        BaseHost::SetTraceMask(0x20);
    }

    static QString DdcPath(const QString& name) { return "/RX1/DDC/" + name; }

    // Makes the panel; the channel must have been added to the tree where it is to have values.
    DdcGuiFfm& Make(const QString& name, bool selectable = true)
    {
        panel.reset(new DdcGuiFfm(nullptr, nullptr, name, "/RX1", DdcPath(name), selectable));
        return *panel;
    }

    // With a channel in the tree, bound.
    DdcGuiFfm& Bind(const QString& name, TestTree::ChannelKind kind = TestTree::Plain, bool selectable = true)
    {
        tree.AddChannel(DdcPath(name), kind);
        Make(name, selectable).ConnectVtValuesToControls(name);
        return *panel;
    }

    template <class T>
    T* Child(const char* objectName) const
    {
        return panel->findChild<T*>(objectName);
    }

    // As an embedding program would call a slot.
    void CallSlot(const char* slot, bool argument)
    {
        QMetaObject::invokeMethod(panel.get(), slot, Qt::DirectConnection, Q_ARG(bool, argument));
    }

    TestTree tree;
    std::unique_ptr<DdcGuiFfm> panel;
};
