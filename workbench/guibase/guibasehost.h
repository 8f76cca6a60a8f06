#pragma once

#include <functional>

class QWidget;

// The workbench's side of the GUI base library.
namespace GuiBaseHost {

QWidget* MainWidget();  // as set by GuiBase::SetMainWidget; null when it was destroyed meanwhile

// Called when the main widget changes.
void SetMainWidgetListener(std::function<void(QWidget*)> listener);

}  // namespace GuiBaseHost
