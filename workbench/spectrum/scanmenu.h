#pragma once

#include <QObject>
#include <QPointer>

class QMenu;
class QPoint;
class ScanPeakTable;
class VCScanWidgetPrivate;

// The context menu of a scan, and what it opens.
class ScanMenu : public QObject
{
public:
    explicit ScanMenu(VCScanWidgetPrivate& scan);
    ~ScanMenu() override;

    // What the keys do, for the tool tip.
    static QString keyboardHelp();

    void popUp(const QPoint& globalPosition);

private:
    void addTraces(QMenu* menu);
    void addMarkers(QMenu* menu);
    void addLooks(QMenu* menu);
    void addTakings(QMenu* menu);
    void openPeakTable();
    void savePicture();
    void save(const QString& fileName);

    VCScanWidgetPrivate& m_scan;
    QPointer<QMenu> m_menu;
    QPointer<ScanPeakTable> m_peaks;
};
