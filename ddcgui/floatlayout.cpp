#include "floatlayout.h"

namespace {

const int horizontal = 1;

}  // namespace

FloatLayout::FloatLayout(int orientation, QWidget* parent, int gap)
    : QLayout(parent), m_Orientation(orientation), m_Gap(gap)
{}

FloatLayout::~FloatLayout()
{
    while (QLayoutItem* item = takeAt(0))
        delete item;
}

void FloatLayout::addItem(QLayoutItem* item)
{
    m_Items.append(item);
}

QLayoutItem* FloatLayout::itemAt(int index) const
{
    return index >= 0 && index < count() ? m_Items.at(index) : nullptr;
}

QLayoutItem* FloatLayout::takeAt(int index)
{
    return index >= 0 && index < count() ? m_Items.takeAt(index) : nullptr;
}

int FloatLayout::count() const
{
    return int(m_Items.size());
}

QSize FloatLayout::sizeHint() const
{
    int width = 0;
    int height = 0;
    for (int i = 0; i < count(); ++i) {
        const QSize hint = m_Items.at(i)->sizeHint();
        if (m_Orientation == horizontal) {
            width += hint.width();
            height = qMax(height, hint.height());
        } else {
            height += hint.height();
            width = qMax(width, hint.width());
        }
    }
    return QSize(width, height);
}

QSize FloatLayout::minimumSize() const
{
    // Of the hints, not of the items' minimum sizes: a panel never gets so narrow that a control
    // of it is squeezed below its natural size.
    QSize size(0, 0);
    for (int i = 0; i < count(); ++i)
        size = size.expandedTo(m_Items.at(i)->sizeHint());
    return size;
}

Qt::Orientations FloatLayout::expandingDirections() const
{
    return Qt::Horizontal;
}

void FloatLayout::setGeometry(const QRect& rect)
{
    QLayout::setGeometry(rect);
    Place(rect, false);
}

bool FloatLayout::hasHeightForWidth() const
{
    return true;
}

int FloatLayout::heightForWidth(int width) const
{
    return Place(QRect(0, 0, width, 0), true);
}

int FloatLayout::Place(const QRect& rect, bool testOnly) const
{
    int x = m_Gap;
    int rowTop = 0;
    int rowHeight = 0;
    Row row;
    for (int i = 0; i < count(); ++i) {
        QLayoutItem* item = m_Items.at(i);
        const QSize hint = item->sizeHint();
        if (x + hint.width() > rect.width() && x != 0) {
            EndRow(row, rowHeight, testOnly);
            x = m_Gap;
            rowTop += rowHeight;
            rowHeight = 0;
        }
        row.insert(item, QRect(QPoint(rect.x() + x, rect.y() + rowTop), hint));
        rowHeight = qMax(rowHeight, hint.height() + m_Gap);
        x += spacing() + hint.width();
    }
    EndRow(row, rowHeight, testOnly);
    return spacing() + rowTop + rowHeight;
}

void FloatLayout::EndRow(Row& row, int rowHeight, bool testOnly)
{
    if (testOnly) {
        row.clear();
        return;
    }
    for (Row::const_iterator it = row.constBegin(); it != row.constEnd(); ++it) {
        const int down = (rowHeight - it.value().height()) >> 1;
        it.key()->setGeometry(it.value().translated(0, down));
    }
    row.clear();
}
