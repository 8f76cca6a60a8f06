#include "guibase/guibase.h"

#include <QPointer>
#include <QWidget>
#include <functional>
#include <utility>

#include "guibase/guibasehost.h"

class GuiBasePrivate
{
public:
    static GuiBase* Create() { return new GuiBase; }
    static GuiBasePrivate& Get() { return *GuiBase::Instance()->d; }

    void SetMainWidget(QWidget* widget)
    {
        if (m_MainWidget == widget)
            return;
        QObject::disconnect(m_Destroyed);
        m_MainWidget = widget;
        if (widget)
            m_Destroyed = QObject::connect(widget, &QObject::destroyed, [this] {
                m_MainWidget.clear();  // a widget tells of its end before guarded pointers to it are cleared
                Tell();
            });
        Tell();
    }

    QPointer<QWidget> m_MainWidget;
    std::function<void(QWidget*)> m_Listener;

private:
    void Tell()
    {
        // A copy, since the listener may set another one.
        if (const std::function<void(QWidget*)> listener = m_Listener)
            listener(m_MainWidget);
    }

    QMetaObject::Connection m_Destroyed;
};

GuiBase::GuiBase() : d(new GuiBasePrivate) {}

GuiBase::~GuiBase()
{
    delete d;
}

// Never destroyed: plug-in instances may outlive every static object of this library.
GuiBase* GuiBase::Instance()
{
    static GuiBase* const instance = GuiBasePrivate::Create();
    return instance;
}

void GuiBase::SetMainWidget(QWidget* widget)
{
    d->SetMainWidget(widget);
}

QWidget* GuiBaseHost::MainWidget()
{
    return GuiBasePrivate::Get().m_MainWidget;
}

void GuiBaseHost::SetMainWidgetListener(std::function<void(QWidget*)> listener)
{
    GuiBasePrivate::Get().m_Listener = std::move(listener);
}
