#include "reportgenerator/recordingxml.h"

#include <QBuffer>
#include <QLocale>
#include <QXmlStreamWriter>
#include <cmath>

namespace {

const char formatVersion[] = "1";

// XML 1.0 cannot carry control characters, lone surrogates and two non-characters, not even escaped;
// readers turn a carriage return into a line feed.
bool IsXmlCharacter(char32_t c)
{
    return c == 0x9 || c == 0xA || (c >= 0x20 && c <= 0xD7FF) || (c >= 0xE000 && c <= 0xFFFD) || c >= 0x10000;
}

// What XML cannot carry shows as the replacement character. toUcs4 has turned lone surrogates into it
// already.
QString XmlText(const QString& text)
{
    QString result;
    result.reserve(text.size());
    const QVector<uint> codePoints = text.toUcs4();
    for (const uint c : codePoints) {
        const char32_t kept = IsXmlCharacter(c) ? c : char32_t(QChar::ReplacementCharacter);
        result += QString::fromUcs4(&kept, 1);
    }
    return result;
}

// A URL keeps every character that it was given with; only control characters, which readers of
// XML would drop or change, are percent-encoded.
QString XmlUrl(const QString& url)
{
    QString result;
    for (const QChar c : url) {
        if (c.unicode() < 0x20 || c.unicode() == 0x7F)
            result += QLatin1Char('%') +
                      QString::number(c.unicode(), 16).toUpper().rightJustified(2, QLatin1Char('0'));
        else
            result += c;
    }
    return XmlText(result);
}

void WriteTime(QXmlStreamWriter& xml, const char* element, const QDateTime& time)
{
    if (time.isValid())
        xml.writeTextElement(QLatin1String(element), time.toUTC().toString(Qt::ISODateWithMs));
}

// The shortest decimal notation without an exponent that reads back as the same number.
void WriteFrequency(QXmlStreamWriter& xml, const char* element, const std::optional<double>& frequency)
{
    if (!frequency || !std::isfinite(*frequency))
        return;
    xml.writeStartElement(QLatin1String(element));
    xml.writeAttribute(QLatin1String("unit"), QLatin1String("Hz"));
    xml.writeCharacters(QString::number(*frequency, 'f', QLocale::FloatingPointShortest));
    xml.writeEndElement();
}

}  // namespace

QString ToRecordingXml(const RecordingFacts& facts)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QXmlStreamWriter xml(&buffer);
    xml.setAutoFormatting(true);
    xml.setAutoFormattingIndent(2);
    xml.writeStartDocument();
    xml.writeStartElement(QLatin1String("Recording"));
    xml.writeAttribute(QLatin1String("version"), QLatin1String(formatVersion));
    xml.writeStartElement(QLatin1String("Metadata"));
    WriteTime(xml, "StartTime", facts.startTime);
    WriteTime(xml, "StopTime", facts.stopTime);
    xml.writeStartElement(QLatin1String("Detail"));
    if (!facts.recordData.isEmpty())
        xml.writeTextElement(QLatin1String("RecordData"), XmlText(facts.recordData));
    WriteFrequency(xml, "StartFrequency", facts.startFrequency);
    WriteFrequency(xml, "StopFrequency", facts.stopFrequency);
    xml.writeEndElement();
    xml.writeEndElement();
    xml.writeTextElement(QLatin1String("URL"), XmlUrl(facts.url));
    xml.writeEndElement();
    xml.writeEndDocument();
    return QString::fromUtf8(bytes);
}
