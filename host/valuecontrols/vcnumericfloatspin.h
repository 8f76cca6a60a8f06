#ifndef HOST_VCNUMERICFLOATSPIN_H
#define HOST_VCNUMERICFLOATSPIN_H

#include <QtCore/QString>
#if QT_VERSION < 0x050000
#include <QtGui/QAbstractSpinBox>
#else
#include <QtWidgets/QAbstractSpinBox>
#endif
#include <QtGui/QValidator>

#include "valuecontrols/valuecontrols_global.h"

class VCNumericFloatSpinPrivate;

// A spin box for a number with unit and limits, both told by the value. Enter writes; Escape and
// leaving the field take the entry back; a step writes at once.
class VALUECONTROLS_EXPORT VCNumericFloatSpin : public QAbstractSpinBox
{
    Q_OBJECT
public:
    VCNumericFloatSpin(QWidget* parent, const char* name, bool showUnit, int flag = 1);
    ~VCNumericFloatSpin();

    void setObjectName(const QString& name);

    // True when the tree has a numeric value at the path.
    bool SetNumeric_ValuePath(const QString& path);

    void stepBy(int steps);
    QValidator::State validate(QString& input, int& position) const;
    void fixup(QString& input) const;
    QSize sizeHint() const;
    QSize minimumSizeHint() const;

protected:
    StepEnabled stepEnabled() const;
    bool event(QEvent* event);
    void keyPressEvent(QKeyEvent* event);
    void focusOutEvent(QFocusEvent* event);
    void wheelEvent(QWheelEvent* event);
    void paintEvent(QPaintEvent* event);
    void contextMenuEvent(QContextMenuEvent* event);

private:
    Q_DISABLE_COPY(VCNumericFloatSpin)
    friend class VCNumericFloatSpinPrivate;
    VCNumericFloatSpinPrivate* d;
};

#endif
