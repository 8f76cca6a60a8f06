#ifndef HOST_VCCOMBOBOXCLASSIC_H
#define HOST_VCCOMBOBOXCLASSIC_H

#include <QtCore/QString>
#if QT_VERSION < 0x050000
#include <QtGui/QComboBox>
#else
#include <QtWidgets/QComboBox>
#endif

#include "valuecontrols/valuecontrols_global.h"

class VCComboBoxClassicPrivate;

// A combo box over a selection's items. Choosing writes at once; a wheel over it does nothing
// unless it has the focus.
class VALUECONTROLS_EXPORT VCComboBoxClassic : public QComboBox
{
    Q_OBJECT
public:
    VCComboBoxClassic(QWidget* parent, const char* name, int flag = 1);
    ~VCComboBoxClassic();

    // True when the tree has a selection at the path.
    bool SetValueSelection_ValuePath(const QString& path);

protected:
    bool event(QEvent* event);
    void wheelEvent(QWheelEvent* event);
    void keyPressEvent(QKeyEvent* event);
    void paintEvent(QPaintEvent* event);
    void contextMenuEvent(QContextMenuEvent* event);

private:
    Q_DISABLE_COPY(VCComboBoxClassic)
    friend class VCComboBoxClassicPrivate;
    VCComboBoxClassicPrivate* d;
};

#endif
