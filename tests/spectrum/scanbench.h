#pragma once

#include <QApplication>
#include <QDir>
#include <QTest>
#include <QWidget>
#include <cmath>
#include <memory>

#include "spectrum/coloritemmapadapter.h"
#include "spectrum/vcifcontrol.h"
#include "spectrum/vcscanwidget_p.h"
#include "spectrum/xaxiswidget.h"
#include "tests/spectrum/streamserver.h"
#include "tests/valuecontrols/controlbench.h"

// A window with the control in it, bound to a tree like a channel's pane, and a driver's stream.
class ScanBench
{
public:
    static constexpr int waitMs = 20000;

    ScanBench()
    {
        ValueHost::CreateTree();
        m_window = std::make_unique<QWidget>();
        m_window->resize(800, 560);
        auto* const layout = new QVBoxLayout(m_window.get());
        layout->setContentsMargins(0, 0, 0, 0);
        control = new glWidgets::VCIFControl(m_window.get(), "IF Panorama", false, true,
                                             QStringLiteral("IFCONTROL"), true, 4, true);
        control->setMinimumSize(400, 400);
        static_cast<XAxisWidget*>(control->GetXAxis())->ApplyLeftRightButtons(false);
        layout->addWidget(control);
    }
    ~ScanBench()
    {
        m_window.reset();
        ValueHost::DestroyTree();
    }

    // The values as a driver and the workbench describe them.
    void makeValues()
    {
        ControlBench::Float(QStringLiteral("/GUICOMMON/IF_LEVELMAXIMUM"), 80, -200, 300, decibel());
        ControlBench::Float(QStringLiteral("/GUICOMMON/IF_LEVELMINIMUM"), -20, -200, 300, decibel());
        ControlBench::Float(QStringLiteral("/GUICOMMON/IFPANHALFWIDTH"), 1e6, 0, 0, hertz());
        ControlBench::Float(QStringLiteral("/GUICOMMON/IFPANSTARTFREQ"), 97.5e6, 0, 0, hertz());
        ControlBench::Float(QStringLiteral("/GUICOMMON/IFPANSTOPFREQ"), 99.5e6, 0, 0, hertz());
        ControlBench::Selection(QStringLiteral("/RX1/IFMAPPING"),
                                {{0, QStringLiteral("Peak"), 0},
                                 {1, QStringLiteral("Average"), 0},
                                 {2, QStringLiteral("Sample"), 0}},
                                1);
        ControlBench::Float(QStringLiteral("/RX1/FREQUENCY"), 98.5e6, 0, 0, hertz());
        ControlBench::Float(channelPath("Frequency"), 98.3e6, 20e6, 6e9, hertz());
        ControlBench::Float(channelPath("SquelchValue"), 40, -40, 120, decibel());
        ControlBench::Selection(channelPath("Bandwidth"),
                                {{0, QStringLiteral("15 kHz"), 15e3},
                                 {1, QStringLiteral("50 kHz"), 50e3},
                                 {2, QStringLiteral("150 kHz"), 150e3},
                                 {3, QStringLiteral("250 kHz"), 250e3}},
                                2);
        ControlBench::Selection(channelPath("Demodulation"),
                                {{0, QStringLiteral("AM"), 0},
                                 {1, QStringLiteral("FM"), 0},
                                 {2, QStringLiteral("USB"), 0},
                                 {3, QStringLiteral("LSB"), 0},
                                 {4, QStringLiteral("CW"), 0},
                                 {5, QStringLiteral("IQ"), 0}},
                                1);
    }

    void bind()
    {
        control->SetScanbufferIPAddress(server.address());
        control->SetZStop_ValuePath(0, QStringLiteral("/GUICOMMON/IF_LEVELMAXIMUM"));
        control->SetZStart_ValuePath(0, QStringLiteral("/GUICOMMON/IF_LEVELMINIMUM"));
        control->SetHalfWidth_ValuePath(QStringLiteral("/GUICOMMON/IFPANHALFWIDTH"), false);
        control->SetMapping_ValuePath(QStringLiteral("/RX1/IFMAPPING"));
        control->SetCenter_ValuePath(QStringLiteral("/RX1/FREQUENCY"));
        control->SetFrequency_ValuePath(channelPath("Frequency"));
        control->SetAudioBandWidthCenter_ValuePath(channelPath("Frequency"), true);
        control->SetThreshold_ValuePath(0, channelPath("SquelchValue"));
        control->SetAudioBandWidth_ValuePath(channelPath("Bandwidth"));
        control->GetColorItemMapAdapter4IF()->SetDemodulation_ValuePath(1, channelPath("Demodulation"));
        control->SetXStart_ValuePath(QStringLiteral("/GUICOMMON/IFPANSTARTFREQ"));
        control->SetXStop_ValuePath(QStringLiteral("/GUICOMMON/IFPANSTOPFREQ"));
    }

    void show()
    {
        m_window->show();
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        control->setFocus();
    }

    // Everything, with one frame in the picture.
    void run()
    {
        makeValues();
        bind();
        show();
        QTRY_VERIFY_WITH_TIMEOUT(!server.requests.isEmpty(), waitMs);
        feed(panorama());
    }

    // Sends a frame and waits until it is in the picture.
    void feed(const Link::ScanData& data)
    {
        const quint64 before = parts().stream.received();
        server.sendFrame(data);
        QTRY_VERIFY_WITH_TIMEOUT(parts().stream.received() > before, waitMs);
        settle();
    }

    // The picture shows what stands now.
    void settle()
    {
        parts().pacer.now();
        const int before = spectrum().paints();
        spectrum().update();
        QTRY_VERIFY_WITH_TIMEOUT(!spectrum().isVisible() || spectrum().paints() > before, waitMs);
    }

    VCScanWidgetPrivate& parts() { return *VCScanWidgetPrivate::of(control); }
    SpectrumCanvas& spectrum() { return *parts().spectrum; }
    WaterfallCanvas& waterfall() { return *parts().waterfall; }
    ScanScene& scene() { return spectrum().scene; }
    QWidget& window() { return *m_window; }

    // In the spectrum's pixels.
    QPoint at(double frequency, double level)
    {
        const ScanMapping mapping = spectrum().mapping();
        return {int(std::floor(mapping.x(frequency))), int(std::floor(mapping.y(level)))};
    }

    static QString channelPath(const char* name)
    {
        return QStringLiteral("/RX1/DDC/DDC1/") + QLatin1String(name);
    }
    static ValueBase& value(const QString& path) { return *Tree::Instance()->FindValue(path); }
    static ValueBase& channelValue(const char* name) { return value(channelPath(name)); }
    static double number(const QString& path) { return ControlBench::NumberOf(value(path)); }
    static double channelNumber(const char* name) { return number(channelPath(name)); }
    static void set(const QString& path, const QVariant& content)
    {
        ValueHost::SetContent(value(path), content, nullptr);
    }

    // For people to look at.
    void keepPicture(const QString& name)
    {
        QDir().mkpath(QStringLiteral(RX_PICTURE_DIR));
        parts().picture().save(QStringLiteral(RX_PICTURE_DIR "/%1.png").arg(name));
    }

    static QString hertz() { return QStringLiteral("Hz"); }
    static QString decibel() { return QStringLiteral("dBµV"); }

    StreamServer server;
    glWidgets::VCIFControl* control;

private:
    std::unique_ptr<QWidget> m_window;
};
