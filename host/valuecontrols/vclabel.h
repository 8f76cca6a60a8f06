#ifndef HOST_VCLABEL_H
#define HOST_VCLABEL_H

#include <QtCore/QString>
#if QT_VERSION < 0x050000
#include <QtGui/QLabel>
#else
#include <QtWidgets/QLabel>
#endif

#include "valuecontrols/valuecontrols_global.h"

class VCLabelPrivate;

// A label; bound to a path it shows the value as text. `flags` is reserved and 0.
class VALUECONTROLS_EXPORT VCLabel : public QLabel
{
    Q_OBJECT
public:
    VCLabel(QWidget* parent, const char* name, unsigned flags = 0);
    ~VCLabel();

    void SetText(const QString& text);

    // True when the tree has a value at the path. `translate` shows a selection's text translated.
    bool SetText_ValuePath(const QString& path, bool translate);

protected:
    bool event(QEvent* event);
    void resizeEvent(QResizeEvent* event);
    void contextMenuEvent(QContextMenuEvent* event);

private:
    Q_DISABLE_COPY(VCLabel)
    friend class VCLabelPrivate;
    VCLabelPrivate* d;
};

#endif
