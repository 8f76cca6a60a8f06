#pragma once

#include <QString>

// Which digit of a shown number a text cursor stands at, and where a digit stands. A place is the
// power of ten of a digit: 0 for the units, -1 for the first after the point.
class DigitCursor
{
public:
    DigitCursor(const QString& text, const QString& unit) : m_Text(text), m_End(int(text.size()))
    {
        if (!unit.isEmpty() && text.endsWith(unit, Qt::CaseInsensitive))
            m_End -= int(unit.size());
        m_Point = int(text.indexOf(QLatin1Char('.')));
        if (m_Point < 0 || m_Point > m_End)
            m_Point = m_End;
    }

    // The digit right of the cursor, else the nearest one left of it, else the first; -1: no digit.
    int DigitAt(int position) const
    {
        for (int index = qMin(position, m_End - 1); index >= 0; --index) {
            if (IsDigit(index))
                return index;
        }
        for (int index = 0; index < m_End; ++index) {
            if (IsDigit(index))
                return index;
        }
        return -1;
    }

    int PlaceAt(int position) const
    {
        const int digit = DigitAt(position);
        if (digit < 0)
            return 0;
        int place = 0;
        if (digit > m_Point) {
            for (int index = m_Point + 1; index <= digit; ++index)
                place -= IsDigit(index);
        } else {
            for (int index = digit + 1; index < m_Point; ++index)
                place += IsDigit(index);
        }
        return place;
    }

    // Where the digit of a place stands; the nearest one there is when the number is too short.
    int PositionOf(int place) const
    {
        int nearest = 0;
        for (int index = m_End - 1; index >= 0; --index) {
            if (!IsDigit(index))
                continue;
            nearest = index;
            if (PlaceAt(index) >= place)
                break;
        }
        return nearest;
    }

private:
    bool IsDigit(int index) const
    {
        return m_Text.at(index) >= QLatin1Char('0') && m_Text.at(index) <= QLatin1Char('9');
    }

    QString m_Text;
    int m_End;    // of the number; the unit follows
    int m_Point;  // of the decimal point, or the number's end
};
