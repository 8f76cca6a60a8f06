#pragma once

#include <QElapsedTimer>
#include <QImage>
#include <QObject>
#include <QTimer>
#include <memory>

#include "spectrum/channeloverlay.h"
#include "spectrum/paintpacer.h"
#include "spectrum/scanaxes.h"
#include "spectrum/scancanvas.h"
#include "spectrum/scanmarkers.h"
#include "spectrum/scansettings.h"
#include "spectrum/scanstate.h"
#include "spectrum/scanstream.h"
#include "spectrum/scanview.h"
#include "spectrum/tracehold.h"
#include "spectrum/vcscanwidget.h"

class LevelAxisWidget;
class QHBoxLayout;
class QKeyEvent;
class QLabel;
class QSplitter;
class ScanMenu;
class ScanPointer;
class ScanStatusLine;
class XAxisWidget;

// How a scan is made; see glWidgets::VCIFControl.
struct ScanOptions
{
    QString title;
    bool showTitle = false;
    bool waterfall = true;
    QString settings;
    bool markers = true;
    int axes = 4;  // labelled level ticks; 0: as many as fit well
    bool keyboard = true;
};

// Everything behind a scan widget: its parts, what flows between them, and what an operator can do.
// Frames and values go in; at most 30 times a second a scene is made of them, and what changed is
// painted. Nothing is painted, and nothing is received, while the widget is hidden.
class VCScanWidgetPrivate : public QObject
{
public:
    VCScanWidgetPrivate(VCScanWidget* widget, const char* name);
    ~VCScanWidgetPrivate() override;

    static VCScanWidgetPrivate* of(VCScanWidget* widget) { return widget->d; }

    void configure(const ScanOptions& options);
    void shown();
    void hidden();
    bool handleEvent(QEvent* event);  // of the widget; true: dealt with

    // Something changed: the picture follows as soon as the rate allows.
    void changed() { pacer.request(); }

    // --- what an operator does -----------------------------------------------------------------
    void tuneTo(double frequency);  // rounded; at most 30 writes a second
    void tuneBy(double steps);      // of ScanView::tuningStep()
    void chooseBandwidth(int key);
    void stepBandwidth(int direction);
    void dragThreshold(double line);  // dBµV per resolution bandwidth
    void squelchBy(double decibel);
    void zoomBy(double frequency, double notches);
    void zoomByKey(double frequency, double notches);  // also of the panorama, where that may be
    void panBy(double hertz);
    void fit();
    void fitLevels();
    void addMarker(bool delta);
    void removeMarker();
    void setAveraging(int frames);  // below 2: off
    int averaging() const { return m_averaging; }
    void setHeld(bool maximum, bool held);
    void clearHold();
    void setPalette(ScanPalette::Kind kind);
    ScanPalette::Kind palette() const { return m_palette; }

    // The cursor: under the pointer, or put somewhere by the peak table or the keyboard.
    void setCursor(double frequency, double level);
    void clearCursor();
    void showRow(const ScanFrame& row, double frequency);  // the cursor is in the waterfall
    bool hasCursor() const;
    double cursorFrequency() const { return m_cursor; }

    // --- what can be taken along ---------------------------------------------------------------
    QImage picture() const;
    bool savePicture(const QString& fileName, QString* problem) const;
    QString traceAsCsv() const;  // empty: there is none

    const ScanFrame* trace() const { return hold.live(); }
    double resolutionBandwidth() const;
    double pixelHertz() const;  // what one pixel stands for

    VCScanWidget* const widget;
    ScanOptions options;

    // Widgets; owned by `widget`.
    QLabel* title;
    LevelAxisWidget* levelAxis;
    SpectrumCanvas* spectrum;
    WaterfallCanvas* waterfall;
    QSplitter* splitter;
    XAxisWidget* xAxis;
    ScanStatusLine* status;

    PaintPacer pacer;
    ScanStream stream;
    TraceHold hold;
    ScanView view;
    ScanMarkers markers;
    ScanAxes axes;
    ChannelOverlay channel;
    ScanState state;

    // The pointer over the waterfall tells the time of a row; 0: it is elsewhere.
    qint64 cursorTime = 0;
    float cursorRowLevel = 0;  // of that row

private:
    void buildLayout();
    void connectParts();
    void applyMargins();
    ScanSettings currentSettings() const;
    void restoreSettings();
    void keepSettings();
    void takeFrame(const ScanFrame& frame);
    void followRequest();
    void show();
    void buildScene();
    void placeCursor(ScanScene& scene) const;
    QString statusText() const;
    QString spokenText() const;
    void followState();
    bool handleKey(QKeyEvent* event);
    bool handleMovingKey(QKeyEvent* event);
    bool handleViewKey(QKeyEvent* event);
    bool handleMarkerKey(QKeyEvent* event);
    bool handleEscape();
    bool keepFromShortcuts(QKeyEvent* event);
    bool dropNotes();
    ScanState currentState() const;

    QWidget* m_waterfallRow = nullptr;
    QWidget* m_waterfallSide = nullptr;
    QHBoxLayout* m_spectrumLayout = nullptr;
    QHBoxLayout* m_waterfallLayout = nullptr;
    std::unique_ptr<ScanPointer> m_pointer;
    std::unique_ptr<ScanMenu> m_menu;

    QTimer m_watch;             // looks whether the trace grows old
    QElapsedTimer m_lastFrame;  // invalid: none yet
    QElapsedTimer m_lastDrop;
    QElapsedTimer m_spoken;
    bool m_newRows = false;
    ScanSettings m_kept;  // as they stand in the file
    bool m_shown = false;
    QString m_rangeProblem;
    int m_averaging = 0;
    ScanPalette::Kind m_palette = ScanPalette::Thermal;
    double m_cursor;
    double m_cursorLevel;
};
