#ifndef DDCGUI_FLOATLAYOUT_H
#define DDCGUI_FLOATLAYOUT_H

#include <QLayout>
#include <QList>
#include <QMap>
#include <QRect>

// Places its items from left to right and wraps them into further rows when the width runs out;
// within a row every item is centred vertically. Contents margins are not consulted.
class FloatLayout : public QLayout
{
    Q_OBJECT
public:
    // `orientation` 1 is horizontal and matters to sizeHint only. `gap` (pixels) is the left offset
    // of every row and is added to every row's height.
    FloatLayout(int orientation, QWidget* parent, int gap);
    ~FloatLayout() override;

    void addItem(QLayoutItem* item) override;  // takes ownership
    QLayoutItem* itemAt(int index) const override;
    QLayoutItem* takeAt(int index) override;
    int count() const override;

    QSize sizeHint() const override;
    QSize minimumSize() const override;
    Qt::Orientations expandingDirections() const override;
    void setGeometry(const QRect& rect) override;
    bool hasHeightForWidth() const override;
    int heightForWidth(int width) const override;

private:
    Q_DISABLE_COPY(FloatLayout)

    typedef QMap<QLayoutItem*, QRect> Row;

    // Returns the height used. `testOnly` moves nothing.
    int Place(const QRect& rect, bool testOnly) const;
    static void EndRow(Row& row, int rowHeight, bool testOnly);

    QList<QLayoutItem*> m_Items;
    int m_Orientation;
    int m_Gap;
};

#endif
