#include "valuetree/panelhelpers.h"

#include <QLayout>
#include <QWidget>

namespace {

const int widthWithoutPanel = 150;  // pixels
const int columnMargin = 10;        // pixels that a column stays narrower than its panel

}  // namespace

void AddColumn(QLayout* outer, QLayout* inner)
{
    if (!outer || !inner)
        return;
    inner->setContentsMargins(0, 0, 0, 0);

    int width = widthWithoutPanel;
    if (const QWidget* panel = outer->parentWidget())
        width = panel->minimumSize().width();

    QWidget* column = new QWidget;
    column->setMaximumWidth(width - columnMargin);
    column->setLayout(inner);
    outer->addWidget(column);
}
