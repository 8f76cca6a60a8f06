#pragma once

#include <QWidget>

#include "spectrum/scanscene.h"
#include "spectrum/spectrumpainter.h"
#include "spectrum/waterfallhistory.h"

// The picture of the spectrum. Paints the scene that it is given; the pointer is handled elsewhere.
class SpectrumCanvas : public QWidget
{
public:
    explicit SpectrumCanvas(QWidget* parent);

    ScanScene scene;
    int paints() const { return m_paints; }  // so far

    ScanHandle handleAt(const QPointF& position) const;
    int markerAt(const QPointF& position) const;
    ScanMapping mapping() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    SpectrumPainter m_painter;
    int m_paints = 0;
};

// The history below it.
class WaterfallCanvas : public QWidget
{
public:
    explicit WaterfallCanvas(QWidget* parent);

    WaterfallHistory history;
    int paints() const { return m_paints; }

    // A vertical line there; NaN: none.
    void setCursorFrequency(double frequency);
    void setView(const ScanRange& view);
    void setLook(float minimum, float maximum, ScanPalette::Kind palette, bool greyed);
    void setChannel(const ScanChannel& channel);

    // The row under a position; null: none.
    const ScanFrame* rowAt(const QPointF& position) const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void paintLines(QPainter& painter);

    ScanRange m_view;
    float m_minimum = 0;
    float m_maximum = 0;
    ScanPalette::Kind m_palette = ScanPalette::Thermal;
    bool m_greyed = false;
    double m_cursor;
    double m_frequency;  // of the channel; NaN: none
    int m_paints = 0;
};
