#ifndef HOST_VCBUTTON_H
#define HOST_VCBUTTON_H

#include <QtCore/QString>
#if QT_VERSION < 0x050000
#include <QtGui/QToolButton>
#else
#include <QtWidgets/QToolButton>
#endif
#include <QtGui/QPixmap>

#include "valuecontrols/valuecontrols_global.h"

class VCButtonPrivate;

// A button with a picture for each key of a selection. Bound to a path it shows the picture of the
// current key; a click selects the next item.
class VALUECONTROLS_EXPORT VCButton : public QToolButton
{
    Q_OBJECT
public:
    // `text` is the accessible name and shows while there is no picture. `autoRaise` draws the frame
    // only under the pointer.
    VCButton(QWidget* parent, const QString& text, bool autoRaise = false, int flag = 1);
    ~VCButton();

    // True when the tree has a selection at the path.
    bool SetValueSelection_ValuePath(const QString& path);

    void SetDefaultPicture(const char* const* xpm);  // for keys without a picture of their own

    // `active` marks the picture of the switched-on state: the button looks pressed with it.
    void SetSpecialPicture(int key, const char* const* xpm, bool active = false);
    void SetSpecialPicture(int key, const QPixmap& picture, bool active = false);

protected:
    bool event(QEvent* event);
    void paintEvent(QPaintEvent* event);
    void contextMenuEvent(QContextMenuEvent* event);

private:
    Q_DISABLE_COPY(VCButton)
    friend class VCButtonPrivate;
    VCButtonPrivate* d;
};

#endif
