#ifndef HOST_VCCHECKBOX_H
#define HOST_VCCHECKBOX_H

#include <QtCore/QString>
#if QT_VERSION < 0x050000
#include <QtGui/QCheckBox>
#else
#include <QtWidgets/QCheckBox>
#endif

#include "valuecontrols/valuecontrols_global.h"

class VCCheckBoxPrivate;

// A check box; bound to a path it shows and switches a value of bool type. A click writes at once;
// clicked() comes after the write. `name` is the caption until SetText.
class VALUECONTROLS_EXPORT VCCheckBox : public QCheckBox
{
    Q_OBJECT
public:
    VCCheckBox(QWidget* parent, const char* name, int flag = 1);
    ~VCCheckBox();

    void SetText(const QString& text);

    // True when the tree has a bool value at the path.
    bool Set_ValuePath(const QString& path);

protected:
    bool event(QEvent* event);
    void nextCheckState();
    void paintEvent(QPaintEvent* event);
    void contextMenuEvent(QContextMenuEvent* event);

private:
    Q_DISABLE_COPY(VCCheckBox)
    friend class VCCheckBoxPrivate;
    VCCheckBoxPrivate* d;
};

#endif
