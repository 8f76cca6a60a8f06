#include "spectrum/scanpeaktable.h"

#include <QHeaderView>
#include <QTableWidget>
#include <QVBoxLayout>
#include <limits>

#include "spectrum/scantext.h"
#include "spectrum/vcscanwidget_p.h"

namespace {

constexpr int refreshMs = 1000;         // slower than levels move, so that the table can be read
constexpr double leastDistance = 0.01;  // of the view between two signals

}  // namespace

ScanPeakTable::ScanPeakTable(VCScanWidgetPrivate& scan)
    : QDialog(scan.widget), m_scan(scan), m_table(new QTableWidget(0, 2, this))
{
    setObjectName(QStringLiteral("peakTable"));
    setWindowTitle(VCScanWidget::tr("Peak table"));
    setAttribute(Qt::WA_DeleteOnClose);
    m_table->setHorizontalHeaderLabels({VCScanWidget::tr("Frequency"), VCScanWidget::tr("Level")});
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    m_table->setAccessibleName(windowTitle());
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(m_table);
    resize(300, 340);
    connect(m_table, &QTableWidget::cellClicked, this, [this](int row) { choose(row); });
    connect(m_table, &QTableWidget::cellActivated, this, [this](int row) { choose(row); });
    connect(&m_timer, &QTimer::timeout, this, [this] { refresh(); });
    m_timer.setInterval(refreshMs);
}

void ScanPeakTable::showEvent(QShowEvent* event)
{
    refresh();
    m_timer.start();
    QDialog::showEvent(event);
}

void ScanPeakTable::hideEvent(QHideEvent* event)
{
    m_timer.stop();
    QDialog::hideEvent(event);
}

void ScanPeakTable::refresh()
{
    PeakSearch search;
    search.minimumDistance = m_scan.view.range().width() * leastDistance;
    m_peaks = m_scan.trace() ? findPeaks(*m_scan.trace(), m_scan.view.range(), search) : QVector<ScanPeak>();
    const int chosen = m_table->currentRow();
    m_table->setRowCount(int(m_peaks.size()));
    const double resolution = m_scan.trace() ? m_scan.trace()->step / 10 : 1;
    for (int row = 0; row < m_peaks.size(); ++row) {
        const QString texts[] = {ScanText::frequency(m_peaks[row].frequency, resolution),
                                 ScanText::level(double(m_peaks[row].level))};
        for (int column = 0; column < 2; ++column) {
            if (!m_table->item(row, column)) {
                auto* const item = new QTableWidgetItem;
                item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
                m_table->setItem(row, column, item);
            }
            m_table->item(row, column)->setText(texts[column]);
        }
    }
    if (chosen >= 0 && chosen < m_peaks.size())
        m_table->selectRow(chosen);
}

void ScanPeakTable::choose(int row)
{
    if (row < 0 || row >= m_peaks.size())
        return;
    m_scan.cursorTime = 0;
    m_scan.setCursor(m_peaks[row].frequency, std::numeric_limits<double>::quiet_NaN());
}
