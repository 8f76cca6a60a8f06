#include "spectrum/scansettings.h"

#include <QSettings>
#include <QtDebug>

#include "spectrum/spectrumhost.h"

namespace {

constexpr int mostAveraged = 1024;

QString& settingsFile()
{
    static QString name;
    return name;
}

QString key(const QString& name, const char* entry)
{
    return QStringLiteral("Scan-%1/%2").arg(name, QLatin1String(entry));
}

}  // namespace

void SpectrumHost::SetSettingsFile(const QString& fileName)
{
    settingsFile() = fileName;
}

ScanSettings ScanSettings::read(const QString& name)
{
    ScanSettings settings;
    if (settingsFile().isEmpty() || name.isEmpty())
        return settings;
    const QSettings file(settingsFile(), QSettings::IniFormat);
    const int palette = file.value(key(name, "Palette"), settings.palette).toInt();
    if (palette >= ScanPalette::Thermal && palette <= ScanPalette::Grey)
        settings.palette = ScanPalette::Kind(palette);
    const int averaging = file.value(key(name, "Averaging"), 0).toInt();
    settings.averaging = averaging > 1 && averaging <= mostAveraged ? averaging : 0;
    settings.splitter = file.value(key(name, "Splitter")).toByteArray();
    return settings;
}

void ScanSettings::write(const QString& name) const
{
    if (settingsFile().isEmpty() || name.isEmpty())
        return;
    QSettings file(settingsFile(), QSettings::IniFormat);
    file.setValue(key(name, "Palette"), int(palette));
    file.setValue(key(name, "Averaging"), averaging);
    file.setValue(key(name, "Splitter"), splitter);
    file.sync();
    static bool told = false;
    if (file.status() != QSettings::NoError && !told) {
        told = true;
        qWarning("%s: the looks of the spectrum cannot be kept there; check the folder's rights",
                 qPrintable(settingsFile()));
    }
}
