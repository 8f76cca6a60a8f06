#pragma once

#include <QDialog>
#include <QTimer>
#include <QVector>

#include "spectrum/peaktable.h"

class QTableWidget;
class VCScanWidgetPrivate;

// The strongest signals in view, kept up to date while it is open. Choosing one puts the cursor on
// it. Belongs to the scan's widget and goes with it.
class ScanPeakTable : public QDialog
{
public:
    explicit ScanPeakTable(VCScanWidgetPrivate& scan);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void refresh();
    void choose(int row);

    VCScanWidgetPrivate& m_scan;
    QTableWidget* m_table;
    QTimer m_timer;
    QVector<ScanPeak> m_peaks;  // by row
};
