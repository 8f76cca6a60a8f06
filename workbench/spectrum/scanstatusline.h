#pragma once

#include <QWidget>

// One line of text below a scan: span, resolution, what is under the cursor. Cut where it is long,
// with the whole text in the tool tip. Never changes the layout.
class ScanStatusLine : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QString text READ text WRITE setText)
public:
    explicit ScanStatusLine(QWidget* parent);

    QString text() const { return m_text; }
    void setText(const QString& text);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_text;
};
