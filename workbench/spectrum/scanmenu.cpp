#include "spectrum/scanmenu.h"

#include <QActionGroup>
#include <QClipboard>
#include <QDateTime>
#include <QFileDialog>
#include <QGuiApplication>
#include <QMenu>
#include <QMessageBox>

#include "spectrum/scanpeaktable.h"
#include "spectrum/vcscanwidget_p.h"

namespace {

constexpr int averagings[] = {0, 4, 16, 64};  // frames

QAction* add(QMenu* menu, const char* name, const QString& text, const std::function<void()>& action)
{
    QAction* const made = menu->addAction(text);
    made->setObjectName(QLatin1String(name));
    QObject::connect(made, &QAction::triggered, menu, [action] { action(); });
    return made;
}

QAction* addChoice(QMenu* menu, const QString& name, const QString& text, bool checked,
                   const std::function<void()>& action)
{
    QAction* const made = add(menu, name.toLatin1().constData(), text, action);
    made->setCheckable(true);
    made->setChecked(checked);
    return made;
}

}  // namespace

ScanMenu::ScanMenu(VCScanWidgetPrivate& scan) : m_scan(scan) {}

ScanMenu::~ScanMenu()
{
    delete m_menu;
    delete m_peaks;
}

QString ScanMenu::keyboardHelp()
{
    return VCScanWidget::tr(
        "Click tunes. Drag the passband, its edges or the squelch line. The wheel zooms, "
        "double click shows all.\n"
        "Left, Right: tune by a thousandth of the view; Up, Down: squelch by 1 dB; with "
        "Ctrl ten times more, with Shift ten times less.\n"
        "Page Up, Page Down: bandwidth. +, -: zoom. Home: show all.\n"
        "M: marker at the cursor. D: delta marker. Delete: remove it. Escape: cancel.");
}

void ScanMenu::popUp(const QPoint& globalPosition)
{
    delete m_menu;
    m_menu = new QMenu(m_scan.widget);
    m_menu->setObjectName(QStringLiteral("scanMenu"));
    m_menu->setAttribute(Qt::WA_DeleteOnClose);
    addTraces(m_menu);
    m_menu->addSeparator();
    addMarkers(m_menu);
    m_menu->addSeparator();
    addLooks(m_menu);
    m_menu->addSeparator();
    addTakings(m_menu);
    m_menu->popup(globalPosition);
}

void ScanMenu::addTraces(QMenu* menu)
{
    VCScanWidgetPrivate* const scan = &m_scan;
    const bool maximum = scan->hold.isMaximumHeld();
    const bool minimum = scan->hold.isMinimumHeld();
    addChoice(menu, QStringLiteral("maxHold"), tr("Hold maximum"), maximum,
              [scan, maximum] { scan->setHeld(true, !maximum); });
    addChoice(menu, QStringLiteral("minHold"), tr("Hold minimum"), minimum,
              [scan, minimum] { scan->setHeld(false, !minimum); });
    add(menu, "clearHold", tr("Clear hold"), [scan] { scan->clearHold(); })->setEnabled(maximum || minimum);
    QMenu* const mean = menu->addMenu(tr("Averaging"));
    auto* const group = new QActionGroup(mean);
    for (const int frames : averagings)
        group->addAction(addChoice(
            mean, QStringLiteral("average%1").arg(frames), frames ? tr("%1 spectra").arg(frames) : tr("Off"),
            scan->averaging() == frames, [scan, frames] { scan->setAveraging(frames); }));
}

void ScanMenu::addMarkers(QMenu* menu)
{
    VCScanWidgetPrivate* const scan = &m_scan;
    if (scan->options.markers) {
        add(menu, "addMarker", tr("Set marker\tM"), [scan] { scan->addMarker(false); });
        add(menu, "addDelta", tr("Set delta marker\tD"), [scan] { scan->addMarker(true); });
        const bool any = scan->markers.count() > 0;
        add(menu, "removeMarker", tr("Remove marker\tDel"), [scan] {
            scan->removeMarker();
        })->setEnabled(any);
        add(menu, "clearMarkers", tr("Remove all markers"), [scan] {
            scan->markers.clear();
            scan->changed();
        })->setEnabled(any);
    }
    add(menu, "peakTable", tr("Peak table..."), [this] { openPeakTable(); })->setEnabled(scan->trace());
}

void ScanMenu::addLooks(QMenu* menu)
{
    VCScanWidgetPrivate* const scan = &m_scan;
    QMenu* const palette = menu->addMenu(tr("Colours of the waterfall"));
    auto* const group = new QActionGroup(palette);
    for (const ScanPalette::Kind kind : {ScanPalette::Thermal, ScanPalette::Ocean, ScanPalette::Grey})
        group->addAction(addChoice(palette, QStringLiteral("palette%1").arg(int(kind)),
                                   ScanPalette::name(kind), scan->palette() == kind,
                                   [scan, kind] { scan->setPalette(kind); }));
    palette->setEnabled(scan->options.waterfall);
    add(menu, "fit", tr("Show all\tHome"), [scan] { scan->fit(); })->setEnabled(!scan->view.isFit());
    add(menu, "fitLevels", tr("Fit the level range"), [scan] {
        scan->fitLevels();
    })->setEnabled(scan->trace());
}

void ScanMenu::addTakings(QMenu* menu)
{
    VCScanWidgetPrivate* const scan = &m_scan;
    add(menu, "savePicture", tr("Save picture..."), [this] { savePicture(); });
    add(menu, "copyPicture", tr("Copy picture"),
        [scan] { QGuiApplication::clipboard()->setImage(scan->picture()); });
    add(menu, "copyTrace", tr("Copy trace as CSV"), [scan] {
        QGuiApplication::clipboard()->setText(scan->traceAsCsv());
    })->setEnabled(scan->trace());
}

void ScanMenu::openPeakTable()
{
    if (!m_peaks)
        m_peaks = new ScanPeakTable(m_scan);
    m_peaks->show();
    m_peaks->raise();
}

void ScanMenu::savePicture()
{
    auto* const dialog = new QFileDialog(m_scan.widget, tr("Save picture"));
    dialog->setObjectName(QStringLiteral("savePictureDialog"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setNameFilter(tr("Pictures (*.png)"));
    dialog->setDefaultSuffix(QStringLiteral("png"));
    dialog->selectFile(
        QDateTime::currentDateTimeUtc().toString(QStringLiteral("'spectrum-'yyyyMMdd-HHmmss'.png'")));
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& fileName) { save(fileName); });
    dialog->open();
}

void ScanMenu::save(const QString& fileName)
{
    QString problem;
    if (m_scan.savePicture(fileName, &problem))
        return;
    auto* const box =
        new QMessageBox(QMessageBox::Warning, tr("Save picture"), problem, QMessageBox::Ok, m_scan.widget);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}
