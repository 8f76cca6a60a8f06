#ifndef HOST_SPLITTER_H
#define HOST_SPLITTER_H

#include <QtCore/QtGlobal>
#if QT_VERSION < 0x050000
#include <QtGui/QSplitter>
#else
#include <QtWidgets/QSplitter>
#endif

#include "guibase/guibase_global.h"

// A splitter whose handle can be seen, found with the keyboard and moved with the arrow keys.
class GUIBASE_EXPORT Splitter : public QSplitter
{
    Q_OBJECT
public:
    explicit Splitter(QWidget* parent = 0);
    explicit Splitter(Qt::Orientation orientation, QWidget* parent = 0);
    ~Splitter();

protected:
    QSplitterHandle* createHandle();

private:
    Q_DISABLE_COPY(Splitter)
};

#endif
