#ifndef HOST_VCLINEEDIT_H
#define HOST_VCLINEEDIT_H

#include <QtCore/QString>
#if QT_VERSION < 0x050000
#include <QtGui/QLineEdit>
#else
#include <QtWidgets/QLineEdit>
#endif

#include "valuecontrols/valuecontrols_global.h"

class VCLineEditPrivate;

// An edit for a value as text. A number is shown in groups of three digits with its unit, takes the
// prefixes k, M and G, and the digit under the cursor steps with Up and Down. Enter writes, Escape
// and leaving the field take the entry back.
class VALUECONTROLS_EXPORT VCLineEdit : public QLineEdit
{
    Q_OBJECT
public:
    enum LineEditType
    {
        PLAIN = 0,  // text as it comes
        NUMBER = 1  // digits grouped, right for a frequency, once a numeric value is bound
    };

    VCLineEdit(QWidget* parent, const char* name, LineEditType type);
    ~VCLineEdit();

    // Shows a text (not written to the value). False when that changes nothing.
    bool SetText(const QString& text);

    // True when the tree has a value at the path.
    bool SetText_ValuePath(const QString& path);

protected:
    bool event(QEvent* event);
    void keyPressEvent(QKeyEvent* event);
    void focusInEvent(QFocusEvent* event);
    void focusOutEvent(QFocusEvent* event);
    void paintEvent(QPaintEvent* event);
    void contextMenuEvent(QContextMenuEvent* event);

private:
    Q_DISABLE_COPY(VCLineEdit)
    friend class VCLineEditPrivate;
    VCLineEditPrivate* d;
};

#endif
